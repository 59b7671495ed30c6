#include "shell/frm_add_in.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/form_session.h"

namespace zolvane {
namespace {

constexpr std::string_view formConfiguration =
    "[DeviceType]\nInstalled=1\nItem1=\"Small\",0,\"ZV200\"\n"
    "[CageType]\nInstalled=1\nItem1=\"Narrow\",SERIALDILUTE\n";

// A page of its own, which no module keeps.
struct FormFixture : FakeHost {
  FormFixture() { Settings().Load(formConfiguration); }

  Configuration Config{Process};
  RecordedViewFactory Views{Calls};
  int Unloads = 0;
  std::shared_ptr<frmAddIn> Form = frmAddIn::Create(Process, Config, Views, [this] { ++Unloads; });

  void Attach() {
    Form->IAddInForm_FormParent(Window);
    Form->IAddInForm_ObjectParent(Object);
    Calls.Clear();
  }
};

// ---- Creation ----

TEST(Form, CreatesItsControlsAndLoadsNothing) {
  FormFixture fixture;
  EXPECT_EQ(fixture.Calls.Events, Texts{"view create"});
  EXPECT_EQ(fixture.Views.Events, fixture.Form.get());
}

TEST(Form, DoesNotExistWithoutItsControls) {
  FakeHost host;
  Configuration config{host.Process};
  RecordedViewFactory views{host.Calls};
  host.Calls.FailEverythingThatStartsWith("view create");
  EXPECT_EQ(frmAddIn::Create(host.Process, config, views, [] {}), nullptr);
}

// ---- Members without state ----

TEST(Form, AnswersTheSameQuestionsTheSameWayInEveryState) {
  FormFixture fixture;
  fixture.Views.View->Window = 0x12345;
  fixture.Views.View->Frame = 0x54321;
  const auto expectAnswers = [&fixture] {
    EXPECT_EQ(fixture.Form->IAddInForm_HelpContextID(), 9014);
    EXPECT_TRUE(fixture.Form->IAddInForm_ShowButtons());
    EXPECT_TRUE(fixture.Form->IAddInForm_ShowStatusBar());
    EXPECT_EQ(fixture.Form->IAddInForm_hwnd(), 0x12345);
    EXPECT_EQ(fixture.Form->IAddInForm_Frame(), 0x54321);
  };
  expectAnswers();
  fixture.Attach();
  expectAnswers();
  fixture.Form->IAddInForm_LoadDefaults();
  expectAnswers();
  fixture.Form->Unload();
  expectAnswers();
}

// ---- FormParent ----

TEST(FormParent, FindsItsStatusPanelWhenItIsSet) {
  FormFixture fixture;
  fixture.Calls.Clear();
  fixture.Form->IAddInForm_FormParent(fixture.Window);
  EXPECT_EQ(fixture.Calls.Events, Texts{"find panel"});
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"status="}).front(), "status=Getting Zolvane Type");
}

TEST(FormParent, AWindowWithoutAStatusPanelLetsTheStatusTextsFail) {
  FormFixture fixture;
  fixture.Window->Panel = nullptr;
  fixture.Attach();
  fixture.Form->IAddInForm_SaveChanges();
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"status="}), Texts{});
  EXPECT_EQ(fixture.Calls.Of({"send"}).size(), 5U);
  EXPECT_EQ(fixture.Window->Changed, false);
}

TEST(FormParent, SetToNothingKeepsTheStatusPanel) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->IAddInForm_FormParent(nullptr);
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"status="}).front(), "status=Getting Zolvane Type");
  fixture.Form->IAddInForm_SaveChanges();
  EXPECT_EQ(fixture.Window->Changed, std::nullopt);
}

TEST(FormParent, AWindowWithoutAPanelKeepsThatOfTheOneBefore) {
  FormFixture fixture;
  fixture.Attach();
  const auto second = std::make_shared<FakeWindow>(fixture.Calls);
  second->Panel = nullptr;
  fixture.Form->IAddInForm_FormParent(second);
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"status="}).front(), "status=Getting Zolvane Type");
  fixture.Form->IAddInForm_SaveChanges();
  EXPECT_EQ(second->Changed, false);
  EXPECT_EQ(fixture.Window->Changed, std::nullopt);
}

