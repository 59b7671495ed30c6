#include "bench/links/link_factory.h"

#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "bench/links/no_link.h"
#include "bench/links/scripted_link.h"
#include "bench/links/serial_link.h"
#include "bench/links/simulated_link.h"
#include "bench/links/tcp_link.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

using LinkPointer = std::shared_ptr<BenchLink>;

[[noreturn]] void Refuse(const std::string& reason, const std::string& what) {
  throw UsageError{"--link: " + reason + ": " + what};
}

std::optional<unsigned> WholeNumberIn(std::string_view text, unsigned largest) {
  unsigned number = 0;
  const auto* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  const bool isNumber = result.ec == std::errc{} && result.ptr == end && number > 0 && number <= largest;
  return isNumber ? std::optional{number} : std::nullopt;
}

LinkPointer CreateSimulated(const std::string& file, const InterruptFlag& interrupt) {
  return std::make_shared<SimulatedLink>(SimulatedInstrument{{.StateFile = file}}, interrupt);
}

// HOST:PORT, the host in square brackets when it has colons of its own.
LinkPointer CreateTcp(const std::string& place, double timeout, const InterruptFlag& interrupt) {
  constexpr unsigned highestPort = 65535;
  const auto colon = place.rfind(':');
  auto host = place.substr(0, colon);
  if (host.starts_with('[') && host.ends_with(']')) {
    host = host.substr(1, host.size() - 2);
  }
  if (colon == std::string::npos || host.empty() || !WholeNumberIn(place.substr(colon + 1), highestPort)) {
    Refuse("tcp takes HOST:PORT with a port from 1 to 65535", "tcp:" + place);
  }
  return std::make_shared<TcpLink>(host, place.substr(colon + 1), LinkTimeout{timeout}, interrupt);
}

LinkPointer CreateSerial(const std::string& place, double timeout, const InterruptFlag& interrupt) {
  constexpr unsigned highestBaud = 4'000'000;
  const auto comma = place.rfind(',');
  const auto device = place.substr(0, comma);
  const auto baud = comma == std::string::npos
                        ? std::optional{defaultBaud}
                        : WholeNumberIn(std::string_view{place}.substr(comma + 1), highestBaud);
  if (device.empty() || !baud) {
    Refuse("serial takes DEVICE or DEVICE,BAUD with a baud rate such as 9600", "serial:" + place);
  }
  return std::make_shared<SerialLink>(device, *baud, LinkTimeout{timeout}, interrupt);
}

LinkPointer CreateScripted(const std::string& file, const InterruptFlag& interrupt) {
  if (file.empty()) {
    Refuse("script takes the name of a file", "script:");
  }
  return std::make_shared<ScriptedLink>(ReadLinkScript(file), interrupt);
}

}  // namespace

std::shared_ptr<BenchLink> CreateLink(const std::string& text, double timeout,
                                      const InterruptFlag& interrupt) {
  const auto colon = text.find(':');
  const auto kind = text.substr(0, colon);
  const bool hasPlace = colon != std::string::npos;
  const auto place = hasPlace ? text.substr(colon + 1) : std::string{};
  if (kind == "sim" && hasPlace == !place.empty()) {
    return CreateSimulated(place, interrupt);
  }
  if (kind == "tcp") {
    return CreateTcp(place, timeout, interrupt);
  }
  if (kind == "serial") {
    return CreateSerial(place, timeout, interrupt);
  }
  if (kind == "script") {
    return CreateScripted(place, interrupt);
  }
  if (text == "none") {
    return std::make_shared<NoLink>(interrupt);
  }
  Refuse("takes sim, sim:FILE, tcp:HOST:PORT, serial:DEVICE[,BAUD], script:FILE or none", text);
}

}  // namespace zolvane
