// Plays the commands of a run file on the page's windows, and answers what the page shows meanwhile.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "bench/host/outcome.h"
#include "bench/job/actions.h"
#include "bench/job/box_answers.h"
#include "bench/windows/play/dialogue_answerer.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/page_driver.h"

namespace zolvane {

// What the answer to a box says about the operation that showed it.
void NoteAnswer(Happenings& happened, std::int32_t style, std::optional<std::int32_t> answer);

class Player final : public DialogueListener {
 public:
  using Complaint = std::function<void(const std::string& text)>;

  // Of the thread that the page lives on.
  Player(const AnswerDesk::Setup& answers, Complaint complain);

  // Returns when all that the command started has ended. False when it does not fit the page: the control is disabled,
  // or the list has no such entry.
  bool Play(const Action& action, const PageDriver& page);

  // Answers a message of the host's own dialogue that has just been opened.
  void Answer(const Question& question);

  // What has happened at the page since the last action began.
  const Happenings& Happened() const { return happened_; }

  void BoxOpens(const MessageBoxRequest& request) override;
  void BoxClosed(const MessageBoxRequest& request, std::optional<std::int32_t> answer) override;
  void FileDialogueOpens(FileDialogueKind kind, const FileDialogue& dialogue) override;
  void FileDialogueClosed(const std::optional<std::string>& chosen) override;

 private:
  bool Press(const Action& action, const PageDriver& page, const PageModel& shown);
  bool Select(const Action& action, const PageDriver& page, const PageModel& shown);
  bool Reacts(const Action& action, std::string_view control, bool isEnabled);
  void Misuse(const std::string& text);

  Complaint complain_;
  AnswerDesk desk_;
  DialogueAnswerer answerer_;
  std::optional<std::string> file_;
  Happenings happened_;
};

}  // namespace zolvane