TEST(FormParent, ReplacedByAWindowWithAPanelUsesThatPanel) {
  FormFixture fixture;
  fixture.Attach();
  const auto second = std::make_shared<FakeWindow>(fixture.Calls);
  fixture.Form->IAddInForm_FormParent(second);
  fixture.Form->PressButton(uploadButton);
  fixture.Process.BoxAnswers = {message_answer::cancel};
  fixture.Form->PressButton(uploadButton);
  EXPECT_EQ(second->Panel->Shown, "Uploading Data to Zolvane");
  EXPECT_EQ(fixture.Window->Panel->Shown, "");
}

// ---- ObjectParent ----

TEST(ObjectParent, IsJustStored) {
  FormFixture fixture;
  fixture.Calls.Clear();
  fixture.Form->IAddInForm_ObjectParent(fixture.Object);
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Link().Commands.size(), 5U);
}

TEST(ObjectParent, IsReplacedByASecondOneWithoutTouchingALink) {
  FormFixture fixture;
  fixture.Attach();
  FakeHost other;
  fixture.Form->IAddInForm_ObjectParent(other.Object);
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  EXPECT_EQ(other.Calls.Events, Texts{});
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Link().Commands, Texts{});
  EXPECT_EQ(other.Link().Commands.size(), 5U);
}

TEST(ObjectParent, SetToNothingReleasesTheHoldFlagOnceAndUnloadsThePage) {
  FormSession session{formConfiguration};
  session.Form->PressButton(queryButton);
  EXPECT_TRUE(session.Link().HoldFlag);
  session.Calls.Clear();
  session.Form->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(session.Calls.Events, (Texts{"get link", "hold=false", "view close"}));
  EXPECT_FALSE(session.Link().HoldFlag);
}

TEST(ObjectParent, SetToNothingUnloadsThePageAlsoWhenThereWasNone) {
  FormFixture fixture;
  fixture.Calls.Clear();
  fixture.Form->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  EXPECT_EQ(fixture.Unloads, 1);
}

TEST(ObjectParent, SetToNothingUnloadsThePageWhateverOfTheLinkFails) {
  for (const auto* failing : {"get link", "hold=false"}) {
    FormFixture fixture;
    fixture.Attach();
    fixture.Calls.FailEverythingThatStartsWith(failing);
    fixture.Form->IAddInForm_ObjectParent(nullptr);
    EXPECT_EQ(fixture.Unloads, 1) << failing;
  }
}

TEST(ObjectParent, IsEmptyBeforeThePageUnloads) {
  FakeHost host;
  Configuration config{host.Process};
  RecordedViewFactory views{host.Calls};
  std::shared_ptr<frmAddIn> form;
  const auto unload = [&] { form->PressButton(queryButton); };
  form = frmAddIn::Create(host.Process, config, views, unload);
  form->IAddInForm_ObjectParent(host.Object);
  form->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(host.Link().Commands, Texts{});
}

// ---- Unloading ----

TEST(Unloading, ReleasesTheHoldFlagAndClosesTheView) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->Unload();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "hold=false", "view close"}));
}

// Notes when the page lets go of an object.
template <class Object>
std::shared_ptr<Object> Watched(std::shared_ptr<Object> object, Journal& journal, const std::string& name) {
  auto* const watched = object.get();
  return std::shared_ptr<Object>{
      watched, [object = std::move(object), &journal, name](Object*) { journal.Note("release " + name); }};
}

