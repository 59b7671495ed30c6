// zolvane-bench from its arguments to its exit status.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zolvane {

// `arguments` are those after the program's name. Whatever goes wrong becomes a line on `errors` and an
// exit status; nothing is thrown.
int RunBench(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
             std::ostream& errors);

}  // namespace zolvane
