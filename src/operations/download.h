// "Load From Zolvane": asks the instrument for its calibration values and stores them
// in the configuration file.
#pragma once

#include "operations/instrument_keys.h"
#include "operations/operation_context.h"

namespace zolvane {

// Asks for confirmation, then runs the steps below in their order. A reply that holds "SYNTAX_ERROR" leaves
// the file's value; a failed send ends what each step says. Each record is saved as soon as its queries are
// done, so an interrupted download leaves the file partly updated, record by record.
//
// Cancel in the confirmation returns at once: the controls stay disabled and the
// status text stands, on purpose.
void DownloadCalibration(const OperationContext& context);

// The stage X and Y of one position. Saves nothing unless both were answered.
void DownloadPosition(const OperationContext& context, const PositionKeys& keys);

// DeltaZ, the only height that the instrument gives back.
void DownloadHeights(const OperationContext& context);

// The change heights of each microtiter head and of the first microtiter cage, saved
// only when all was answered.
void DownloadTipAndHeadChange(const OperationContext& context);

// The serial-dilute and calibration heads. Each is saved unless the stop flag is set, whatever was answered.
void DownloadLiquidHandling(const OperationContext& context);

// The serial-dilute tips. Each is saved unless the stop flag is set, whatever was answered.
void DownloadTipData(const OperationContext& context);

// The serial-dilute X and Y of four positions. The first failed send ends the step.
void DownloadSerialDiluteXY(const OperationContext& context);

}  // namespace zolvane