TEST(Unloading, ReleasesThePanelThenTheWindowThenTheHostObject) {
  FormFixture fixture;
  fixture.Window->Panel = Watched(fixture.Window->Panel, fixture.Calls, "panel");
  fixture.Form->IAddInForm_FormParent(
      Watched(std::static_pointer_cast<HostWindow>(fixture.Window), fixture.Calls, "window"));
  fixture.Form->IAddInForm_ObjectParent(
      Watched(std::static_pointer_cast<HostObject>(fixture.Object), fixture.Calls, "host object"));
  fixture.Window->Panel = nullptr;
  fixture.Calls.Clear();
  fixture.Form->Unload();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "hold=false", "release panel", "release window",
                                         "release host object", "view close"}));
}

TEST(Unloading, ReleasesEverythingAlsoWhenTheLinkFails) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Calls.FailEverythingThatStartsWith("hold");
  const std::weak_ptr<FakeHostObject> object = fixture.Object;
  fixture.Form->Unload();
  fixture.Object = nullptr;
  EXPECT_TRUE(object.expired());
}

TEST(Unloading, IsHarmlessTwice) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->Unload();
  fixture.Calls.Clear();
  fixture.Form->Unload();
  EXPECT_EQ(fixture.Calls.Events, Texts{"view close"});
}

TEST(Unloading, EndsTheConnectionToWhoeverKeptThePage) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->Unload();
  fixture.Form->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(fixture.Unloads, 0);
}

TEST(Unloading, LetsTheHostDetachThePageOnceMoreAndLetsGoOfAllItWasGivenMeanwhile) {
  FormFixture fixture;
  fixture.Form->Unload();
  fixture.Attach();
  const std::weak_ptr<HostWindow> window = fixture.Window;
  const std::weak_ptr<StatusPanel> panel = fixture.Window->Panel;
  fixture.Form->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(fixture.Calls.Of({"hold="}), Texts{"hold=false"});
  fixture.Window = nullptr;
  EXPECT_TRUE(window.expired());
  EXPECT_TRUE(panel.expired());
  EXPECT_EQ(fixture.Unloads, 0);
}

TEST(Unloading, LeavesAPageWhoseMembersStillReturn) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->Unload();
  fixture.Calls.Clear();
  fixture.Form->IAddInForm_SaveChanges();
  fixture.Form->ClickFrame();
  fixture.Form->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"changed", "focus", "send", "status"}), Texts{});
}

// ---- LoadDefaults and SaveChanges ----

TEST(LoadDefaults, FillsTheControls) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->IAddInForm_LoadDefaults();
  EXPECT_EQ(fixture.Form->Page().Model().Of(ListControl::DeviceType).Entries,
            (std::vector<ListEntry>{{"Small", 1}}));
  EXPECT_EQ(fixture.Calls.Of({"changed"}), Texts{});
}

TEST(LoadDefaults, ReturnsWhateverFails) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Calls.FailsIf = [](auto) { return true; };
  fixture.Form->IAddInForm_LoadDefaults();
  EXPECT_EQ(fixture.Calls.Events.back(), "view cmdButton(4) enabled false");
}

TEST(SaveChanges, SetsChangedToFalseAndSavesNothing) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->IAddInForm_SaveChanges();
  EXPECT_EQ(fixture.Calls.Events, Texts{"changed=false"});
  EXPECT_EQ(fixture.Window->Changed, false);
}

TEST(SaveChanges, ReturnsWithoutAWindowAndWhenTheWindowFails) {
  FormFixture fixture;
  fixture.Calls.Clear();
  fixture.Form->IAddInForm_SaveChanges();
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  fixture.Attach();
  fixture.Calls.FailEverythingThatStartsWith("changed");
  fixture.Form->IAddInForm_SaveChanges();
  EXPECT_EQ(fixture.Calls.Events, Texts{"changed=false"});
}

// ---- The frame container ----

TEST(ClickOnTheFrame, AsksTheHostWindowToTakeTheFocus) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Views.Events->ClickFrame();
  EXPECT_EQ(fixture.Calls.Events, Texts{"focus"});
}

TEST(ClickOnTheFrame, ReturnsWithoutAWindowAndWhenTheWindowFails) {
  FormFixture fixture;
  fixture.Calls.Clear();
  fixture.Views.Events->ClickFrame();
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  fixture.Attach();
  fixture.Calls.FailEverythingThatStartsWith("focus");
  fixture.Views.Events->ClickFrame();
  EXPECT_EQ(fixture.Calls.Events, Texts{"focus"});
}

