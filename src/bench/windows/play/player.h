// Plays the commands of a run file on the page's windows, and answers what the page shows meanwhile.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "bench/host/action_tally.h"
#include "bench/job/actions.h"
#include "bench/job/box_answers.h"
#include "bench/windows/play/dialogue_answerer.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/page_driver.h"

namespace zolvane {

class Player final : public DialogueListener {
 public:
  using Complaint = std::function<void(const std::string& text)>;

  // Of the thread that the page lives on.
  Player(const BoxAnswers::Setup& answers, Complaint complain);

  // Returns when all that the command started has ended. False when it does not fit the page: the control is
  // disabled, or the list has no such entry.
  bool Play(const Action& action, const PageDriver& page);

  // Answers a message of the host's own dialogue that has just been opened.
  void Answer(const Question& question);

  // What has happened at the page since the last action began.
  const ActionTally& Tally() const { return tally_; }

  void BoxOpens(const MessageBoxRequest& request) override;
  void BoxClosed(const MessageBoxRequest& request, std::optional<std::int32_t> answer) override;
  void FileDialogueOpens(FileDialogueKind kind, const FileDialogue& dialogue) override;
  void FileDialogueClosed(const std::optional<std::string>& chosen) override;

 private:
  Complaint complain_;
  BoxAnswers answers_;
  DialogueAnswerer answerer_;
  std::optional<std::string> file_;
  ActionTally tally_;
};

}  // namespace zolvane
