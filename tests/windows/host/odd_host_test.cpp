// Hosts that do not have what a host should have, that answer strangely, or that take things away while an operation
// needs them.
#include <gtest/gtest.h>

#include <add_in.h>

#include <array>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>
#include <vector>

#include "bench/host/tracing.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "bench/windows/play/player.h"
#include "files/file_settings_service.h"
#include "page/page_controls.h"
#include "shell/windows/host/late_bound_names.h"
#include "win32/late_bound.h"
#include "win32/text.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

using Texts = std::vector<std::string>;

HWND FrameOf(IAddInForm& form) {
  ComPtr<IDispatch> frame;
  form.get_Frame(frame.Put());
  const auto handle = LateBound{frame}.Read(names::frameWindow);
  return handle ? reinterpret_cast<HWND>(static_cast<LONG_PTR>(V_I4(&handle->Get()))) : nullptr;
}

// ---- A host in good order, to take something away from

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

class OddSession : public testing::Test {
 protected:
  void SetUp() override {
    Store(ProgramFolder::OfThisRun().Configuration(), SampleConfiguration());
    Store(Backup(), SampleConfiguration());
    AddIn = ProgramFolder::OfThisRun().Module().Create();
    AddIn->get_Form(Form.Put());
    Frame = FrameOf(*Form.Get());
  }

  ~OddSession() override {
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

  static std::filesystem::path Backup() { return ProgramFolder::OfThisRun().Path() / "odd.bak"; }

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
  Texts Boxes() const {
    Texts texts;
    std::istringstream lines{trace_.str()};
    for (std::string line; std::getline(lines, line);) {
      const auto event = nlohmann::json::parse(line);
      if (event.at("event") == "message_box") {
        texts.push_back(event.at("text").get<std::string>());
      }
    }
    return texts;
  }

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

constexpr const char* errorText =
    "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'";

// What a query says to which nobody answers. Without a step's answer the next one is asked all the same.
constexpr std::array steps{"Getting Zolvane Type", "Getting Pipette Module Type", "Enabling RFID",
                           "Getting Pump Module Status"};

Texts ErrorOfEachStep() {
  Texts errors;
  for (const auto* const step : steps) {
    errors.push_back(std::string{step} + errorText);
  }
  return errors;
}

constexpr std::array operations{uploadButton, downloadButton, queryButton, importButton, exportButton};

// ---- Windows without a status line

ComPtr<IDispatch> WindowWith(std::vector<OfferedMember> members, const std::shared_ptr<NotedWindow>& window) {
  members.push_back({names::changed, put, [window](const MemberUse& use) {
                       return window->SetChanged(use.BoolAt(0).value_or(true)).Ok() ? S_OK : E_FAIL;
                     }});
  return Offer(std::move(members));
}

OfferedMember StatusBarOf(const std::vector<OfferedMember>& members) {
  return {names::statusBar, get, [members](const MemberUse& use) { return use.Give(Offer(members)); }};
}

OfferedMember PanelsGiving(std::function<HRESULT(const MemberUse&)> give) {
  return {names::panels, get, std::move(give)};
}

OfferedMember PanelsWithPanel(const std::vector<OfferedMember>& members) {
  return PanelsGiving([members](const MemberUse& use) { return use.Give(Offer(members)); });
}

TEST_F(OddSession, AWindowWithoutAStatusLineHasNoStepToName) {
  Link->OnSend = [](const std::string&) {};
  const std::array<std::vector<OfferedMember>, 8> windows{{
      {},
      {{names::statusBar, get, [](const MemberUse&) { return DISP_E_EXCEPTION; }}},
      {{names::statusBar, get, [](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); }}},
      {{names::statusBar, get, [](const MemberUse& use) { return use.Give(std::optional<bool>{true}); }}},
      {StatusBarOf({})},
      {StatusBarOf({PanelsGiving([](const MemberUse&) { return DISP_E_BADINDEX; })})},
      {StatusBarOf({PanelsGiving([](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); })})},
      {StatusBarOf({PanelsGiving([](const MemberUse& use) {
        return use.Arguments.empty() ? use.Give(Offer({})) : DISP_E_BADPARAMCOUNT;
      })})},
  }};
  Object->TheLink = nullptr;
  for (const auto& members : windows) {
    const auto before = Boxes().size();
    Window->Changes.clear();
    Open(OfferHostObject(Object), WindowWith(members, Window));
    Press(queryButton);
    EXPECT_EQ(Boxes().size(), before + steps.size());
    EXPECT_EQ(Boxes().back(), errorText);
    Window->Changes.clear();
    EXPECT_EQ(Form->SaveChanges(), S_OK);
    EXPECT_EQ(Window->Changes, std::vector<bool>{false});
  }
}

