// zolvane from its arguments to its exit status.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "program/terminal.h"
#include "zolvane/work/workplace.h"

namespace zolvane {

// `arguments` are those behind the program's name. Whatever goes wrong becomes a line on `errors` and an exit
// status; nothing is thrown. `terminal` is whom objections and boxes are put to; null: nobody.
int RunZolvane(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors,
               Questioner* terminal);

// Runs the command of the options on these ends. What it could not use becomes a line on `errors`; that, and what
// spoke against it, is in the report.
void RunReported(Workplace& work, std::ostream& errors);

}  // namespace zolvane
