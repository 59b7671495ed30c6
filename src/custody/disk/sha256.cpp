#include "custody/disk/sha256.h"

#include <cstddef>

namespace zolvane {
namespace {

constexpr std::string_view digits = "0123456789abcdef";

}  // namespace

bool IsSha256Hex(std::string_view text) {
  return text.size() == sha256HexLength && text.find_first_not_of(digits) == std::string_view::npos;
}

std::string HexOf(std::string_view bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    text.append(1, digits[number / 16]).append(1, digits[number % 16]);
  }
  return text;
}

}  // namespace zolvane
