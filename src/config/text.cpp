#include "config/text.h"

#include <algorithm>
#include <array>

#include "config/letter_case.h"

namespace zolvane {
namespace {

// The Latin letters of Windows-1252 beyond ASCII all take two bytes in UTF-8, and so do
// their upper-case partners.
using LetterBytes = std::array<char, 2>;

constexpr LetterBytes Encoded(char32_t codePoint) {
  return {static_cast<char>(0xC0 | (codePoint >> 6)), static_cast<char>(0x80 | (codePoint & 0x3F))};
}

constexpr char32_t Decoded(unsigned char first, unsigned char second) {
  return (static_cast<char32_t>(first & 0x1F) << 6) | (second & 0x3FU);
}

constexpr bool IsBlank(char character) {
  return character == ' ' || character == '\t';
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
      letter = static_cast<char>(UpperCase(static_cast<char32_t>(letter)));
    } else if (IsTwoByteSequence(text, position)) {
      const auto codePoint =
          Decoded(static_cast<unsigned char>(text[position]), static_cast<unsigned char>(text[position + 1]));
      std::ranges::copy(Encoded(UpperCase(codePoint)), upper.begin() + static_cast<std::ptrdiff_t>(position));
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
  while (!text.empty() && IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace zolvane
