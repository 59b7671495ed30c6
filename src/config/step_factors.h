// The factors between file units and motor steps.
#pragma once

#include "config/configuration.h"
#include "config/records.h"

namespace zolvane {

struct StepFactors {
  double SDXY = 0.0;  // steps per file unit of the serial-dilute X and Y
  double Z = 0.0;     // millimetres per step of the Z axis
  double S = 0.0;     // millimetres per step of the S axis
};

// The serial-dilute XY factor of a device: with its encoders or without them. A factor
// missing from the file is 0.
double SDXYStepFactor(const DeviceTypeRecord& device);

// The factors of the records in force. Every load and save takes them once, at its start.
StepFactors CurrentStepFactors(const CurrentRecords& current);

}  // namespace zolvane
