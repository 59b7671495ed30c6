// A place on the network, as users type it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zolvane {

struct HostAndPort {
  std::string Host;  // a name or an address, without brackets
  std::uint16_t Port = 0;
};

// HOST:PORT; a host that has colons of its own stands in square brackets ("[::1]:5000"). Empty for
// any other text, and if the port is below `lowestPort`.
std::optional<HostAndPort> ParseHostAndPort(std::string_view text, std::uint16_t lowestPort);

}  // namespace zolvane
