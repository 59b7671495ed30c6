// The session of a test with a host in good order, which notes what the add-in does. Tests take something
// away from it, or end the session when they like.
#pragma once

#include <gtest/gtest.h>

#include <add_in.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "bench/host/tracing.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/player.h"
#include "files/file_settings_service.h"
#include "page/page_controls.h"
#include "support/texts.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {

class NotedLink final : public InstrumentLink {
 public:
  std::function<void(const std::string& command)> OnSend = [](const std::string&) {};
  std::function<std::optional<bool>()> OnStop = [] { return false; };
  Status OnHold = Status::Success();
  Texts Sent;
  std::vector<bool> Holds;

  std::optional<bool> Stop() override { return OnStop(); }
  Status SetStop(bool) override { return Status::Success(); }
  Status SetHold(bool hold) override {
    Holds.push_back(hold);
    return OnHold;
  }
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t) override {
    Sent.push_back(command);
    reply = "x=1";
    OnSend(command);
    return true;
  }
};

class NotedDialog final : public HostDialog {
 public:
  explicit NotedDialog(std::function<void()> onShow) : onShow_{std::move(onShow)} {}

  Status SetStyle(std::int16_t) override { return Status::Success(); }
  Status SetTitle(const std::string&) override { return Status::Success(); }
  Status SetMessage(const std::string&) override { return Status::Success(); }
  Status Show(bool) override {
    onShow_();
    return Status::Success();
  }
  std::optional<std::int16_t> Result() override { return std::int16_t{1}; }

 private:
  std::function<void()> onShow_;
};

class NotedObject final : public HostObject {
 public:
  std::shared_ptr<NotedLink> TheLink = std::make_shared<NotedLink>();
  std::function<void()> OnLog = [] {};
  std::function<void()> OnShow = [] {};
  bool OffersDialog = false;
  Texts Log;

  std::shared_ptr<InstrumentLink> Link() override { return TheLink; }
  Status WriteLogLine(const std::string& line) override {
    Log.push_back(line);
    OnLog();
    return Status::Success();
  }
  std::optional<bool> HostDialogAvailable() override { return OffersDialog; }
  std::shared_ptr<HostDialog> MessageDialog() override {
    return std::make_shared<NotedDialog>([this] { OnShow(); });
  }
};

class NotedPanel final : public StatusPanel {
 public:
  std::function<void()> OnText = [] {};
  std::string Now;
  Texts Shown;

  std::optional<std::string> Text() override { return Now; }
  Status SetText(const std::string& text) override {
    Now = text;
    Shown.push_back(text);
    OnText();
    return Status::Success();
  }
};

class NotedWindow final : public HostWindow {
 public:
  std::shared_ptr<NotedPanel> Panel = std::make_shared<NotedPanel>();
  std::function<void()> OnChanged = [] {};
  std::vector<bool> Changes;
  int TimesFocused = 0;
  Status OnFocus = Status::Success();

  Status SetChanged(bool changed) override {
    Changes.push_back(changed);
    OnChanged();
    return Status::Success();
  }
  std::shared_ptr<StatusPanel> FindStatusPanel() override { return Panel; }
  Status TakeFocus() override {
    ++TimesFocused;
    return OnFocus;
  }
};

// A settings-file service that can be put out of order.
class BreakableSettings final : public IniFileService {
 public:
  explicit BreakableSettings(const bool& isBroken) : isBroken_{isBroken} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return isBroken_ ? std::nullopt : files_.ReadValue(section, key, file, fallback);
  }
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    return isBroken_ ? Status::Failure() : files_.WriteValue(section, key, file, value);
  }
  std::optional<Texts> SplitText(std::string_view delimiter, std::string_view text) override {
    return isBroken_ ? std::nullopt : files_.SplitText(delimiter, text);
  }

 private:
  const bool& isBroken_;
  FileSettingsService files_;
};

// ---- The session of a test, which its host may end when it likes

class NotedSession : public testing::Test {
 protected:
  void SetUp() override {
    Store(ProgramFolder::OfThisRun().Configuration(), SampleConfiguration());
    Store(Backup(), SampleConfiguration());
    AddIn = ProgramFolder::OfThisRun().Module().Create();
    AddIn->get_Form(Form.Put());
    Frame = FrameOf(Form);
  }

  ~NotedSession() override {
    EndSession();
    Form.Reset();
    AddIn.Reset();
    EXPECT_EQ(OfferedObjectsAlive(), 0);
    EXPECT_EQ(OfferedServicesAlive(), 0);
    EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
    EXPECT_FALSE(IsWindow(Frame));
  }

  void EndSession() const {
    if (Form) {
      EXPECT_EQ(Form->SaveChanges(), S_OK);
      EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK);
    }
  }

  static std::filesystem::path Backup() { return ProgramFolder::OfThisRun().Path() / "noted.bak"; }

  // Gives both objects and loads the page.
  void Open(const ComPtr<IDispatch>& object, const ComPtr<IDispatch>& window) const {
    EXPECT_EQ(Form->putref_FormParent(window.Get()), S_OK);
    EXPECT_EQ(Form->putref_ObjectParent(object.Get()), S_OK);
    EXPECT_EQ(Form->LoadDefaults(), S_OK);
  }
  void Open() const { Open(OfferHostObject(Object), OfferHostWindow(Window)); }

  void Press(int button) {
    Player_.Play({.Kind = ActionKind::PressButton, .Button = button, .File = Backup().string()}, Page());
  }

  PageDriver Page() const { return PageDriver{Frame}; }
  bool IsEnabled(int button) const { return Page().Shown().ButtonsEnabled[static_cast<std::size_t>(button)]; }

  // What stood in the boxes so far.
  Texts Boxes() const;

  std::shared_ptr<NotedObject> Object = std::make_shared<NotedObject>();
  std::shared_ptr<NotedWindow> Window = std::make_shared<NotedWindow>();
  std::shared_ptr<NotedLink> Link = Object->TheLink;
  bool SettingsAreBroken = false;
  ComPtr<IAddIn> AddIn;
  ComPtr<IAddInForm> Form;
  HWND Frame = nullptr;

 private:
  std::stringstream trace_;
  TraceLog log_{trace_, false};
  Player Player_{{.Listed = {}, .AffirmsRest = true}, [](const std::string&) {}};
  DialogueHooks hooks_{ProgramFolder::OfThisRun().Module().Module(), &log_, Player_};
  OfferedSettings settings_{[this] { return std::make_shared<BreakableSettings>(SettingsAreBroken); }};
};

}  // namespace zolvane