// ---- What the user does on the view ----

TEST(EventsOfTheView, ReachThePageAndReportFailures) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Form->IAddInForm_LoadDefaults();
  fixture.Calls.Clear();
  EXPECT_TRUE(fixture.Views.Events->UserSelects(ListControl::CageType, 1).Ok());
  EXPECT_TRUE(fixture.Views.Events->UserSetsCheck(CheckControl::Encoders, 2).Ok());
  EXPECT_EQ(fixture.Calls.Of({"write"}),
            (Texts{"write [CageType] Installed=0", "write [DeviceType] SDXYEncodersEnable=1"}));
  fixture.Calls.FailEverythingThatStartsWith("write");
  EXPECT_EQ(fixture.Views.Events->UserSelects(ListControl::CageType, 0).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.Views.Events->UserSetsCheck(CheckControl::Encoders, 1).Code(), Journal::failureCode);
}

TEST(EventsOfTheView, StartTheOperations) {
  FormFixture fixture;
  fixture.Attach();
  fixture.Views.Events->PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"send"}).front(), "send STATUS_STAGE");
}

// ---- A host that calls back in answer to a call ----

// Does something the first time that a call with this event is made.
void InAnswerTo(FormSession& session, std::string event, std::function<void()> act) {
  session.Calls.FailsIf = [event = std::move(event), act = std::move(act),
                           isDone = false](std::string_view made) mutable {
    if (made == event && !std::exchange(isDone, true)) {
      act();
    }
    return false;
  };
}

TEST(CallingBack, DetachingThePageKeepsTheObjectOfTheCallUntilItReturns) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  const std::weak_ptr<FakePanel> panel{session.Window->Panel};
  session.Window->Panel = nullptr;
  bool wasKept = false;
  InAnswerTo(session, "status=Getting Zolvane Type", [&] {
    session.Form->IAddInForm_ObjectParent(nullptr);
    wasKept = !panel.expired();
  });
  session.Views.Events->PressButton(queryButton);
  EXPECT_TRUE(wasKept);
  EXPECT_TRUE(panel.expired());
}

TEST(CallingBack, DetachingThePageLeavesNoPanelInIt) {
  FormSession session{formConfiguration};
  const std::weak_ptr<FakePanel> panel{session.Window->Panel};
  InAnswerTo(session, "find panel", [&] { session.Form->IAddInForm_ObjectParent(nullptr); });
  session.Form->IAddInForm_FormParent(session.Window);
  session.Window->Panel = nullptr;
  EXPECT_TRUE(panel.expired());
}

TEST(CallingBack, LoadingAListWithoutThatEntryStoresTheChoiceAllTheSame) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  InAnswerTo(session, "changed=false", [&] {
    session.Settings().Load("[DeviceType]\nInstalled=1\n");
    session.Form->IAddInForm_LoadDefaults();
  });
  EXPECT_TRUE(session.Views.Events->UserSelects(ListControl::DeviceType, 0).Ok());
  EXPECT_TRUE(session.Model().Of(ListControl::DeviceType).Entries.empty());
  EXPECT_EQ(session.Value("DeviceType", "Installed"), "1");
}

TEST(CallingBack, LoadingABoxStoresTheClickAllTheSame) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  InAnswerTo(session, "changed=false", [&] {
    session.Settings().Load("[DeviceType]\nSensorEnableRFID=0\n");
    session.Form->IAddInForm_LoadDefaults();
  });
  EXPECT_TRUE(session.Views.Events->UserSetsCheck(CheckControl::RFID, 1).Ok());
  EXPECT_EQ(session.Value("DeviceType", "SensorEnableRFID"), "1");
}

// ---- Detaching in the middle of something ----

