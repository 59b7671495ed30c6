// Who answers the message boxes: the answers listed on the command line, then the affirmative button if that
// was asked for, then the user at the terminal, then caution.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "program/terminal.h"

namespace zolvane {

// What matters of a box to answer it. Texts keep their line breaks.
struct Question {
  std::string Title;
  std::string Text;
  std::int32_t Style = 0;
};

// The buttons of a style, from left to right. A style without known buttons has OK alone.
std::vector<std::int32_t> ButtonsOf(std::int32_t style);

// The box shows that icon, one of message_style.
bool HasIcon(std::int32_t style, std::int32_t icon);

// The button declines what the box proposes: Cancel or No.
bool IsDeclining(std::int32_t button);

// "OK", "Cancel", "Yes", "No".
std::string_view ButtonName(std::int32_t button);

// The buttons that a list such as "ok,no" names, in any case. Throws UsageError for any other word.
std::vector<std::int32_t> ParseAnswers(std::string_view list);

enum class AnsweredBy { OnlyButton, List, Affirmation, User, Caution };

struct BoxAnswer {
  std::int32_t Button = 0;
  AnsweredBy By = AnsweredBy::Caution;
};

// The answer does not stop anything: not worth an error message.
bool IsHarmless(const Question& question, const BoxAnswer& answer);

// The box as one line, and who answered it, and how: "Upload: Go on? (--yes: OK)".
std::string AnswerText(const Question& question, const BoxAnswer& answer);

class BoxAnswers {
 public:
  struct Setup {
    std::vector<std::int32_t> Listed;
    bool AffirmsRest = false;
  };
  using Complaint = std::function<void(const std::string& text)>;

  // The terminal may be null; otherwise it outlives this. `complain` gets a line for each listed answer that
  // its box has no button for.
  BoxAnswers(const Setup& setup, Questioner* terminal, Complaint complain);

  // A box with one button is answered with it and uses up no answer.
  BoxAnswer AnswerTo(const Question& question);

 private:
  std::optional<std::int32_t> ListedAnswer(const Question& question,
                                           const std::vector<std::int32_t>& buttons);
  std::optional<std::int32_t> UserAnswer(const Question& question, const std::vector<std::int32_t>& buttons);

  std::deque<std::int32_t> listed_;
  bool affirmsRest_;
  Questioner* terminal_;
  Complaint complain_;
};

}  // namespace zolvane
