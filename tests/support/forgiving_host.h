// The fake host behind objects that never report a failure: what fails in the fakes has no effect and gives the empty
// answer. An operation that passes a failure over must go on as it does here.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/fake_host.h"

namespace zolvane {

class ForgivingSettings final : public IniFileService {
 public:
  // `answer` is what a reading gives that fails. It outlives this object.
  ForgivingSettings(std::shared_ptr<IniFileService> settings, const std::string& answer)
      : settings_{std::move(settings)}, answer_{answer} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return settings_->ReadValue(section, key, file, fallback).value_or(answer_);
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    PassOver(settings_->WriteValue(section, key, file, value));
    return Status::Success();
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return settings_->SplitText(delimiter, text).value_or(std::vector<std::string>{});
  }

 private:
  std::shared_ptr<IniFileService> settings_;
  const std::string& answer_;
};

class ForgivingEnvironment final : public Environment {
 public:
  explicit ForgivingEnvironment(FakeEnvironment& process) : process_{process} {}

  // What a reading of a settings file gives that fails.
  std::string ReadingAnswer;

  std::string ProgramFolder() override { return process_.ProgramFolder(); }

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return std::make_shared<ForgivingSettings>(process_.CreateIniFileService(), ReadingAnswer);
  }

  Status AppendBlankLine(const std::string& file) override {
    PassOver(process_.AppendBlankLine(file));
    return Status::Success();
  }

  void RunMessageLoopOnce() override { process_.RunMessageLoopOnce(); }

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return process_.ShowMessageBox(request).value_or(0);
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    return process_.ShowFileDialogue(kind, dialogue);
  }

 private:
  FakeEnvironment& process_;
};

class ForgivingLink final : public InstrumentLink {
 public:
  // Without a link nothing happens and nothing answers.
  explicit ForgivingLink(std::shared_ptr<InstrumentLink> link) : link_{std::move(link)} {}

  std::optional<bool> Stop() override { return link_ ? link_->Stop().value_or(false) : false; }

  Status SetStop(bool stop) override {
    PassOver(link_ ? link_->SetStop(stop) : Status::Success());
    return Status::Success();
  }

  Status SetHold(bool hold) override {
    PassOver(link_ ? link_->SetHold(hold) : Status::Success());
    return Status::Success();
  }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    return link_ && link_->SendCommand(command, reply, number).value_or(false);
  }

 private:
  std::shared_ptr<InstrumentLink> link_;
};

class ForgivingDialog final : public HostDialog {
 public:
  // Without a dialogue nothing is shown and the wait ends.
  explicit ForgivingDialog(std::shared_ptr<HostDialog> dialogue) : dialogue_{std::move(dialogue)} {}

  Status SetStyle(std::int16_t style) override {
    PassOver(dialogue_ ? dialogue_->SetStyle(style) : Status::Success());
    return Status::Success();
  }
  Status SetTitle(const std::string& title) override {
    PassOver(dialogue_ ? dialogue_->SetTitle(title) : Status::Success());
    return Status::Success();
  }
  Status SetMessage(const std::string& message) override {
    PassOver(dialogue_ ? dialogue_->SetMessage(message) : Status::Success());
    return Status::Success();
  }
  Status Show(bool show) override {
    PassOver(dialogue_ ? dialogue_->Show(show) : Status::Success());
    return Status::Success();
  }

  // A result that cannot be read ends the wait.
  std::optional<std::int16_t> Result() override {
    const auto result = dialogue_ ? dialogue_->Result() : std::nullopt;
    last_ = result.value_or(std::max<std::int16_t>(last_, 0));
    return last_;
  }

 private:
  std::shared_ptr<HostDialog> dialogue_;
  std::int16_t last_ = 0;
};

class ForgivingHostObject final : public HostObject {
 public:
  explicit ForgivingHostObject(std::shared_ptr<HostObject> host) : host_{std::move(host)} {}

  std::shared_ptr<InstrumentLink> Link() override { return std::make_shared<ForgivingLink>(host_->Link()); }

  Status WriteLogLine(const std::string& line) override {
    PassOver(host_->WriteLogLine(line));
    return Status::Success();
  }

  std::optional<bool> HostDialogAvailable() override { return host_->HostDialogAvailable().value_or(false); }

  std::shared_ptr<HostDialog> MessageDialog() override {
    return std::make_shared<ForgivingDialog>(host_->MessageDialog());
  }

 private:
  std::shared_ptr<HostObject> host_;
};

class ForgivingPanel final : public StatusPanel {
 public:
  explicit ForgivingPanel(std::shared_ptr<StatusPanel> panel) : panel_{std::move(panel)} {}

  std::optional<std::string> Text() override { return panel_->Text().value_or(""); }

  Status SetText(const std::string& text) override {
    PassOver(panel_->SetText(text));
    return Status::Success();
  }

 private:
  std::shared_ptr<StatusPanel> panel_;
};

class ForgivingWindow final : public HostWindow {
 public:
  explicit ForgivingWindow(std::shared_ptr<HostWindow> window) : window_{std::move(window)} {}

  Status SetChanged(bool changed) override {
    PassOver(window_->SetChanged(changed));
    return Status::Success();
  }

  std::shared_ptr<StatusPanel> FindStatusPanel() override { return window_->FindStatusPanel(); }

  Status TakeFocus() override {
    PassOver(window_->TakeFocus());
    return Status::Success();
  }

 private:
  std::shared_ptr<HostWindow> window_;
};

}  // namespace zolvane