TEST_F(OddSession, APanelThatCannotBeWrittenKeepsItsText) {
  Object->TheLink = nullptr;
  int writes = 0;
  Open(OfferHostObject(Object),
       WindowWith({StatusBarOf({PanelsWithPanel({{names::text, get | put,
                                                  [&](const MemberUse& use) {
                                                    writes += use.IsSet ? 1 : 0;
                                                    return use.IsSet ? DISP_E_EXCEPTION
                                                                     : use.Give(std::optional<std::string>{
                                                                           "Before"});
                                                  }}})})},
                  Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts(steps.size(), std::string{"Before"} + errorText));
  EXPECT_EQ(writes, 8) << "each step, and nothing behind it";
}

TEST_F(OddSession, APanelThatCannotBeReadNamesNoStep) {
  Object->TheLink = nullptr;
  Texts written;
  Open(OfferHostObject(Object),
       WindowWith({StatusBarOf({PanelsWithPanel({{names::text, put,
                                                  [&](const MemberUse& use) {
                                                    written.push_back(use.TextAt(0).value_or("?"));
                                                    return S_OK;
                                                  }}})})},
                  Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts(steps.size(), errorText));
  EXPECT_EQ(written, (Texts{"Getting Zolvane Type", "", "Getting Pipette Module Type", "", "Enabling RFID",
                            "", "Getting Pump Module Status", ""}));
}

// ---- Objects without members, and links out of order

TEST_F(OddSession, AnObjectThatKnowsNoNameIsOneWithoutLinkLogAndDialogue) {
  Open(Offer({}), OfferHostWindow(Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), ErrorOfEachStep());
  const auto before = Boxes().size();
  Press(uploadButton);
  EXPECT_EQ(Boxes().size(), before + 2);  // the confirmation, and that the first line was not sent
  EXPECT_TRUE(Boxes().back().ends_with(errorText));
  EXPECT_TRUE(IsEnabled(uploadButton));
  EXPECT_EQ(Window->Panel->Now, "");
  Press(downloadButton);
  EXPECT_TRUE(Boxes().back().ends_with(errorText));
  EXPECT_TRUE(IsEnabled(downloadButton));
  EXPECT_EQ(Window->Panel->Now, "");
}

TEST_F(OddSession, ALinkThatIsNotGivenIsASilentInstrument) {
  const std::array<std::function<HRESULT(const MemberUse&)>, 6> links{
      [](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); },
      [](const MemberUse&) { return S_OK; },
      [](const MemberUse&) { return DISP_E_EXCEPTION; },
      [](const MemberUse&) { return E_NOTIMPL; },
      [](const MemberUse& use) { return use.Give(std::optional<std::string>{"a link"}); },
      [](const MemberUse& use) { return use.Give(Offer({})); },
  };
  for (const auto& link : links) {
    Open(Offer({{names::instrumentLink, get, link}}), OfferHostWindow(Window));
    const auto before = static_cast<std::ptrdiff_t>(Boxes().size());
    Press(queryButton);
    const auto boxes = Boxes();
    EXPECT_EQ((Texts{boxes.begin() + before, boxes.end()}), ErrorOfEachStep());
    EXPECT_TRUE(IsEnabled(queryButton));
  }
}

TEST_F(OddSession, AStopFlagThatCannotBeReadIsNotRaisedForAQuery) {
  Link->OnStop = [] { return std::optional<bool>{}; };
  Open();
  Press(queryButton);
  EXPECT_EQ(Link->Sent,
            (Texts{"STATUS_STAGE", "STATUS_MECH", "RFID ON", "RFID READ_PERSISTENT", "STATUS PUMPS"}));
  EXPECT_TRUE(IsEnabled(queryButton));
}

TEST_F(OddSession, AStopFlagThatCannotBeReadIsNotRaisedForAnUpload) {
  Link->OnStop = [] { return std::optional<bool>{}; };
  Open();
  Press(uploadButton);
  ASSERT_FALSE(Link->Sent.empty());
  EXPECT_EQ(Link->Sent.back(), "SET_CALIBRATION SAVE");
  EXPECT_TRUE(IsEnabled(uploadButton));
}

TEST_F(OddSession, AHoldFlagThatCannotBeSetChangesNothing) {
  Link->OnHold = Status::Failure(E_ACCESSDENIED);
  Open();
  Press(queryButton);
  EXPECT_EQ(Link->Sent.size(), 5U);
  EXPECT_EQ(Link->Holds, std::vector<bool>(5, true));
  EXPECT_EQ(Boxes(), Texts{});
}

// ---- Results in every form

VARIANT Number(long number) {
  VARIANT value{};
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  return value;
}

VARIANT TextValue(const wchar_t* text) {
  VARIANT value{};
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = SysAllocString(text);
  return value;
}

VARIANT NullPointer(VARTYPE type) {
  VARIANT value{};
  V_VT(&value) = type;
  V_BYREF(&value) = nullptr;
  return value;
}

template <class Variable>
VARIANT ReferenceTo(VARTYPE type, Variable& variable) {
  VARIANT value{};
  V_VT(&value) = static_cast<VARTYPE>(VT_BYREF | type);
  V_BYREF(&value) = &variable;
  return value;
}

TEST_F(OddSession, AStopFlagIsRaisedInAnyFormThatStandsForYesAndInNoOther) {
  static VARIANT_BOOL no = VARIANT_FALSE;
  static VARIANT_BOOL yes = VARIANT_TRUE;
  static VARIANT zero = Number(0);
  constexpr std::size_t allSteps = 5;
  constexpr std::size_t firstStep = 1;
  struct Given {
    std::function<VARIANT()> Result;
    std::size_t Commands;
  };
  const std::vector<Given> forms{
      {[] { return VARIANT{}; }, allSteps},  // nothing is no
      {[] { return Number(0); }, allSteps},
      {[] { return Number(7); }, firstStep},
      {[] { return TextValue(L"False"); }, allSteps},
      {[] { return TextValue(L"1"); }, firstStep},
      {[] { return TextValue(L"neither"); }, allSteps},
      {[] { return ReferenceTo(VT_BOOL, no); }, allSteps},
      {[] { return ReferenceTo(VT_BOOL, yes); }, firstStep},
      {[] { return ReferenceTo(VT_VARIANT, zero); }, allSteps},
      {[] { return NullPointer(VT_DISPATCH); }, allSteps},
      {[] { return NullPointer(VT_UNKNOWN); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_BOOL); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_VARIANT); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_DISPATCH); }, allSteps},
  };
  for (const auto& given : forms) {
    std::size_t commands = 0;
    const auto accept = [](const MemberUse&) { return S_OK; };
    const auto link = Offer({{names::stop, get,
                              [&given](const MemberUse& use) {
                                *use.Result = given.Result();
                                return S_OK;
                              }},
                             {names::hold, put, accept},
                             {names::sendCommand, method, [&commands](const MemberUse& use) {
                                ++commands;
                                return use.Give(std::optional<bool>{true});
                              }}});
    Open(Offer({{names::instrumentLink, get, [&link](const MemberUse& use) { return use.Give(link); }}}),
         OfferHostWindow(Window));
    Press(queryButton);
    EXPECT_EQ(commands, given.Commands) << "form " << (&given - forms.data());
  }
  EndSession();
}

