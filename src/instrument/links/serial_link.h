// An instrument on a serial port, or on a pseudo-terminal: 8 data bits, no parity, one
// stop bit, no flow control.
#pragma once

#include <optional>
#include <string>

#include "instrument/links/stream_link.h"

namespace zolvane {

inline constexpr unsigned defaultBaud = 9600;

// Whether this system supports that rate.
bool IsBaudRate(unsigned baud);

class SerialLink final : public StreamLink<asio::serial_port> {
 public:
  // A port whose hardware lacks the rate fails to open.
  SerialLink(const std::string& device, unsigned baud, LinkTimeout timeout, const InterruptFlag& interrupt);

 private:
  std::optional<std::string> Open(Clock::time_point deadline) override;

  std::string device_;
  unsigned baud_;
};

}  // namespace zolvane
