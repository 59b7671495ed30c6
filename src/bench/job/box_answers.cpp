#include "bench/job/box_answers.h"

#include <algorithm>
#include <array>
#include <utility>

#include "config/text.h"
#include "host/dialogues.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

struct AnswerRow {
  std::int32_t Number;
  std::string_view Name;
};

constexpr std::array<AnswerRow, 4> answerRows{{
    {message_answer::ok, "OK"},
    {message_answer::cancel, "Cancel"},
    {message_answer::yes, "Yes"},
    {message_answer::no, "No"},
}};

constexpr std::int32_t yesNo = 4;

bool Has(const std::vector<std::int32_t>& buttons, std::int32_t button) {
  return std::ranges::find(buttons, button) != buttons.end();
}

std::int32_t CautiousAnswer(const std::vector<std::int32_t>& buttons) {
  return Has(buttons, message_answer::cancel) ? message_answer::cancel : buttons.back();
}

std::string ChoiceText(const std::vector<std::int32_t>& buttons) {
  std::string text;
  for (const auto button : buttons) {
    AddListed(text, " / ", ButtonName(button));
  }
  return text + "? ";
}

// The box as a paragraph: the title, the text indented, the buttons to choose from.
std::string QuestionText(const Question& question, const std::vector<std::int32_t>& buttons) {
  std::string text = Joined("\n", Printable(question.Title), "\n");
  std::string_view rest = question.Text;
  while (!rest.empty()) {
    const auto end = rest.find('\n');
    auto line = rest.substr(0, end);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    text.append(line.empty() ? "" : "  ").append(Printable(line)).append("\n");
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return text + ChoiceText(buttons);
}

// The button that the user typed: its name or the start of it, in any case.
std::optional<std::int32_t> ButtonMeantBy(std::string_view typed, const std::vector<std::int32_t>& buttons) {
  const auto word = Trimmed(typed.ends_with('\r') ? typed.substr(0, typed.size() - 1) : typed);
  const auto fits = [word](std::int32_t button) {
    return !word.empty() && EqualIgnoringCase(ButtonName(button).substr(0, word.size()), word);
  };
  const auto found = std::ranges::find_if(buttons, fits);
  return found == buttons.end() ? std::nullopt : std::optional{*found};
}

std::int32_t ParseAnswer(std::string_view word) {
  const auto* const found =
      std::ranges::find_if(answerRows, [word](const auto& row) { return EqualIgnoringCase(row.Name, word); });
  if (found == answerRows.end()) {
    throw UsageError{
        Joined("--answer: ", Quoted(word), " is no answer; write ok, cancel, yes or no, with commas")};
  }
  return found->Number;
}

// Who answered the box, and how. Empty for a box with a single button.
std::string AnswerNote(const BoxAnswer& answer) {
  const auto button = ButtonName(answer.Button);
  switch (answer.By) {
    case AnsweredBy::List:
      return Joined(" (--answer: ", button, ")");
    case AnsweredBy::Affirmation:
      return Joined(" (--yes: ", button, ")");
    case AnsweredBy::Caution:
      return Joined(" (", button, ", as nobody answered; --yes and --answer answer for you)");
    case AnsweredBy::User:
      return Joined(" (answered ", button, ")");
    case AnsweredBy::OnlyButton:
      break;
  }
  return {};
}

}  // namespace

std::vector<std::int32_t> ButtonsOf(std::int32_t style) {
  switch (style & message_style::buttonMask) {
    case message_style::okCancel:
      return {message_answer::ok, message_answer::cancel};
    case message_style::yesNoCancel:
      return {message_answer::yes, message_answer::no, message_answer::cancel};
    case yesNo:
      return {message_answer::yes, message_answer::no};
    default:
      return {message_answer::ok};
  }
}

bool HasIcon(std::int32_t style, std::int32_t icon) {
  constexpr std::int32_t iconMask = 0xF0;
  return (style & iconMask) == icon;
}

bool IsDeclining(std::int32_t button) {
  return button == message_answer::cancel || button == message_answer::no;
}

std::string_view ButtonName(std::int32_t button) {
  const auto* const found =
      std::ranges::find_if(answerRows, [button](const auto& row) { return row.Number == button; });
  return found == answerRows.end() ? std::string_view{} : found->Name;
}

std::vector<std::int32_t> ParseAnswers(std::string_view list) {
  std::vector<std::int32_t> answers;
  std::size_t start = 0;
  while (start <= list.size()) {
    const auto end = std::min(list.find(',', start), list.size());
    answers.push_back(ParseAnswer(Trimmed(list.substr(start, end - start))));
    start = end + 1;
  }
  return answers;
}

bool IsHarmless(const Question& question, const BoxAnswer& answer) {
  return answer.By == AnsweredBy::OnlyButton ? HasIcon(question.Style, message_style::informationIcon)
                                             : !IsDeclining(answer.Button);
}

std::string AnswerText(const Question& question, const BoxAnswer& answer) {
  return Joined(Printable(question.Title), ": ", OneLine(question.Text), AnswerNote(answer));
}

BoxAnswers::BoxAnswers(const Setup& setup, Questioner* terminal, Complaint complain)
    : listed_{setup.Listed.begin(), setup.Listed.end()},
      affirmsRest_{setup.AffirmsRest},
      terminal_{terminal},
      complain_{std::move(complain)} {}

BoxAnswer BoxAnswers::AnswerTo(const Question& question) {
  const auto buttons = ButtonsOf(question.Style);
  if (buttons.size() == 1) {
    return {buttons.front(), AnsweredBy::OnlyButton};
  }
  if (const auto listed = ListedAnswer(question, buttons)) {
    return {*listed, AnsweredBy::List};
  }
  if (affirmsRest_) {
    return {buttons.front(), AnsweredBy::Affirmation};
  }
  if (const auto typed = UserAnswer(question, buttons)) {
    return {*typed, AnsweredBy::User};
  }
  return {CautiousAnswer(buttons), AnsweredBy::Caution};
}

std::optional<std::int32_t> BoxAnswers::ListedAnswer(const Question& question,
                                                     const std::vector<std::int32_t>& buttons) {
  if (listed_.empty()) {
    return std::nullopt;
  }
  const auto answer = listed_.front();
  listed_.pop_front();
  if (Has(buttons, answer)) {
    return answer;
  }
  complain_(Joined("--answer: the box ", Quoted(question.Title), " has no button ", ButtonName(answer)));
  return std::nullopt;
}

std::optional<std::int32_t> BoxAnswers::UserAnswer(const Question& question,
                                                   const std::vector<std::int32_t>& buttons) {
  if (terminal_ == nullptr) {
    return std::nullopt;
  }
  auto typed = terminal_->Ask(QuestionText(question, buttons));
  while (typed) {
    if (const auto button = ButtonMeantBy(*typed, buttons)) {
      return button;
    }
    typed = terminal_->Ask(ChoiceText(buttons));
  }
  return std::nullopt;
}

}  // namespace zolvane
