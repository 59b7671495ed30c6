// One forwarding class for each host interface: it hands every call on to the object behind it. A
// wrapper derives from it and overrides what it changes. What is held by reference outlives the
// wrapper; no pointer is null.
#pragma once

#include <memory>
#include <utility>

#include "host/environment.h"
#include "host/host_object.h"
#include "host/host_window.h"

namespace zolvane {

class ForwardingSettings : public IniFileService {
 public:
  explicit ForwardingSettings(std::shared_ptr<IniFileService> inner) : inner_{std::move(inner)} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return inner_->ReadValue(section, key, file, fallback);
  }
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    return inner_->WriteValue(section, key, file, value);
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return inner_->SplitText(delimiter, text);
  }

 private:
  std::shared_ptr<IniFileService> inner_;
};

class ForwardingEnvironment : public Environment {
 public:
  explicit ForwardingEnvironment(Environment& inner) : inner_{inner} {}

  std::string ProgramFolder() override { return inner_.ProgramFolder(); }
  std::shared_ptr<IniFileService> CreateIniFileService() override { return inner_.CreateIniFileService(); }
  Status AppendBlankLine(const std::string& file) override { return inner_.AppendBlankLine(file); }
  void RunMessageLoopOnce() override { inner_.RunMessageLoopOnce(); }
  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return inner_.ShowMessageBox(request);
  }
  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    return inner_.ShowFileDialogue(kind, dialogue);
  }

 private:
  Environment& inner_;
};

class ForwardingLink : public InstrumentLink {
 public:
  explicit ForwardingLink(std::shared_ptr<InstrumentLink> inner) : inner_{std::move(inner)} {}

  std::optional<bool> Stop() override { return inner_->Stop(); }
  Status SetStop(bool stop) override { return inner_->SetStop(stop); }
  Status SetHold(bool hold) override { return inner_->SetHold(hold); }
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    return inner_->SendCommand(command, reply, number);
  }

 private:
  std::shared_ptr<InstrumentLink> inner_;
};

class ForwardingDialog : public HostDialog {
 public:
  explicit ForwardingDialog(std::shared_ptr<HostDialog> inner) : inner_{std::move(inner)} {}

  Status SetStyle(std::int16_t style) override { return inner_->SetStyle(style); }
  Status SetTitle(const std::string& title) override { return inner_->SetTitle(title); }
  Status SetMessage(const std::string& message) override { return inner_->SetMessage(message); }
  Status Show(bool show) override { return inner_->Show(show); }
  std::optional<std::int16_t> Result() override { return inner_->Result(); }

 private:
  std::shared_ptr<HostDialog> inner_;
};

class ForwardingObject : public HostObject {
 public:
  explicit ForwardingObject(std::shared_ptr<HostObject> inner) : inner_{std::move(inner)} {}

  std::shared_ptr<InstrumentLink> Link() override { return inner_->Link(); }
  Status WriteLogLine(const std::string& line) override { return inner_->WriteLogLine(line); }
  std::optional<bool> HostDialogAvailable() override { return inner_->HostDialogAvailable(); }
  std::shared_ptr<HostDialog> MessageDialog() override { return inner_->MessageDialog(); }

 private:
  std::shared_ptr<HostObject> inner_;
};

class ForwardingPanel : public StatusPanel {
 public:
  explicit ForwardingPanel(std::shared_ptr<StatusPanel> inner) : inner_{std::move(inner)} {}

  std::optional<std::string> Text() override { return inner_->Text(); }
  Status SetText(const std::string& text) override { return inner_->SetText(text); }

 private:
  std::shared_ptr<StatusPanel> inner_;
};

class ForwardingWindow : public HostWindow {
 public:
  explicit ForwardingWindow(std::shared_ptr<HostWindow> inner) : inner_{std::move(inner)} {}

  Status SetChanged(bool changed) override { return inner_->SetChanged(changed); }
  std::shared_ptr<StatusPanel> FindStatusPanel() override { return inner_->FindStatusPanel(); }
  Status TakeFocus() override { return inner_->TakeFocus(); }

 private:
  std::shared_ptr<HostWindow> inner_;
};

}  // namespace zolvane
