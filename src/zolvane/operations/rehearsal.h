// Plays a command on copies: the folder's, and a twin of the instrument. It is the same code on other ends.
#pragma once

#include <functional>

#include "zolvane/work/workplace.h"

namespace zolvane {

void Rehearse(Workplace& work, const std::function<void(Workplace& copy)>& command);

}  // namespace zolvane
