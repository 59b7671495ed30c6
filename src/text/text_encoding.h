// The two encodings of settings files. Programs on Windows have written both, and a file says by its bytes
// alone which one it is: whatever is well-formed UTF-8 is UTF-8, anything else is Windows-1252.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zolvane {

struct Utf8Sequence {
  char32_t Character = 0;
  std::size_t Length = 0;  // in bytes; 0: no well-formed sequence starts here
};

// What starts at that byte of the text.
Utf8Sequence Utf8SequenceAt(std::string_view text, std::size_t position);

enum class TextEncoding { Utf8, Windows1252 };

// Means the same in both encodings.
bool IsAscii(std::string_view bytes);

// Well-formed to the last byte: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool IsUtf8(std::string_view bytes);

// The lines (ended by LF) that are not well-formed. Their number can be kept up to date line by line, because
// a sequence of UTF-8 never reaches across a line end.
std::size_t CountMalformedLines(std::string_view bytes);

// Every byte has a character: the five that Windows-1252 leaves undefined stand for the control characters of
// the same number, and so find their way back.
std::string Utf8FromWindows1252(std::string_view bytes);

// Characters that Windows-1252 does not have, and bytes that are not UTF-8, become "?".
std::string Windows1252FromUtf8(std::string_view text);

// Bytes that do not belong to a well-formed sequence become "?".
std::string WellFormedUtf8(std::string_view text);

// Equal but for the case of letters (see config/letter_case.h). Both are texts of this encoding.
bool EqualIgnoringCase(std::string_view left, std::string_view right, TextEncoding encoding);

// The same for names that are equal in this sense.
std::uint32_t HashIgnoringCase(std::string_view name, TextEncoding encoding);

}  // namespace zolvane
