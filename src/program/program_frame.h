// What stands around the body of every program on the command line.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace zolvane {

// One line on `errors`, behind the program's name.
void Complain(std::string_view program, std::ostream& errors, std::string_view text);

// The exit status of `body`. Whatever it throws becomes a line on `errors` and an exit status.
int RunFramed(std::string_view program, std::ostream& errors, const std::function<int()>& body);

// Prints the help or the version, which was asked for instead of a run; the exit status.
int PrintInformation(std::string_view program, std::string_view text, std::ostream& output,
                     std::ostream& errors);

}  // namespace zolvane
