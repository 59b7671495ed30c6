// zolvane from its arguments to its exit status.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "program/terminal.h"

namespace zolvane {

// `arguments` are those behind the program's name. Whatever goes wrong becomes a line on `errors` and an exit
// status; nothing is thrown. `terminal` is whom objections and boxes are put to; null: nobody.
int RunZolvane(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors,
               Questioner* terminal);

}  // namespace zolvane