TEST_F(OddSession, ALinkThatIsGivenByReferenceIsTheLinkAndStaysTheHosts) {
  static IDispatch* variable = nullptr;
  const auto link = Offer({{names::sendCommand, method,
                            [](const MemberUse& use) { return use.Give(std::optional<bool>{true}); }}});
  variable = link.Get();
  Open(Offer({{names::instrumentLink, get,
               [](const MemberUse& use) {
                 *use.Result = ReferenceTo(VT_DISPATCH, variable);
                 return S_OK;
               }}}),
       OfferHostWindow(Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts{}) << "the command was answered";
  EndSession();
  EXPECT_EQ(link->AddRef(), 2U);
  EXPECT_EQ(link->Release(), 1U);
}

// ---- A service that fails

TEST_F(OddSession, AServiceThatFailsFromTheStartGivesAnEmptyPage) {
  SettingsAreBroken = true;
  Open();
  Press(queryButton);
  const auto page = Page().Shown();
  for (const auto& list : page.Lists) {
    EXPECT_LE(list.Entries.size(), 1U);  // "Not installed" at most
  }
  EXPECT_TRUE(IsEnabled(queryButton));
  for (const int button : {uploadButton, downloadButton, importButton, exportButton}) {
    EXPECT_FALSE(IsEnabled(button));
  }
  EXPECT_EQ(ContentOf(ProgramFolder::OfThisRun().Configuration()), SampleConfiguration());
}

TEST_F(OddSession, AServiceThatFailsDuringAnOperationLeavesTheConfigurationAlone) {
  Open();
  const auto before = ContentOf(ProgramFolder::OfThisRun().Configuration());
  for (const int button : operations) {
    SettingsAreBroken = false;
    EXPECT_EQ(Form->LoadDefaults(), S_OK);
    ASSERT_TRUE(IsEnabled(button));
    SettingsAreBroken = true;
    Press(button);
    EXPECT_TRUE(IsEnabled(queryButton)) << button;
    EXPECT_EQ(Window->Panel->Now, "") << button;
    SettingsAreBroken = false;
    const std::string blankLine = button == importButton ? "\r\n" : "";  // not by way of the service
    const auto after = ContentOf(ProgramFolder::OfThisRun().Configuration());
    EXPECT_EQ(after, before + blankLine) << button;
    Store(ProgramFolder::OfThisRun().Configuration(), before);
  }
}

// ---- Hosts that take things away from within a call

class TakenAway : public OddSession, public testing::WithParamInterface<int> {
 protected:
  // What the operation sends when nothing is taken away.
  Texts CommandsOf(int button) {
    Open();
    Press(button);
    return std::exchange(Link->Sent, {});
  }

  void AtCommand(std::size_t number, std::function<void()> act) {
    Link->OnSend = [this, number, act = std::move(act)](const std::string&) {
      if (Link->Sent.size() == number) {
        act();
      }
    };
  }
};

TEST_P(TakenAway, TheWindowIsNotNeededToGoOn) {
  const auto all = CommandsOf(GetParam());
  ASSERT_GT(all.size(), 4U);
  const HWND host = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 900, 600, nullptr,
                                    nullptr, nullptr, nullptr);
  ASSERT_NE(SetParent(Frame, host), nullptr);
  AtCommand(3, [host] { DestroyWindow(host); });
  Press(GetParam());
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(Link->Sent, all);
  EXPECT_EQ(Window->Panel->Now, "");
  EXPECT_EQ(FrameOf(*Form.Get()), nullptr);
}

