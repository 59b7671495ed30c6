#include "config/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zolvane {
namespace {

// The Latin letters of Windows-1252 beyond ASCII all take two bytes in UTF-8, and so do their upper-case
// partners.
using LetterBytes = std::array<char, 2>;

constexpr LetterBytes Encoded(std::uint32_t codePoint) {
  return {static_cast<char>(0xC0 | (codePoint >> 6)), static_cast<char>(0x80 | (codePoint & 0x3F))};
}

constexpr std::uint32_t Decoded(unsigned char first, unsigned char second) {
  return (static_cast<std::uint32_t>(first & 0x1F) << 6) | (second & 0x3FU);
}

constexpr std::uint32_t UpperCodePoint(std::uint32_t letter) {
  constexpr std::uint32_t divisionSign = 0xF7;
  switch (letter) {
    case 0xFF:
      return 0x178;  // y with diaeresis: the only one whose partner lies outside Latin-1
    case 0x153:
      return 0x152;  // oe
    case 0x161:
      return 0x160;  // s with caron
    case 0x17E:
      return 0x17D;  // z with caron
    default:
      return letter >= 0xE0 && letter <= 0xFE && letter != divisionSign ? letter - 0x20 : letter;
  }
}

bool IsTwoByteSequence(std::string_view text, std::size_t position) {
  if (position + 1 >= text.size()) {
    return false;
  }
  const auto first = static_cast<unsigned char>(text[position]);
  const auto second = static_cast<unsigned char>(text[position + 1]);
  return first >= 0xC2 && first <= 0xDF && (second & 0xC0) == 0x80;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  std::string upper{text};
  for (std::size_t position = 0; position < upper.size(); ++position) {
    char& letter = upper[position];
    if (letter >= 'a' && letter <= 'z') {
      letter = static_cast<char>(letter - 'a' + 'A');
    } else if (IsTwoByteSequence(text, position)) {
      const auto codePoint =
          Decoded(static_cast<unsigned char>(text[position]), static_cast<unsigned char>(text[position + 1]));
      std::ranges::copy(Encoded(UpperCodePoint(codePoint)),
                        upper.begin() + static_cast<std::ptrdiff_t>(position));
      ++position;
    }
  }
  return upper;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && UpperCase(left) == UpperCase(right);
}

std::string WithoutQuotes(std::string_view text) {
  std::string bare{text};
  std::erase(bare, '"');
  return bare;
}

std::string InQuotes(std::string_view text) {
  std::string quoted;
  quoted.reserve(text.size() + 2);
  return quoted.append(1, '"').append(text).append(1, '"');
}

std::string Replaced(std::string_view text, std::string_view what, std::string_view with) {
  std::string result;
  std::size_t start = 0;
  for (auto found = text.find(what); found != std::string_view::npos; found = text.find(what, start)) {
    result.append(text.substr(start, found - start)).append(with);
    start = found + what.size();
  }
  return result.append(text.substr(start));
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string ItemKey(std::string_view item) {
  return std::string{"Item"}.append(item);
}

}  // namespace zolvane
