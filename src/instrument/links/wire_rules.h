// Which line answers which command, on a wire whose lines carry no numbers.
//
// An instrument may be late, echo, greet, repeat itself, or sit behind a converter that keeps its lines while
// the connection is new. A reply to GET_CALIBRATION says which key it is for, and that name alone decides.
// Replies that name nothing ("OK", the texts of STATUS) can only be told apart by their order, so after a
// missing reply nothing leaves until a reply that names itself has shown the place.
//
// Knows nothing of ports and clocks: their owner sends what is asked here, passes in the lines that come, and
// says when time is up. For one thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

class WireRules {
 public:
  enum class Verdict : std::uint8_t {
    Skip,      // wait on: the line answers nothing, or an earlier command
    Answer,    // the line answers the command in hand, which is done
    AskAgain,  // overhear what lies there, send the command in hand once more, and wait on
  };

  // A connection has been opened. What is owed stays owed: it may come over the new connection.
  void Connect();

  // A command is about to leave and is in hand until it is answered or given up. Not after a
  // missing reply: see below.
  void Ask(std::string_view command);

  // A whole line has come, without its end. With no command in hand it is skipped.
  Verdict Hear(std::string_view line);

  // A line lay there before a command left. It is no reply to that command, but may be what an earlier one is
  // owed, or the answer to the first of the two times that the command in hand is sent.
  void Overhear(std::string_view line);

  // The command in hand was not answered in time. Its reply may still come, and the place is lost.
  void TimeOut();

  // The connection has ended before the command in hand was answered. The place is lost
  // only if it was sent twice.
  void Disconnect();

  // ---- After a missing reply

  bool IsLost() const { return isLost_; }

  // There is a question whose answer would show the place: for the key last answered by name, or one that
  // every instrument holds; never for a key that is owed an answer.
  bool HasQuestionForPlace() const { return KeyForPlace().has_value(); }

  // Takes that question in hand; the line to send. Empty if there is none: what was sent last is in hand
  // again if its late answer can show the place, and there is only waiting.
  std::optional<std::string> AskForPlace();

  // ---- For people

  // The first line that was skipped since Ask() and answered no command at all.
  const std::optional<std::string>& SkippedLine() const { return skippedLine_; }

 private:
  Verdict HearNamed(std::string_view name, std::string_view line);
  Verdict HearBare(std::string_view line);
  Verdict HearRefusal();
  Verdict HearBareValue(std::string_view line);
  Verdict Close();

  std::string_view NameIn(std::string_view line) const;
  bool NamesTheKeyInHand(std::string_view name) const;
  bool IsKnown(std::string_view name) const;
  bool IsOwed(std::string_view key) const;
  bool Settle(std::string_view name);
  bool SettleFirstOfTwo();
  void NoteSkipped(std::string_view line);
  void Remember(const std::string& key);
  void TakeInHand(std::string command, std::optional<std::string> key);
  void LetGo();
  std::optional<std::string> KeyForPlace() const;

  // The command in hand; of GET_CALIBRATION its key.
  std::optional<std::string> command_;
  std::optional<std::string> key_;
  int answersToCome_ = 0;                 // one for each time it was sent
  std::optional<std::string> bareValue_;  // came for the command in hand
  std::optional<std::string> skippedLine_;

  // Of the connection.
  bool hasNamed_ = false;     // a line of it has named a key
  bool answersBare_ = false;  // values come without their key

  // Of the wire, for good.
  std::vector<std::string> owed_;  // keys whose answers have not come, in the order in which they were asked
  std::vector<std::string> answered_;       // keys that were answered by name, each once, the latest last
  std::optional<std::string> lastGivenUp_;  // the key of the last command without answer, if it asked for one
  bool isLost_ = false;
};

}  // namespace zolvane