TEST_P(TakenAway, ADetachedPageSendsNothingMore) {
  const auto all = CommandsOf(GetParam());
  Link->Holds.clear();
  AtCommand(3, [this] { EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link->Sent, Texts(all.begin(), all.begin() + 3));
  EXPECT_FALSE(Link->Holds.back());
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(FrameOf(*Form.Get()), nullptr);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_P(TakenAway, AReleasedPageEndsItsOperationAndGoes) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] {
    Form.Reset();
    AddIn.Reset();
    EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_FALSE);
  });
  Press(GetParam());
  EXPECT_EQ(Link->Sent, Texts(all.begin(), all.begin() + 3));
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
}

TEST_P(TakenAway, APageThatIsLoadedAgainGoesOn) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] { EXPECT_EQ(Form->LoadDefaults(), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link->Sent, all);
  EXPECT_TRUE(IsEnabled(queryButton));
}

TEST_P(TakenAway, AnObjectThatIsExchangedGetsTheRest) {
  const auto all = CommandsOf(GetParam());
  const auto second = std::make_shared<NotedObject>();
  AtCommand(3, [&] { EXPECT_EQ(Form->putref_ObjectParent(OfferHostObject(second).Get()), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link->Sent, Texts(all.begin(), all.begin() + 3));
  EXPECT_EQ(second->TheLink->Sent, Texts(all.begin() + 3, all.end()));
}

TEST_P(TakenAway, TheSameButtonDoesNotReactASecondTime) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] { Page().Press(GetParam()); });
  Press(GetParam());
  EXPECT_EQ(Link->Sent, all);
}

INSTANTIATE_TEST_SUITE_P(OddHost, TakenAway, testing::Values(queryButton, uploadButton, downloadButton));

class ReleasedFromWithin : public OddSession, public testing::WithParamInterface<const char*> {
 protected:
  void Release() {
    Form.Reset();
    AddIn.Reset();
  }

  void Prepare(const std::string& place) {
    Object->OffersDialog = place == "show";
    if (place == "changed") {
      Window->OnChanged = [this] { Release(); };
    } else if (place == "status") {
      Window->Panel->OnText = [this] { Release(); };
    } else if (place == "stop") {
      Link->OnStop = [this] { return Release(), false; };
    } else {
      Object->TheLink = nullptr;  // so that there is something to be told
      (place == "log" ? Object->OnLog : Object->OnShow) = [this] { Release(); };
    }
  }
};

