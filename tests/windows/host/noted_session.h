// The session of a test with a host in good order, which notes what the add-in does. Tests take something
// away from it, or end the session when they like.
#pragma once

#include <gtest/gtest.h>

#include <add_in.h>

#include <filesystem>
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
#include "support/fake_host.h"
#include "support/texts.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {

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

class NotedSession : public testing::Test, protected FakeHostObjects {
 protected:
  void SetUp() override {
    Link().DefaultReply = Answer("x=1");
    Store(ProgramFolder::OfThisRun().Configuration(), SampleFileText());
    Store(Backup(), SampleFileText());
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
