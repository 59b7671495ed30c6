// "Save To Zolvane": sends the calibration data of the configuration file to the instrument.
#pragma once

#include "operations/operation_context.h"

namespace zolvane {

// Asks for confirmation, builds the script and sends it line by line. The first failed send ends the sending;
// a stop flag that is raised meanwhile skips what is left. Writes nothing into the configuration file.
//
// Cancel in the confirmation returns at once: the controls stay disabled and the
// status text stands, on purpose.
void UploadCalibration(const OperationContext& context);

}  // namespace zolvane
