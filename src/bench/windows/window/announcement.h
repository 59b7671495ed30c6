// What a program with windows says to the user while it has none.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace zolvane {

enum class Announcement : std::uint8_t { Information, Error };

// Says it on `stream` if the program's standard output (for an error: its standard error) leads somewhere;
// else on the console that the program was started from. False when there is neither.
bool SayOnTerminal(Announcement kind, const std::string& text, std::ostream& stream);

// The same; where there is neither, in a box, which it waits for.
void Announce(Announcement kind, const std::string& text, std::ostream& stream);

}  // namespace zolvane
