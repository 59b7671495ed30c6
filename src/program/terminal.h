// The terminal that the program runs on, if it does, and what the keyboard can do to it.
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

  // Shows the text and waits for a line. Nothing when none will come: the input has ended, or Ctrl-C was
  // pressed.
  virtual std::optional<std::string> Ask(std::string_view text) = 0;
};

// The user at the terminal behind standard input. Null without a terminal.
std::unique_ptr<Questioner> OpenTerminal();

// The width of the terminal behind standard error, in columns. Nothing when it goes elsewhere.
std::optional<std::size_t> ErrorTerminalWidth();

// The arguments behind the program's name, in UTF-8 where the system has an encoding for them.
std::vector<std::string> ProgramArguments(int count, char** arguments);

// To be called first. Makes a write that is not possible (a closed stream, a reader who has left, a limit on the size
// of files) a failed write instead of the end of the program, and takes the place of standard streams that the program
// was started without: otherwise the first files that it opens would be taken for them.
void KeepStandardStreams();

// From now on Ctrl-C, and a polite request to end, call `interrupt` instead of ending the program, each time. `interrupt`
// must be safe in a signal handler, and in a thread of its own.
void TakeInterrupts(void (*interrupt)());

}  // namespace zolvane
