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

// Each system keeps the settings of a port in a structure of its own.
template <class Result, class Settings>
bool CanStore(Result (asio::serial_port::baud_rate::*store)(Settings&, std::error_code&) const,
              unsigned baud) {
  Settings settings{};
  std::error_code error;
  (asio::serial_port::baud_rate{baud}.*store)(settings, error);
  return !error;
}

}  // namespace

bool IsBaudRate(unsigned baud) {
  return baud > 0 && CanStore(&asio::serial_port::baud_rate::store, baud);
}

SerialLink::SerialLink(std::string device, unsigned baud, LinkTimeout timeout, const InterruptFlag& interrupt,
                       LinkTimeout quiet)
    : StreamLink{timeout, quiet, interrupt}, device_{std::move(device)}, baud_{baud} {}

bool SerialLink::Open(Clock::time_point /*deadline*/) {
  using Settings = asio::serial_port;
  std::error_code error;
  Port.emplace(Io);
  Port->open(device_, error);
  const bool isOpen = !error && SetOption(*Port, Settings::baud_rate{baud_}) &&
                      SetOption(*Port, Settings::character_size{8}) &&
                      SetOption(*Port, Settings::parity{Settings::parity::none}) &&
                      SetOption(*Port, Settings::stop_bits{Settings::stop_bits::one}) &&
                      SetOption(*Port, Settings::flow_control{Settings::flow_control::none});
  if (!isOpen) {
    Port.reset();
  }
  return isOpen;
}

}  // namespace zolvane
