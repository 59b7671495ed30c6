#include "instrument/links/link_factory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

#include "files/paths.h"
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

struct LinkNeeds {
  double Timeout;
  const FaultPlan& Faults;
  const InterruptFlag& Interrupt;
};

[[noreturn]] void Refuse(std::string_view demand, const std::string& text) {
  throw UsageError{Joined("--link: ", demand, ", not ", Quoted(text))};
}

LinkPointer CreateSimulated(const std::string& file, const LinkNeeds& needs) {
  return std::make_shared<SimulatedLink>(SimulatedInstrument{{.StateFile = file}}, needs.Faults,
                                         needs.Interrupt);
}

LinkPointer CreateTcp(const std::string& place, const LinkNeeds& needs) {
  auto hostAndPort = ParseHostAndPort(place, 1);
  if (!hostAndPort) {
    Refuse("tcp takes HOST:PORT with a port from 1 to 65535", place);
  }
  return std::make_shared<TcpLink>(*std::move(hostAndPort), LinkTimeout{needs.Timeout}, needs.Interrupt);
}

LinkPointer CreateSerial(const std::string& place, const LinkNeeds& needs) {
  const auto comma = place.rfind(',');
  const auto device = place.substr(0, comma);
  const auto baud = comma == std::string::npos ? std::optional{defaultBaud}
                                               : WholeNumberIn(std::string_view{place}.substr(comma + 1), 1U,
                                                               std::numeric_limits<unsigned>::max());
  if (device.empty() || !baud || !IsBaudRate(*baud)) {
    Refuse("serial takes DEVICE or DEVICE,BAUD with a baud rate such as 9600", place);
  }
  return std::make_shared<SerialLink>(device, *baud, LinkTimeout{needs.Timeout}, needs.Interrupt);
}

LinkPointer CreateScripted(const std::string& file, const LinkNeeds& needs) {
  if (file.empty()) {
    Refuse("script takes the name of a file", file);
  }
  return std::make_shared<ScriptedLink>(ReadLinkScript(file), needs.Interrupt);
}

LinkPointer CreateNone(const std::string& /*place*/, const LinkNeeds& needs) {
  return std::make_shared<NoLink>(needs.Interrupt);
}

enum class LinkPlace : std::uint8_t { None, Needed, Any };

struct LinkKind {
  LinkKindHelp Help;
  std::string_view Name;  // before the colon
  LinkPlace Demand;       // after it; Make refuses what does not fit
  LinkPointer (*Make)(const std::string& place, const LinkNeeds& needs);
};

constexpr std::string_view deviceFolder = "/dev/";

constexpr std::array<LinkKind, 7> linkKinds{{
    {{"sim", "simulated inside the process"}, "sim", LinkPlace::None, CreateSimulated},
    {{"sim:FILE", "the same, its memory kept in FILE"}, "sim", LinkPlace::Needed, CreateSimulated},
    {{"tcp:HOST:PORT", "behind a TCP socket"}, "tcp", LinkPlace::Any, CreateTcp},
    {{"serial:DEVICE[,BAUD]", "on a serial port or a pseudo-terminal"},
     "serial",
     LinkPlace::Any,
     CreateSerial},
    {{"/dev/...[,BAUD]", "the same"}, deviceFolder, LinkPlace::Needed, CreateSerial},
    {{"script:FILE", "replies out of a JSON file"}, "script", LinkPlace::Any, CreateScripted},
    {{"none", "no instrument: every command fails"}, "none", LinkPlace::None, CreateNone},
}};

// The value of --link, taken apart.
struct LinkText {
  std::string Kind;
  std::optional<std::string> Place;

  bool Fits(const LinkKind& kind) const {
    const bool isMet = kind.Demand == LinkPlace::Needed ? Place && !Place->empty() : !Place;
    return Kind == kind.Name && (isMet || kind.Demand == LinkPlace::Any);
  }
};

LinkText TakenApart(const std::string& text) {
  if (text.starts_with(deviceFolder)) {
    return {std::string{deviceFolder}, text};
  }
  const auto colon = text.find(':');
  return {text.substr(0, colon),
          colon == std::string::npos ? std::nullopt : std::optional{text.substr(colon + 1)}};
}

[[noreturn]] void RefuseKind(const std::string& kind, const std::string& text) {
  std::string usages;
  std::vector<std::string_view> names;
  for (const auto& row : linkKinds) {
    usages.append(usages.empty() ? "" : &row == &linkKinds.back() ? " or " : ", ").append(row.Help.Usage);
    names.push_back(row.Name);
  }
  throw UsageError{Joined("--link takes ", usages, ", not ", Quoted(text), DidYouMean(kind, names))};
}

}  // namespace

std::vector<LinkKindHelp> LinkKindsHelp() {
  std::vector<LinkKindHelp> help;
  std::ranges::transform(linkKinds, std::back_inserter(help), &LinkKind::Help);
  return help;
}

std::optional<std::string> FileOfLink(std::string_view text) {
  for (const std::string_view kind : {"sim:", "script:"}) {
    if (text.starts_with(kind) && text.size() > kind.size()) {
      return AbsolutePath(text.substr(kind.size()));
    }
  }
  return std::nullopt;
}

std::shared_ptr<BenchLink> CreateLink(const std::string& text, double timeout, const InterruptFlag& interrupt,
                                      const FaultPlan& faults) {
  const auto parts = TakenApart(text);
  const auto* const kind = std::ranges::find_if(linkKinds, [&](const auto& row) { return parts.Fits(row); });
  if (kind == linkKinds.end()) {
    RefuseKind(parts.Kind, text);
  }
  if (!faults.IsEmpty() && kind->Make != CreateSimulated) {
    throw UsageError{Joined("--fault goes with a simulated link (--link sim), not with ", Quoted(text))};
  }
  return kind->Make(parts.Place.value_or(""), {timeout, faults, interrupt});
}

}  // namespace zolvane
