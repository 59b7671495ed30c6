// Asking the instrument which hardware is fitted, and recording the answers in the configuration file.
#pragma once

#include "operations/operation_context.h"

namespace zolvane {

// Runs the four steps in their order with the page's controls disabled. A failed command ends its own step
// only; the link's stop flag, read before each step but the first, skips the steps that follow.
void QueryHardware(const OperationContext& context);

void DetectDeviceType(const OperationContext& context);
void DetectModuleType(const OperationContext& context);
void DetectHeadType(const OperationContext& context);
void DetectPumpModule(const OperationContext& context);

}  // namespace zolvane
