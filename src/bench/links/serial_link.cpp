#include "bench/links/serial_link.h"

#include <utility>

namespace zolvane {
namespace {

template <class Option>
bool SetOption(asio::serial_port& port, Option option) {
  std::error_code error;
  port.set_option(option, error);
  return !error;
}

}  // namespace

SerialLink::SerialLink(std::string device, unsigned baud, LinkTimeout timeout, const InterruptFlag& interrupt)
    : StreamLink{timeout, AfterTimeout::WaitForQuiet, interrupt}, device_{std::move(device)}, baud_{baud} {}

bool SerialLink::Open(Clock::time_point /*deadline*/) {
  using Port8N1 = asio::serial_port;
  std::error_code error;
  Port.emplace(Io);
  Port->open(device_, error);
  const bool isOpen = !error && SetOption(*Port, Port8N1::baud_rate{baud_}) &&
                      SetOption(*Port, Port8N1::character_size{8}) &&
                      SetOption(*Port, Port8N1::parity{Port8N1::parity::none}) &&
                      SetOption(*Port, Port8N1::stop_bits{Port8N1::stop_bits::one}) &&
                      SetOption(*Port, Port8N1::flow_control{Port8N1::flow_control::none});
  if (!isOpen) {
    Port.reset();
  }
  return isOpen;
}

}  // namespace zolvane
