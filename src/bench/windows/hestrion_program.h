// HestrionBench from its arguments to its exit status.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zolvane {

// The arguments are those behind the program's name. The exit statuses are those of zolvane-bench. What
// goes wrong while there are windows is a line of the log and of `errors`; what is to be said without them
// is announced, see Announce.
int RunHestrionBench(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors);

}  // namespace zolvane
