#include "instrument/links/link_factory.h"

#include <array>
#include <limits>
#include <string_view>

#include "instrument/links/no_link.h"
#include "instrument/links/scripted_link.h"
#include "instrument/links/serial_link.h"
#include "instrument/links/simulated_link.h"
#include "instrument/links/tcp_link.h"
#include "text/host_and_port.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

using LinkPointer = std::shared_ptr<BenchLink>;

[[noreturn]] void Refuse(std::string_view demand, const std::string& text) {
  throw UsageError{Joined("--link: ", demand, ", not ", Quoted(text))};
}

LinkPointer CreateSimulated(const std::string& file, const InterruptFlag& interrupt) {
  return std::make_shared<SimulatedLink>(SimulatedInstrument{{.StateFile = file}}, interrupt);
}

LinkPointer CreateTcp(const std::string& place, double timeout, const InterruptFlag& interrupt) {
  auto hostAndPort = ParseHostAndPort(place, 1);
  if (!hostAndPort) {
    Refuse("tcp takes HOST:PORT with a port from 1 to 65535", place);
  }
  return std::make_shared<TcpLink>(*std::move(hostAndPort), LinkTimeout{timeout}, interrupt);
}

LinkPointer CreateSerial(const std::string& place, double timeout, const InterruptFlag& interrupt) {
  const auto comma = place.rfind(',');
  const auto device = place.substr(0, comma);
  const auto baud = comma == std::string::npos ? std::optional{defaultBaud}
                                               : WholeNumberIn(std::string_view{place}.substr(comma + 1), 1U,
                                                               std::numeric_limits<unsigned>::max());
  if (device.empty() || !baud || !IsBaudRate(*baud)) {
    Refuse("serial takes DEVICE or DEVICE,BAUD with a baud rate such as 9600", place);
  }
  return std::make_shared<SerialLink>(device, *baud, LinkTimeout{timeout}, interrupt);
}

LinkPointer CreateScripted(const std::string& file, const InterruptFlag& interrupt) {
  if (file.empty()) {
    Refuse("script takes the name of a file", file);
  }
  return std::make_shared<ScriptedLink>(ReadLinkScript(file), interrupt);
}

constexpr std::array<LinkKindHelp, 7> kindsHelp{{
    {"sim", "simulated inside the process; the default"},
    {"sim:FILE", "the same, its memory kept in FILE"},
    {"tcp:HOST:PORT", "behind a TCP socket"},
    {"serial:DEVICE[,BAUD]", "on a serial port or a pseudo-terminal"},
    {"/dev/...[,BAUD]", "the same"},
    {"script:FILE", "replies out of a JSON file"},
    {"none", "no instrument: every command fails"},
}};

constexpr std::array<std::string_view, 5> kinds{"sim", "tcp", "serial", "script", "none"};

[[noreturn]] void RefuseKind(const std::string& kind, const std::string& text) {
  std::string usages;
  for (const auto& row : kindsHelp) {
    usages.append(usages.empty() ? "" : &row == &kindsHelp.back() ? " or " : ", ").append(row.Usage);
  }
  throw UsageError{Joined("--link takes ", usages, ", not ", Quoted(text), DidYouMean(kind, kinds))};
}

}  // namespace

std::span<const LinkKindHelp> LinkKindsHelp() {
  return kindsHelp;
}

std::shared_ptr<BenchLink> CreateLink(const std::string& text, double timeout,
                                      const InterruptFlag& interrupt) {
  if (text.starts_with("/dev/")) {
    return CreateSerial(text, timeout, interrupt);
  }
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
  RefuseKind(kind, text);
}

}  // namespace zolvane
