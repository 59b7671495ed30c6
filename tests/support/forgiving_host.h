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

#include "host/forwarding.h"
#include "support/fake_host.h"

namespace zolvane {

class ForgivingSettings final : public ForwardingSettings {
 public:
  // `answer` is what a reading gives that fails. It outlives this object.
  ForgivingSettings(std::shared_ptr<IniFileService> settings, const std::string& answer)
      : ForwardingSettings{std::move(settings)}, answer_{answer} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return ForwardingSettings::ReadValue(section, key, file, fallback).value_or(answer_);
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    PassOver(ForwardingSettings::WriteValue(section, key, file, value));
    return Status::Success();
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return ForwardingSettings::SplitText(delimiter, text).value_or(std::vector<std::string>{});
  }

 private:
  const std::string& answer_;
};

class ForgivingEnvironment final : public ForwardingEnvironment {
 public:
  using ForwardingEnvironment::ForwardingEnvironment;

  // What a reading of a settings file gives that fails.
  std::string ReadingAnswer;

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return std::make_shared<ForgivingSettings>(ForwardingEnvironment::CreateIniFileService(), ReadingAnswer);
  }

  Status AppendBlankLine(const std::string& file) override {
    PassOver(ForwardingEnvironment::AppendBlankLine(file));
    return Status::Success();
  }

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return ForwardingEnvironment::ShowMessageBox(request).value_or(0);
  }
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

class ForgivingHostObject final : public ForwardingObject {
 public:
  using ForwardingObject::ForwardingObject;

  std::shared_ptr<InstrumentLink> Link() override {
    return std::make_shared<ForgivingLink>(ForwardingObject::Link());
  }

  Status WriteLogLine(const std::string& line) override {
    PassOver(ForwardingObject::WriteLogLine(line));
    return Status::Success();
  }

  std::optional<bool> HostDialogAvailable() override {
    return ForwardingObject::HostDialogAvailable().value_or(false);
  }

  std::shared_ptr<HostDialog> MessageDialog() override {
    return std::make_shared<ForgivingDialog>(ForwardingObject::MessageDialog());
  }
};

class ForgivingPanel final : public ForwardingPanel {
 public:
  using ForwardingPanel::ForwardingPanel;

  std::optional<std::string> Text() override { return ForwardingPanel::Text().value_or(""); }

  Status SetText(const std::string& text) override {
    PassOver(ForwardingPanel::SetText(text));
    return Status::Success();
  }
};

class ForgivingWindow final : public ForwardingWindow {
 public:
  using ForwardingWindow::ForwardingWindow;

  Status SetChanged(bool changed) override {
    PassOver(ForwardingWindow::SetChanged(changed));
    return Status::Success();
  }

  Status TakeFocus() override {
    PassOver(ForwardingWindow::TakeFocus());
    return Status::Success();
  }
};

}  // namespace zolvane
