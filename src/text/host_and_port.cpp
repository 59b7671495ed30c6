#include "text/host_and_port.h"

#include <limits>

#include "text/whole_number.h"

namespace zolvane {

std::optional<HostAndPort> ParseHostAndPort(std::string_view text, std::uint16_t lowestPort) {
  constexpr auto highestPort = std::numeric_limits<std::uint16_t>::max();
  const auto colon = text.rfind(':');
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  auto host = text.substr(0, colon);
  const bool isBracketed = host.starts_with('[') && host.ends_with(']');
  if (isBracketed) {
    host = host.substr(1, host.size() - 2);
  }
  const std::string_view misplaced = isBracketed ? "[]" : "[]:";
  const auto port = WholeNumberIn(text.substr(colon + 1), lowestPort, highestPort);
  if (host.empty() || host.find_first_of(misplaced) != std::string_view::npos || !port) {
    return std::nullopt;
  }
  return HostAndPort{.Host = std::string{host}, .Port = *port};
}

}  // namespace zolvane
