#include "bench/windows/play/player.h"

#include <utility>

#include "bench/host/page_user.h"

namespace zolvane {
Player::Player(const BoxAnswers::Setup& answers, Complaint complain)
    : complain_{std::move(complain)}, answers_{answers, nullptr, [this](const std::string& text) {
                                                 tally_.WasMisused = true;
                                                 complain_(text);
                                               }} {}

bool Player::Play(const Action& action, const PageDriver& page) {
  tally_ = {};
  file_ = action.File;
  return UsePage({.Shown = [&] { return page.Shown(); },
                  .Press = [&](int button) { page.Press(button); },
                  .Select = [&](ListControl list, int position) { page.Select(list, position); },
                  .SetCheck = [&](CheckControl box, int value) { page.SetCheck(box, value); }},
                 action, tally_, complain_);
}

void Player::Answer(const Question& question) {
  const auto answer = answers_.AnswerTo(question);
  tally_.TakeAnswer(question.Style, answer.Button);
  if (!IsHarmless(question, answer)) {
    complain_(AnswerText(question, answer));
  }
  answerer_.PressButton(answer.Button);
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
    tally_.WasCancelled = true;
    complain_("the file dialogue was cancelled");
  }
  answerer_.Closed();
}

}  // namespace zolvane
