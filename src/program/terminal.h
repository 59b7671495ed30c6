// The terminal that the program runs on, if any, and interrupts from the keyboard.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

// Somebody who can be asked.
class Questioner {
 public:
  virtual ~Questioner() = default;

  // Shows the text and waits for a line. Empty if none will come: the input has ended, or Ctrl-C was pressed.
  virtual std::optional<std::string> Ask(std::string_view text) = 0;
};

// The user at the terminal behind standard input. Null without a terminal.
std::unique_ptr<Questioner> OpenTerminal();

// The width of the terminal behind standard error, in columns. Empty if standard error goes elsewhere.
std::optional<std::size_t> ErrorTerminalWidth();

// The arguments after the program's name, in UTF-8 where the system has an encoding for them.
std::vector<std::string> ProgramArguments(int count, char** arguments);

// The same encoding. Empty if there is no such variable, or nothing in it.
std::optional<std::string> EnvironmentVariable(const std::string& name);

// Call this first. An impossible write (a closed stream, a reader who has left, a limit on file sizes) then
// fails instead of ending the program, and standard streams that the program was started without are
// replaced: otherwise the first files that it opens would be taken for them.
void KeepStandardStreams();

// From now on each Ctrl-C, and each polite request to end, calls `interrupt` instead of ending the program.
// `interrupt` must be safe in a signal handler, and in a thread of its own.
void TakeInterrupts(void (*interrupt)());

}  // namespace zolvane
