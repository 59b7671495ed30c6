// The simulated instrument inside the process.
#pragma once

#include <utility>

#include "instrument/links/bench_link.h"
#include "instrument/simulator/instrument.h"

namespace zolvane {

class SimulatedLink final : public BenchLink {
 public:
  SimulatedLink(SimulatedInstrument instrument, const InterruptFlag& interrupt)
      : BenchLink{interrupt}, instrument_{std::move(instrument)} {}

  void Begin() override { instrument_.SwitchOn(); }

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& /*delivery*/) override {
    return instrument_.Answer(command);
  }

  SimulatedInstrument instrument_;
};

}  // namespace zolvane
