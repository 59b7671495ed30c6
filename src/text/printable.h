// Texts out of files, replies and arguments as people may safely see them.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

// The text without anything that could steer a terminal or turn the order of its letters: control characters (escape
// and those of the second block among them), marks of writing direction, and separators of lines and paragraphs stand
// as JSON writes them ("\u001b"), bytes that are not UTF-8 as "\x9b". What is printable already stays as it is.
std::string Printable(std::string_view text);

// The same, but line feeds stay. Applied to a JSON document it changes how texts are spelled and not what they say.
std::string PrintableLines(std::string_view text);

// The same in double quotes, as names of files and words of the user stand in messages.
std::string Quoted(std::string_view text);

// The text as one line, without the blanks that line breaks leave.
std::string OneLine(std::string_view text);

}  // namespace zolvane
