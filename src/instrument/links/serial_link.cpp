#include "instrument/links/serial_link.h"

#include "instrument/links/open_failure.h"
#include "instrument/links/serial_claim.h"

namespace zolvane {
namespace {

// Each system has its own structure for the settings of a port.
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

SerialLink::SerialLink(const std::string& device, unsigned baud, LinkTimeout timeout,
                       const InterruptFlag& interrupt)
    : StreamLink{"serial:" + device, timeout, AfterTimeout::Keep, interrupt}, device_{device}, baud_{baud} {}

std::optional<std::string> SerialLink::Open(Clock::time_point /*deadline*/) {
  using Settings = asio::serial_port;
  std::error_code error;
  Port.open(device_, error);
  if (!error) {
    error = ClaimSerialPort(Port);
  }
  const auto set = [this, &error](auto option) {
    if (!error) {
      Port.set_option(option, error);
    }
  };
  set(Settings::baud_rate{baud_});
  set(Settings::character_size{8});
  set(Settings::parity{Settings::parity::none});
  set(Settings::stop_bits{Settings::stop_bits::one});
  set(Settings::flow_control{Settings::flow_control::none});
  if (!error) {
    return std::nullopt;
  }
  std::error_code ignored;
  Port.close(ignored);
  return ReasonOf(error);
}

}  // namespace zolvane
