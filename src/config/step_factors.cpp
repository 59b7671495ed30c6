#include "config/step_factors.h"

namespace zolvane {

double SDXYStepFactor(const DeviceTypeRecord& device) {
  return device.SDXYEncoderStatus ? device.SDXYEncoderMMStepFactorOn : device.SDXYEncoderMMStepFactorOff;
}

StepFactors CurrentStepFactors(const CurrentRecords& current) {
  return {.SDXY = SDXYStepFactor(current.Device),
          .Z = current.Axes.Z.UnitsPerStep,
          .S = current.Axes.S.UnitsPerStep};
}

}  // namespace zolvane
