// An instrument on a serial port, or on a pseudo-terminal: 8 data bits, no parity, one stop bit, no flow
// control.
#pragma once

#include <string>

#include "bench/links/stream_link.h"

namespace zolvane {

inline constexpr unsigned defaultBaud = 9600;

// How long the line has to be silent before the command behind one that was not answered in time.
inline constexpr LinkTimeout defaultQuiet{1};

// This system can drive serial ports at that rate.
bool IsBaudRate(unsigned baud);

class SerialLink final : public StreamLink<asio::serial_port> {
 public:
  // A port whose hardware lacks the rate cannot be opened. The quiet lasts at least as long as the timeout.
  SerialLink(std::string device, unsigned baud, LinkTimeout timeout, const InterruptFlag& interrupt,
             LinkTimeout quiet = defaultQuiet);

 private:
  bool Open(Clock::time_point deadline) override;

  std::string device_;
  unsigned baud_;
};

}  // namespace zolvane
