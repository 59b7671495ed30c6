#include "text/printable.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "config/text.h"
#include "text/joined.h"
#include "text/text_encoding.h"

namespace zolvane {
namespace {

struct CharacterRange {
  char32_t First;
  char32_t Last;
};

// What controls a terminal, breaks a line or changes the direction of writing.
constexpr std::array<CharacterRange, 7> steeringCharacters{{
    {0x0000, 0x001F},  // control characters, escape among them
    {0x007F, 0x009F},  // delete, and the control characters of the second block
    {0x061C, 0x061C},  // the mark of Arabic letters
    {0x200E, 0x200F},  // marks of direction
    {0x2028, 0x2029},  // separators of lines and of paragraphs
    {0x202A, 0x202E},  // embeddings and overrides of direction
    {0x2066, 0x2069},  // isolates of direction
}};

bool Steers(char32_t character) {
  return std::ranges::any_of(steeringCharacters, [character](const auto& range) {
    return range.First <= character && character <= range.Last;
  });
}

void AppendHexadecimal(std::string& text, char32_t number, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += "0123456789abcdef"[(number >> static_cast<unsigned>(shift)) & 0xFU];
  }
}

void AppendPrintable(std::string& printable, std::string_view bytes, const Utf8Sequence& sequence) {
  if (sequence.Length == 0) {
    AppendHexadecimal(printable += "\\x", static_cast<unsigned char>(bytes.front()), 2);
  } else if (Steers(sequence.Character)) {
    AppendHexadecimal(printable += "\\u", sequence.Character, 4);
  } else {
    printable += bytes;
  }
}

std::string PrintableBut(std::string_view kept, std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto sequence = Utf8SequenceAt(text, at);
    const auto bytes = text.substr(at, std::max<std::size_t>(1, sequence.Length));
    if (kept.find(bytes.front()) != std::string_view::npos) {
      printable += bytes;
    } else {
      AppendPrintable(printable, bytes, sequence);
    }
    at += bytes.size();
  }
  return printable;
}

}  // namespace

std::string Printable(std::string_view text) {
  return PrintableBut("", text);
}

std::string PrintableLines(std::string_view text) {
  return PrintableBut("\n", text);
}

std::string Quoted(std::string_view text) {
  return InQuotes(Printable(text));
}

std::string OneLine(std::string_view text) {
  constexpr std::string_view blanks = " \r\n\t";
  std::string line;
  while (!text.empty()) {
    const auto start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) {
      break;
    }
    text.remove_prefix(start);
    const auto word = text.substr(0, text.find_first_of(blanks));
    line.append(line.empty() ? "" : " ").append(Printable(word));
    text.remove_prefix(word.size());
  }
  return line;
}

}  // namespace zolvane
