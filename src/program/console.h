// Everything that people read: results on standard output; progress, messages and errors on standard error.
// Nothing that it prints controls the terminal, wherever the text came from (see printable.h).
#pragma once

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "text/printable.h"

namespace zolvane {

class Console {
 public:
  struct Setup {
    std::string_view Program = "zolvane-bench";  // in front of an error; empty: nothing
    bool IsQuiet = false;                        // errors only
    bool ResultsGoToNotes = false;               // standard output holds something else
    std::optional<std::size_t> NotesWidth;       // in columns; empty: the notes do not go to a terminal
  };

  // Both streams outlive the console.
  Console(std::ostream& results, std::ostream& notes, const Setup& setup);
  ~Console();

  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // A result for people, in whole lines. Prints nothing when quiet.
  void Print(std::string_view text);

  // A result for programs: printed also when quiet.
  void PrintDocument(std::string_view text);

  // One line each.
  void Note(std::string_view line);
  void Error(std::string_view line);

  // The progress line: a text, and behind it how many of the expected commands have been sent. On a terminal
  // it is one line that changes; elsewhere each new text is a line of its own, without the number.
  void ShowStatus(std::string_view text);
  void ExpectCommands(std::size_t number);
  void CountCommand();

  // Takes the progress line off the terminal, because something else is about to write there.
  void ClearStatus();

  // Progress is shown on a terminal, so it is worth knowing how many commands to expect.
  bool CountsCommands() const { return setup_.NotesWidth.has_value() && !setup_.IsQuiet; }

  // Flushes the printed results, and says why some of them were lost: standard output is closed or
  // full, or its reader has left.
  std::error_code Flush();

 private:
  using Clock = std::chrono::steady_clock;

  void PrintResult(std::string_view text);
  void Draw();

  std::ostream& results_;
  std::ostream& notes_;
  Setup setup_;
  std::error_code failure_;  // of the results
  std::string status_;
  std::size_t expected_ = 0;
  std::size_t counted_ = 0;
  bool isDrawn_ = false;
  Clock::time_point nextDrawing_;
};

}  // namespace zolvane
