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

  // To be called before the first command, when nothing can refuse the run any more: from here on the link may
  // leave something behind. Throws UsageError when it cannot.
  virtual void Begin() {}

  // Also true, and for good, once the user has asked to stop: the add-in clears the flag before each command.
  std::optional<bool> Stop() final { return stop_ || interrupt_.IsRaised(); }
  Status SetStop(bool stop) final;

  // Nothing of a bench is held back meanwhile.
  Status SetHold(bool) final { return Status::Success(); }

  // A command with a line end in it cannot be sent as one line and is not sent at all; nor is any once the user has
  // asked to stop.
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) final;

  // What became of the last command.
  const Delivery& LastDelivery() const { return delivery_; }

 protected:
  // The instrument's reply, without its line end; nothing when it did not answer. `delivery` is that of a command that
  // has left; what else there is to say of it is put there.
  virtual std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) = 0;

  void RaiseStop() { stop_ = true; }
  const InterruptFlag& Interrupt() const { return interrupt_; }

 private:
  const InterruptFlag& interrupt_;
  Delivery delivery_;
  bool stop_ = false;
};

}  // namespace zolvane
