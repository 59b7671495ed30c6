// The commands that look and write nothing: show, check, diff, drift. They throw UsageError if something that they
// need is unusable.
#pragma once

#include <string>
#include <vector>

#include "zolvane/work/workplace.h"

namespace zolvane {

using Words = std::vector<std::string>;  // the command and its arguments

void Show(Workplace& work, const Words& words);
void Check(Workplace& work, const Words& words);
void Diff(Workplace& work, const Words& words);

// What was left last, what the instrument holds now, what the file says now.
void Drift(Workplace& work, const Words& words);

}  // namespace zolvane
