// What all links of the bench have in common: the two flags, and the rules around an exchange.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/instrument_link.h"
#include "instrument/links/delivery.h"
#include "instrument/links/interrupt_flag.h"

namespace zolvane {

class BenchLink : public InstrumentLink {
 public:
  // The interrupt outlives the link.
  explicit BenchLink(const InterruptFlag& interrupt) : interrupt_{interrupt} {}

  // Call this before the first command, when nothing can refuse the run any more: from here on the link may
  // create files. Throws UsageError if it cannot.
  virtual void Begin() {}

  // Also true, and for good, once the user has asked to stop: the add-in clears the flag before each command.
  std::optional<bool> Stop() final { return stop_ || interrupt_.IsRaised(); }
  Status SetStop(bool stop) final;

  // The bench has nothing to hold back.
  Status SetHold(bool) final { return Status::Success(); }

  // A command that contains a line end cannot be sent as one line and is not sent; nor is any command once
  // the user has asked to stop.
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) final;

  // What became of the last command.
  const Delivery& LastDelivery() const { return delivery_; }

 protected:
  // The instrument's reply, without its line end; empty if it did not answer. `delivery` starts as that of a
  // command that has left; more is added to it here.
  virtual std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) = 0;

  void RaiseStop() { stop_ = true; }
  const InterruptFlag& Interrupt() const { return interrupt_; }

 private:
  const InterruptFlag& interrupt_;
  Delivery delivery_;
  bool stop_ = false;
};

}  // namespace zolvane
