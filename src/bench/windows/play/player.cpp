#include "bench/windows/play/player.h"

#include <charconv>
#include <utility>

#include "config/text.h"
#include "program/console.h"
#include "text/joined.h"

namespace zolvane {
namespace {

constexpr std::int32_t iconMask = 0xF0;

template <class Matches>
std::optional<int> FindEntry(const std::vector<ListEntry>& entries, Matches matches) {
  for (std::size_t position = 0; position < entries.size(); ++position) {
    if (matches(entries[position].Text)) {
      return static_cast<int>(position);
    }
  }
  return std::nullopt;
}

// "#3" is 3.
std::optional<int> NumberedPosition(std::string_view entry, std::size_t count) {
  std::size_t position = 0;
  const auto digits = entry.substr(entry.starts_with('#') ? 1 : 0);
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), position);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == digits.data() + digits.size();
  return entry.starts_with('#') && isNumber && position < count ? std::optional{static_cast<int>(position)}
                                                                : std::nullopt;
}

// The text counts before the position, and its case if it decides.
std::optional<int> PositionOf(const std::vector<ListEntry>& entries, const std::string& entry) {
  if (const auto exact = FindEntry(entries, [&](const auto& text) { return text == entry; })) {
    return exact;
  }
  if (const auto numbered = NumberedPosition(entry, entries.size())) {
    return numbered;
  }
  return FindEntry(entries, [&](const auto& text) { return EqualIgnoringCase(text, entry); });
}

bool IsRefusal(std::optional<std::int32_t> answer) {
  return answer && (*answer == message_answer::cancel || *answer == message_answer::no);
}

bool HasStopSign(std::int32_t style) {
  return (style & iconMask) == message_style::stopIcon;
}

}  // namespace

// Some systems answer a box that has OK alone with Cancel when Escape closes it. Nothing could be refused there.
void NoteAnswer(Happenings& happened, std::int32_t style, std::optional<std::int32_t> answer) {
  happened.WasCancelled |= IsRefusal(answer) && ButtonsOf(style).size() > 1;
  happened.WasRefused |= HasStopSign(style);
}

Player::Player(const AnswerDesk::Setup& answers, Complaint complain)
    : complain_{std::move(complain)}, desk_{answers, nullptr, [this](const std::string& text) {
                                              Misuse(text);
                                            }} {}

void Player::Misuse(const std::string& text) {
  happened_.WasMisused = true;
  complain_(text);
}

bool Player::Play(const Action& action, const PageDriver& page) {
  happened_ = {};
  file_ = action.File;
  const PageModel shown = page.Shown();
  switch (action.Kind) {
    case ActionKind::PressButton:
      return Press(action, page, shown);
    case ActionKind::SelectEntry:
      return Select(action, page, shown);
    case ActionKind::SetCheck:
      if (!Reacts(action, RowOf(action.Box).Name, shown.Of(action.Box).Enabled)) {
        return false;
      }
      page.SetCheck(action.Box, action.Value);
      return true;
    case ActionKind::ShowPage:
    case ActionKind::ShowScript:
      return true;  // the page is there to be seen
  }
  return false;
}

bool Player::Press(const Action& action, const PageDriver& page, const PageModel& shown) {
  const auto index = static_cast<std::size_t>(action.Button);
  if (action.Button < 0 || index >= buttonRows.size()) {
    return true;  // no such button: nothing happens
  }
  if (!Reacts(action, buttonRows[index].Name, shown.ButtonsEnabled[index])) {
    return false;
  }
  page.Press(action.Button);
  return true;
}

bool Player::Select(const Action& action, const PageDriver& page, const PageModel& shown) {
  const auto& list = shown.Of(action.List);
  if (!Reacts(action, RowOf(action.List).Name, list.Enabled)) {
    return false;
  }
  const auto position = PositionOf(list.Entries, action.Entry);
  if (!position) {
    Misuse(Joined(action.Command, ": ", RowOf(action.List).Name, " has no entry ", Quoted(action.Entry)));
    return false;
  }
  page.Select(action.List, *position);
  return true;
}

bool Player::Reacts(const Action& action, std::string_view control, bool isEnabled) {
  if (!isEnabled) {
    happened_.WasDisabled = true;
    complain_(Joined(action.Command, ": ", control, " is disabled and does not react"));
  }
  return isEnabled;
}

void Player::Answer(const Question& question) {
  const auto answer = desk_.AnswerTo(question).Button;
  NoteAnswer(happened_, question.Style, answer);
  if (IsRefusal(answer)) {
    complain_(Joined(Printable(question.Title), ": answered ", ButtonName(answer)));
  }
  if (HasStopSign(question.Style)) {
    complain_(Joined(Printable(question.Title), ": ", OneLine(question.Text)));
  }
  answerer_.PressButton(answer);
}

void Player::BoxOpens(const MessageBoxRequest& request) {
  Answer({.Title = request.Title, .Text = request.Text, .Style = request.Style});
}

void Player::BoxClosed(const MessageBoxRequest&, std::optional<std::int32_t>) {
  answerer_.Closed();
}

void Player::FileDialogueOpens(FileDialogueKind, const FileDialogue&) {
  answerer_.ChooseFile(file_);
}

void Player::FileDialogueClosed(const std::optional<std::string>& chosen) {
  if (!chosen) {
    happened_.WasCancelled = true;
    complain_("the file dialogue was cancelled");
  }
  answerer_.Closed();
}

}  // namespace zolvane
