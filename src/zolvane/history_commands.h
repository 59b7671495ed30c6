// history: the list of operations, one of them, and whether the history is what it was.
#pragma once

#include "zolvane/looking.h"

namespace zolvane {

void ShowHistory(Workplace& work, const Words& words);

}  // namespace zolvane
