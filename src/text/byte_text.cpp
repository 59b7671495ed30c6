#include "text/byte_text.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "text/text_encoding.h"

namespace zolvane {
namespace {

constexpr std::string_view byteMark = "\\x";

void AppendByteNumber(std::string& text, char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto number = static_cast<unsigned char>(byte);
  text.append(byteMark).append(1, digits[number / 16]).append(1, digits[number % 16]);
}

std::optional<char> NumberedByteAt(std::string_view text, std::size_t at) {
  constexpr std::size_t length = 4;
  const auto digits =
      text.substr(at).starts_with(byteMark) ? text.substr(at, length).substr(byteMark.size()) : "";
  std::uint8_t number = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  const bool isNumber = digits.size() == 2 && parsed.ptr == digits.data() + digits.size();
  return isNumber ? std::optional{static_cast<char>(number)} : std::nullopt;
}

}  // namespace

std::string TextOfBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const auto length = Utf8SequenceAt(bytes, at).Length;
    if (length == 0 || bytes.substr(at).starts_with(byteMark)) {
      AppendByteNumber(text, bytes[at++]);
    } else {
      text.append(bytes.substr(at, length));
      at += length;
    }
  }
  return text;
}

std::string BytesOfText(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = NumberedByteAt(text, at);
    bytes += byte.value_or(text[at]);
    at += byte ? byteMark.size() + 2 : 1;
  }
  return bytes;
}

}  // namespace zolvane
