// What a program with windows tells the user while it has none.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace zolvane {

enum class Announcement : std::uint8_t { Information, Error };

// Writes the text to `stream` if the program's standard output (for an error: its standard error) leads
// somewhere, otherwise to the console that the program was started from. False if there is neither.
bool SayOnTerminal(Announcement kind, const std::string& text, std::ostream& stream);

// The same, but without either it shows a box and waits until the box is closed.
void Announce(Announcement kind, const std::string& text, std::ostream& stream);

}  // namespace zolvane
