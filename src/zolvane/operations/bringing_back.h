// undo, resume and restore: one operation that brings the configuration and the instrument to a wanted state. They
// throw UsageError if something that they need is unusable, and Refusal after an objection; nothing was changed then.
#pragma once

#include <optional>
#include <string>

#include "zolvane/work/workplace.h"

namespace zolvane {

// Takes back the last operation that changed something, or that one.
void Undo(Workplace& work, const std::optional<std::string>& number);

// Ends the operation that was cut short.
void Resume(Workplace& work);

// To a record, or to what an operation left ("@N").
void Restore(Workplace& work, const std::string& side);

}  // namespace zolvane
