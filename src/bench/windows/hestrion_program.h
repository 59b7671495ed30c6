// HestrionBench from its arguments to its exit status.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zolvane {

// The arguments are those behind the program's name. The exit statuses are those of zolvane-bench. Without windows to
// look at, what goes wrong also becomes a line on `errors`.
int RunHestrionBench(std::vector<std::string> arguments, std::ostream& output, std::ostream& errors);

}  // namespace zolvane
