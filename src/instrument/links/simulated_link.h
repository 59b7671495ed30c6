// The simulated instrument inside the process.
#pragma once

#include <memory>
#include <utility>

#include "instrument/links/bench_link.h"
#include "instrument/simulator/faulty_instrument.h"

namespace zolvane {

class SimulatedLink final : public BenchLink {
 public:
  // The instrument is not null. It goes on when the link ends.
  SimulatedLink(std::shared_ptr<SimulatedInstrument> instrument, FaultPlan faults,
                const InterruptFlag& interrupt)
      : BenchLink{interrupt},
        instrument_{std::move(instrument)},
        answering_{*instrument_, std::move(faults)} {}

  SimulatedLink(SimulatedInstrument instrument, FaultPlan faults, const InterruptFlag& interrupt)
      : SimulatedLink{std::make_shared<SimulatedInstrument>(std::move(instrument)), std::move(faults),
                      interrupt} {}

  void Begin() override { instrument_->SwitchOn(); }

 private:
  // What a wire would make of the reply, without its time: late is too late, and what answers
  // something else is skipped.
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override;

  std::shared_ptr<SimulatedInstrument> instrument_;
  FaultyInstrument answering_;
};

}  // namespace zolvane
