// history: the list of operations, one of them, and whether the history is what it was. Throws UsageError if
// something that it needs is unusable.
#pragma once

#include "zolvane/looking.h"

namespace zolvane {

void ShowHistory(Workplace& work, const Words& words);

}  // namespace zolvane