TEST_P(ReleasedFromWithin, EverythingGoesWhenTheCallHasEnded) {
  Open();
  Prepare(GetParam());
  Page().Select(ListControl::CageType, 1);
  Press(queryButton);
  EXPECT_FALSE(Form);
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
}

INSTANTIATE_TEST_SUITE_P(OddHost, ReleasedFromWithin,
                         testing::Values("changed", "status", "stop", "log", "show"));

TEST_F(OddSession, AWindowThatIsTakenBackWhileItIsToldOfAChangeIsTakenBack) {
  Open();
  Window->OnChanged = [this] { EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK); };
  Page().Select(ListControl::CageType, 1);
  Page().Select(ListControl::CageType, 0);
  EXPECT_EQ(Window->Changes, std::vector<bool>{false});
}

TEST_F(OddSession, AChoiceIsStoredAlthoughTheHostReloadsAnEmptyListMeanwhile) {
  Open();
  Window->OnChanged = [this] {
    Store(ProgramFolder::OfThisRun().Configuration(), "[PumpControl]\nModuleInstalled=0\n");
    EXPECT_EQ(Form->LoadDefaults(), S_OK);
  };
  Page().Select(ListControl::DeviceType, 1);
  EXPECT_TRUE(Page().Shown().Of(ListControl::DeviceType).Entries.empty());
  EXPECT_NE(ContentOf(ProgramFolder::OfThisRun().Configuration()).find("Installed=2"), std::string::npos);
}

// ---- The window

TEST_F(OddSession, ADetachedPageThatIsGivenObjectsAgainLetsGoOfThemWhenItIsDetachedAgain) {
  Open();
  EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK);
  const auto before = ContentOf(ProgramFolder::OfThisRun().Configuration());
  Open();
  EXPECT_EQ(ContentOf(ProgramFolder::OfThisRun().Configuration()), before);
  EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_F(OddSession, AClickBesideTheControlsReachesTheWindow) {
  Open();
  Page().ClickFrame();
  EXPECT_EQ(Window->TimesFocused, 1);
  Window->OnFocus = Status::Failure(E_FAIL);
  Page().ClickFrame();
  EXPECT_EQ(Window->TimesFocused, 2);
  EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK);
  Page().ClickFrame();
  EXPECT_EQ(Window->TimesFocused, 2);
  EXPECT_EQ(Form->putref_FormParent(Offer({}).Get()), S_OK);
  Page().ClickFrame();
  EXPECT_TRUE(IsWindow(Frame));
}

TEST_F(OddSession, AWindowThatIsTakenBackLeavesThePanel) {
  Open();
  EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK);
  Press(queryButton);
  EXPECT_EQ(Window->Panel->Shown.front(), "Getting Zolvane Type");
  Window->Changes.clear();
  EXPECT_EQ(Form->SaveChanges(), S_OK);
  EXPECT_EQ(Window->Changes, std::vector<bool>{});
}

TEST_F(OddSession, AWindowWithoutAPanelLeavesThePanelOfTheOneBefore) {
  Open();
  EXPECT_EQ(Form->putref_FormParent(Offer({}).Get()), S_OK);
  Press(queryButton);
  EXPECT_EQ(Window->Panel->Shown.front(), "Getting Zolvane Type");
}

TEST_F(OddSession, LoadingLeavesTheMarkOfTheWindowAlone) {
  Open();
  EXPECT_EQ(Window->Changes, std::vector<bool>{});
  Page().Select(ListControl::CageType, 1);
  EXPECT_EQ(Window->Changes, std::vector<bool>{false});
}

TEST_F(OddSession, TheSameObjectsMayBeGivenTwice) {
  const auto object = OfferHostObject(Object);
  const auto window = OfferHostWindow(Window);
  Open(object, window);
  Open(object, window);
  Press(queryButton);
  EXPECT_EQ(Link->Sent.size(), 5U);
  EXPECT_EQ(Link->Holds, std::vector<bool>(5, true));
  EndSession();
  // Only the references of this test are left.
  EXPECT_EQ(object->AddRef(), 2U);
  EXPECT_EQ(object->Release(), 1U);
  EXPECT_EQ(window->AddRef(), 2U);
  EXPECT_EQ(window->Release(), 1U);
}

}  // namespace
}  // namespace zolvane
