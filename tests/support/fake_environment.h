// The process around the add-in: message boxes and file dialogues with scripted answers, the settings-file
// service, the message loop.
//
// Events: `create settings service`, `append blank line to FILE`, `yield`, `box STYLE "Title" "Text"`,
// `open dialogue "FILE"`, `save dialogue "FILE"`.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/environment.h"
#include "support/fake_settings.h"
#include "support/journal.h"

namespace zolvane {

class FakeEnvironment final : public Environment {
 public:
  explicit FakeEnvironment(Journal& journal)
      : Settings{std::make_shared<FakeSettings>(journal)}, journal_{journal} {}

  std::string Folder = "/add-in";
  std::shared_ptr<FakeSettings> Settings;

  // A settings-file service to hand out instead.
  std::shared_ptr<IniFileService> OtherSettings;

  // The buttons that close the coming message boxes. When they are used up, OK.
  std::deque<std::int32_t> BoxAnswers;

  // The files chosen in the coming file dialogues; nothing for Cancel. When they are used up, Cancel.
  std::deque<std::optional<std::string>> FileAnswers;

  // Every dialogue as it was asked for.
  std::vector<MessageBoxRequest> Boxes;
  std::vector<std::pair<FileDialogueKind, FileDialogue>> FileDialogues;

  // Called while the message loop runs, and while a box or a file dialogue is open.
  std::function<void()> WhileYielding;
  std::function<void()> WhileOpen;

  std::string ProgramFolder() override { return Folder; }

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    if (journal_.Fails("create settings service")) {
      return nullptr;
    }
    return OtherSettings ? OtherSettings : Settings;
  }

  Status AppendBlankLine(const std::string& file) override {
    return journal_.Outcome("append blank line to " + file);
  }

  void RunMessageLoopOnce() override {
    journal_.Note("yield");
    Run(WhileYielding);
  }

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    if (journal_.Fails("box " + std::to_string(request.Style) + " \"" + request.Title + "\" \"" +
                       request.Text + "\"")) {
      return std::nullopt;
    }
    Boxes.push_back(request);
    Run(WhileOpen);
    return Next(BoxAnswers).value_or(message_answer::ok);
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    const std::string verb = kind == FileDialogueKind::Open ? "open" : "save";
    if (journal_.Fails(verb + " dialogue \"" + dialogue.FileName + "\"")) {
      return std::nullopt;
    }
    FileDialogues.emplace_back(kind, dialogue);
    Run(WhileOpen);
    return Next(FileAnswers).value_or(std::nullopt);
  }

 private:
  static void Run(const std::function<void()>& hook) {
    if (hook) {
      hook();
    }
  }

  template <class T>
  static std::optional<T> Next(std::deque<T>& answers) {
    if (answers.empty()) {
      return std::nullopt;
    }
    T answer = answers.front();
    answers.pop_front();
    return answer;
  }

  Journal& journal_;
};

}  // namespace zolvane
