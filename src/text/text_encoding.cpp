#include "text/text_encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "config/letter_case.h"

namespace zolvane {
namespace {

constexpr std::size_t firstSpecial = 0x80;

// The characters of the bytes 80 to 9F; from A0 on byte and character have the same number.
constexpr std::array<char32_t, 32> specialCharacters{
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,    //
    0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

using Sequence = Utf8Sequence;

constexpr char32_t CharacterOf(char windows1252) {
  const auto number = static_cast<std::uint8_t>(windows1252);
  const bool isSpecial = number >= firstSpecial && number < firstSpecial + specialCharacters.size();
  return isSpecial ? specialCharacters[number - firstSpecial] : number;
}

constexpr std::uint8_t ByteAt(std::string_view text, std::size_t position) {
  return static_cast<std::uint8_t>(text[position]);
}

// The bytes that may follow the first one are narrower for some first bytes: that keeps out overlong forms,
// surrogates, and numbers beyond the last character.
struct Lead {
  std::size_t Length;
  std::uint8_t SecondFrom;
  std::uint8_t SecondTo;
};

constexpr Lead LeadOf(std::uint8_t first) {
  if (first < 0xC2 || first > 0xF4) {
    return {0, 0, 0};
  }
  if (first < 0xE0) {
    return {2, 0x80, 0xBF};
  }
  if (first < 0xF0) {
    return {3, static_cast<std::uint8_t>(first == 0xE0 ? 0xA0 : 0x80),
            static_cast<std::uint8_t>(first == 0xED ? 0x9F : 0xBF)};
  }
  return {4, static_cast<std::uint8_t>(first == 0xF0 ? 0x90 : 0x80),
          static_cast<std::uint8_t>(first == 0xF4 ? 0x8F : 0xBF)};
}

constexpr bool IsContinuation(std::uint8_t byte) {
  return (byte & 0xC0) == 0x80;
}

Sequence SequenceAt(std::string_view text, std::size_t position) {
  const std::uint8_t first = ByteAt(text, position);
  if (first < firstSpecial) {
    return {first, 1};
  }
  const Lead lead = LeadOf(first);
  if (lead.Length == 0 || text.size() - position < lead.Length) {
    return {};
  }
  const std::uint8_t second = ByteAt(text, position + 1);
  if (second < lead.SecondFrom || second > lead.SecondTo) {
    return {};
  }
  char32_t character = first & (0x7FU >> lead.Length);
  for (std::size_t index = 1; index < lead.Length; ++index) {
    const std::uint8_t next = ByteAt(text, position + index);
    if (!IsContinuation(next)) {
      return {};
    }
    character = (character << 6) | (next & 0x3FU);
  }
  return {character, lead.Length};
}

// Only characters below U+10000 occur in Windows-1252.
void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | (character >> 6));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xE0 | (character >> 12));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

char Windows1252ByteOf(char32_t character) {
  if (character < firstSpecial || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<char>(character);
  }
  const auto* const found = std::ranges::find(specialCharacters, character);
  return found == specialCharacters.end()
             ? '?'
             : static_cast<char>(firstSpecial + static_cast<std::size_t>(found - specialCharacters.begin()));
}

// Nearly all bytes of a settings file are ASCII, so eight are looked at in one step.
std::size_t AsciiAtStartOf(std::string_view bytes) {
  constexpr std::uint64_t anyHighBit = 0x8080'8080'8080'8080;
  std::size_t size = 0;
  for (std::uint64_t eight = 0; size + sizeof eight <= bytes.size(); size += sizeof eight) {
    std::memcpy(&eight, bytes.data() + size, sizeof eight);
    if ((eight & anyHighBit) != 0) {
      break;
    }
  }
  while (size < bytes.size() && ByteAt(bytes, size) < firstSpecial) {
    ++size;
  }
  return size;
}

// The characters of a text, one after another.
class UpperCaseReader {
 public:
  UpperCaseReader(std::string_view text, TextEncoding encoding) : rest_{text}, encoding_{encoding} {}

  bool IsAtEnd() const { return rest_.empty(); }

  char32_t Next() {
    const Sequence next =
        encoding_ == TextEncoding::Utf8 ? SequenceAt(rest_, 0) : Sequence{CharacterOf(rest_[0]), 1};
    rest_.remove_prefix(std::max<std::size_t>(next.Length, 1));
    return UpperCase(next.Character);
  }

 private:
  std::string_view rest_;
  TextEncoding encoding_;
};

// Calls `visit` with each well-formed sequence and with each byte that belongs to none
// (as a sequence of length 0).
template <class Visit>
void ForEachSequence(std::string_view text, Visit visit) {
  for (std::size_t position = 0; position < text.size();) {
    const Sequence sequence = SequenceAt(text, position);
    const std::size_t length = std::max<std::size_t>(sequence.Length, 1);
    visit(sequence, text.substr(position, length));
    position += length;
  }
}

}  // namespace

Utf8Sequence Utf8SequenceAt(std::string_view text, std::size_t position) {
  return SequenceAt(text, position);
}

bool IsAscii(std::string_view bytes) {
  return AsciiAtStartOf(bytes) == bytes.size();
}

bool IsUtf8(std::string_view bytes) {
  for (bytes.remove_prefix(AsciiAtStartOf(bytes)); !bytes.empty();) {
    const Sequence sequence = SequenceAt(bytes, 0);
    if (sequence.Length == 0) {
      return false;
    }
    bytes.remove_prefix(sequence.Length);
    bytes.remove_prefix(AsciiAtStartOf(bytes));
  }
  return true;
}

std::size_t CountMalformedLines(std::string_view bytes) {
  if (IsUtf8(bytes)) {
    return 0;
  }
  std::size_t count = 0;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    count += IsUtf8(line) ? 0 : 1;
    bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
  }
  return count;
}

std::string Utf8FromWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    AppendUtf8(text, CharacterOf(byte));
  }
  return text;
}

std::string Windows1252FromUtf8(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  ForEachSequence(text, [&bytes](const Sequence& sequence, std::string_view) {
    bytes.push_back(sequence.Length == 0 ? '?' : Windows1252ByteOf(sequence.Character));
  });
  return bytes;
}

std::string WellFormedUtf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  ForEachSequence(text, [&result](const Sequence& sequence, std::string_view bytes) {
    result.append(sequence.Length == 0 ? std::string_view{"?"} : bytes);
  });
  return result;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right, TextEncoding encoding) {
  if (left == right) {
    return true;
  }
  UpperCaseReader leftReader{left, encoding};
  UpperCaseReader rightReader{right, encoding};
  while (!leftReader.IsAtEnd() && !rightReader.IsAtEnd()) {
    if (leftReader.Next() != rightReader.Next()) {
      return false;
    }
  }
  return leftReader.IsAtEnd() && rightReader.IsAtEnd();
}

// FNV-1a over characters. The last step spreads what differs in high bits to the low ones, by
// which the index is entered.
std::uint32_t HashIgnoringCase(std::string_view name, TextEncoding encoding) {
  std::uint32_t hash = 2166136261U;
  for (UpperCaseReader reader{name, encoding}; !reader.IsAtEnd();) {
    hash = (hash ^ static_cast<std::uint32_t>(reader.Next())) * 16777619U;
  }
  return hash ^ (hash >> 16);
}

}  // namespace zolvane