// Detaches the page and lets go of it, as a host does whose window is closed meanwhile.
struct Detaching {
  explicit Detaching(FormSession& session) : Page{session.Form} {
    session.Process.WhileOpen = [&session, isDone = false]() mutable {
      if (!std::exchange(isDone, true)) {
        const auto form = std::exchange(session.Form, nullptr);
        form->IAddInForm_ObjectParent(nullptr);
      }
    };
  }

  std::weak_ptr<frmAddIn> Page;
};

// A call of the host or the view, and an event in the midst of which the host lets go of the page.
struct MemberCall {
  std::string_view Event;
  std::function<void(frmAddIn& page, FormSession& session)> Make;
};

TEST(DetachingMeanwhile, KeepsThePageUntilTheMemberReturns) {
  const std::vector<MemberCall> calls{
      {"changed=false", [](auto& page, auto&) { page.IAddInForm_SaveChanges(); }},
      {"read [DeviceType] Installed", [](auto& page, auto&) { page.IAddInForm_LoadDefaults(); }},
      {"hold=false", [](auto& page, auto&) { page.IAddInForm_ObjectParent(nullptr); }},
      {"find panel", [](auto& page, auto& session) { page.IAddInForm_FormParent(session.Window); }},
      {"changed=false", [](auto& page, auto&) { PassOver(page.UserSelects(ListControl::DeviceType, 0)); }},
      {"changed=false", [](auto& page, auto&) { PassOver(page.UserSetsCheck(CheckControl::RFID, 1)); }},
      {"send STATUS_STAGE", [](auto& page, auto&) { page.PressButton(queryButton); }},
  };
  for (std::size_t number = 0; number < calls.size(); ++number) {
    FormSession session{formConfiguration};
    session.LoadDefaults();
    const std::weak_ptr<frmAddIn> page{session.Form};
    std::optional<bool> wasKept;
    session.Calls.FailsIf = [&](std::string_view event) {
      if (session.Form && event.starts_with(calls[number].Event)) {
        std::exchange(session.Form, nullptr)->IAddInForm_ObjectParent(nullptr);
        wasKept = !page.expired();
      }
      return false;
    };
    calls[number].Make(*session.Form, session);
    EXPECT_EQ(wasKept, true) << number;
    EXPECT_TRUE(page.expired()) << number;
  }
}

TEST(DetachingMeanwhile, LetsARunningUploadEndWithoutTheHost) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  const Detaching detaching{session};
  session.Views.Events->PressButton(uploadButton);
  EXPECT_EQ(session.Link().Commands, Texts{});
  EXPECT_EQ(session.Calls.Of({"view close"}).size(), 1U);
  EXPECT_EQ(session.Window->Panel->Shown, "Uploading Data to Zolvane");
  EXPECT_TRUE(detaching.Page.expired());
}

TEST(DetachingMeanwhile, LetsARunningImportEnd) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  session.Process.BoxAnswers = {message_answer::yes};
  session.Process.FileAnswers = {"/backup/a.bak"};
  const Detaching detaching{session};
  session.Views.Events->PressButton(importButton);
  EXPECT_EQ(session.Calls.Of({"box 64"}).size(), 1U);
  EXPECT_TRUE(detaching.Page.expired());
}

TEST(DetachingMeanwhile, DetachingUnderTheHostsDialogueLetsTheMessageEnd) {
  FormSession session{formConfiguration};
  session.LoadDefaults();
  session.Link().DefaultReply = NoAnswer();
  session.Object->OffersDialog = true;
  session.Object->Dialog->Results = {-1, 1};
  const Detaching detaching{session};
  session.Process.WhileYielding = std::exchange(session.Process.WhileOpen, nullptr);
  session.Views.Events->PressButton(queryButton);
  EXPECT_EQ(session.Calls.Of({"log ******* Message dialogue : button"}),
            Texts{"log ******* Message dialogue : button selected : 1"});
  EXPECT_EQ(session.Link().Commands, Texts{"STATUS_STAGE"});
  EXPECT_TRUE(detaching.Page.expired());
}

}  // namespace
}  // namespace zolvane
