// The commands of one operation: how many there were, and what became of each.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zolvane {

struct RefusedCommand {
  std::string Key;    // or the whole command, if it names no calibration key
  std::string Reply;  // without line ends and blanks at its ends
};

struct CommandTally {
  std::size_t Expected = 0;  // what a run with every send answered would send; 0: unknown
  std::size_t Sent = 0;
  std::size_t Accepted = 0;     // answered "OK", or with a value
  std::size_t Refused = 0;      // answered with anything else
  std::size_t UnknownKeys = 0;  // of those refused: questions for keys that the instrument does not hold
  std::size_t Unexpected = 0;   // of those refused: answers that the operation cannot have asked for
  std::size_t NotAnswered = 0;
  std::size_t Undelivered = 0;  // the link could not send them
  std::optional<RefusedCommand> FirstRefused;
  std::optional<std::string> FirstNotAnswered;  // its key, or the whole command
  std::optional<std::string> FirstProblem;      // why the link could not deliver one
  std::optional<std::string> FirstSkippedLine;  // came while a command waited, and did not answer it
  bool ExpectsSave = false;
  bool IsSaveSent = false;
  bool IsSaveAccepted = false;

  // Counts a command and its reply; the reply to a command that was not answered means nothing.
  void Count(std::string_view command, bool isAnswered, std::string_view reply);

  std::size_t Total() const { return std::max(Expected, Sent + Undelivered); }
  std::size_t NotSent() const { return Total() - Sent; }

  // The replies alone mean that the operation failed: a line of an upload was not accepted, a question was
  // answered with neither a value nor SYNTAX_ERROR, or no question was answered with a value.
  bool IsFailedByReplies() const { return Unexpected > 0 || (UnknownKeys > 0 && Accepted == 0); }
};

}  // namespace zolvane
