// Small text operations shared by all tables. Texts are UTF-8; nothing here depends on a locale.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

// Upper case, one character for one: ASCII and the Latin letters of Windows-1252. The length never changes,
// so a letter without a single upper-case partner (such as the sharp s) stays. Bytes that are not UTF-8 stay.
std::string UpperCase(std::string_view text);

// Equal without regard to case, by UpperCase of both.
bool EqualIgnoringCase(std::string_view left, std::string_view right);

std::string WithoutQuotes(std::string_view text);
std::string InQuotes(std::string_view text);

// Every occurrence of `what` replaced by `with`. `what` is not empty.
std::string Replaced(std::string_view text, std::string_view what, std::string_view with);

// Without the spaces and tabs at either end.
std::string_view Trimmed(std::string_view text);

inline constexpr std::string_view lineBreak = "\r\n";

}  // namespace zolvane
