// The upper case of one character, for names that are compared without regard to case.
#pragma once

namespace zolvane {

// One character for one: ASCII and the Latin letters of Windows-1252. A letter without a single upper-case
// partner (such as the sharp s) stays.
constexpr char32_t UpperCase(char32_t letter) {
  constexpr char32_t divisionSign = 0xF7;
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
      break;
  }
  const bool isAscii = letter >= U'a' && letter <= U'z';
  const bool isLatin1 = letter >= 0xE0 && letter <= 0xFE && letter != divisionSign;
  return isAscii || isLatin1 ? letter - 0x20 : letter;
}

}  // namespace zolvane
