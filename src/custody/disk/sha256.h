// The name of a content: what `sha256sum` prints of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zolvane {

inline constexpr std::size_t sha256HexLength = 64;

// 64 digits, lower case. Empty, which names nothing, if the system lacks the means.
std::string Sha256Hex(std::string_view bytes);

// Such a name, and so nothing that leads out of a folder.
bool IsSha256Hex(std::string_view text);

// Bytes as digits, lower case.
std::string HexOf(std::string_view bytes);

}  // namespace zolvane
