// Texts from files, replies and arguments, made safe to show to people.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

// The text without anything that could control a terminal or reorder its letters: control characters (those
// of both blocks, escape among them), marks of writing direction, and line and paragraph separators are
// written as JSON writes them ("\u001b"), bytes that are not UTF-8 as "\x9b". Printable text stays as it is.
std::string Printable(std::string_view text);

// The same, but line feeds stay. In a JSON document it changes how texts are spelled, not what they say.
std::string PrintableLines(std::string_view text);

// The same in double quotes, for file names and the user's words in messages.
std::string Quoted(std::string_view text);

// The text as one line, without the blanks that line breaks leave.
std::string OneLine(std::string_view text);

}  // namespace zolvane
