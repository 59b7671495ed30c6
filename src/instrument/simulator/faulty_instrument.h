// The simulated instrument with the faults that were asked for.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "instrument/simulator/faults.h"
#include "instrument/simulator/instrument.h"

namespace zolvane {

class FaultyInstrument {
 public:
  // The instrument outlives it.
  FaultyInstrument(SimulatedInstrument& instrument, FaultPlan faults)
      : instrument_{instrument}, faults_{std::move(faults)} {}

  // No lines if the instrument keeps silent.
  LineReply Answer(const std::string& command);

 private:
  std::optional<std::string> CarriedOut(const std::string& command, const LineEffect& effect);

  SimulatedInstrument& instrument_;
  FaultPlan faults_;
  std::size_t lines_ = 0;
  std::string keyBefore_;
  std::string replyBefore_;
};

}  // namespace zolvane
