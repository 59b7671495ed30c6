// Hosts that call back, detach the page or release it in the middle of a call.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/windows/com/offered_settings.h"
#include "shell/windows/class_factory.h"
#include "shell/windows/page/page_layout.h"
#include "windows/host/counted_memory.h"
#include "windows/host/noted_session.h"
#include "windows/host/small_host.h"

namespace zolvane {
namespace {

// ---- During a command to the instrument ----

class DuringACommand : public NotedSession, public testing::WithParamInterface<int> {
 protected:
  // What the operation sends when nothing is taken away.
  Texts CommandsOf(int button) {
    Open();
    Press(button);
    return std::exchange(Link().Commands, {});
  }

  void AtCommand(std::size_t number, std::function<void()> act) {
    Link().WhileSending = [this, number, act = std::move(act)](const std::string&) {
      if (Link().Commands.size() == number) {
        act();
      }
    };
  }
};

TEST_P(DuringACommand, AnOperationGoesOnWithoutItsWindow) {
  const auto all = CommandsOf(GetParam());
  ASSERT_GT(all.size(), 4U);
  const HWND host = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 900, 600, nullptr,
                                    nullptr, nullptr, nullptr);
  ASSERT_NE(SetParent(Frame, host), nullptr);
  AtCommand(3, [host] { DestroyWindow(host); });
  Press(GetParam());
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(Link().Commands, all);
  EXPECT_EQ(Window->Panel->Shown, "");
  EXPECT_EQ(FrameOf(Form), nullptr);
}

TEST_P(DuringACommand, ADetachedPageSendsNothingMore) {
  const auto all = CommandsOf(GetParam());
  Calls.Clear();
  AtCommand(3, [this] { EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link().Commands, Texts(all.begin(), all.begin() + 3));
  EXPECT_EQ(Calls.Of({"hold="}).back(), "hold=false");
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(FrameOf(Form), nullptr);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_P(DuringACommand, AReleasedPageEndsItsOperationAndGoes) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] {
    Form.Reset();
    AddIn.Reset();
    EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_FALSE);
  });
  Press(GetParam());
  EXPECT_EQ(Link().Commands, Texts(all.begin(), all.begin() + 3));
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
}

TEST_P(DuringACommand, APageThatIsLoadedAgainGoesOn) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] { EXPECT_EQ(Form->LoadDefaults(), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link().Commands, all);
  EXPECT_TRUE(IsEnabled(queryButton));
}

TEST_P(DuringACommand, TheNewObjectGetsTheRemainingCommands) {
  const auto all = CommandsOf(GetParam());
  const FakeHostObjects second;
  second.Link().DefaultReply = Link().DefaultReply;
  AtCommand(3, [&] { EXPECT_EQ(Form->putref_ObjectParent(OfferHostObject(second.Object).Get()), S_OK); });
  Press(GetParam());
  EXPECT_EQ(Link().Commands, Texts(all.begin(), all.begin() + 3));
  EXPECT_EQ(second.Link().Commands, Texts(all.begin() + 3, all.end()));
  EndSession();
}

TEST_P(DuringACommand, TheButtonDoesNotReactASecondTime) {
  const auto all = CommandsOf(GetParam());
  AtCommand(3, [this] { Page().Press(GetParam()); });
  Press(GetParam());
  EXPECT_EQ(Link().Commands, all);
}

INSTANTIATE_TEST_SUITE_P(Button, DuringACommand, testing::Values(queryButton, uploadButton, downloadButton));

// ---- During any other call ----

class ReleasedFromWithin : public NotedSession, public testing::WithParamInterface<const char*> {
 protected:
  void Release() {
    Form.Reset();
    AddIn.Reset();
  }

  void ReleaseDuring(const std::string& call) {
    Object->OffersDialog = call == "dialogue show";
    if (call == "log" || call == "dialogue show") {
      Object->TheLink = nullptr;  // so that there is something to be told
    }
    Calls.DoDuring(call, [this] { Release(); });
  }
};

TEST_P(ReleasedFromWithin, ThePageGoesWhenTheCallHasEnded) {
  Open();
  ReleaseDuring(GetParam());
  Page().Select(ListControl::CageType, 1);
  Press(queryButton);
  EXPECT_FALSE(Form);
  EXPECT_FALSE(IsWindow(Frame));
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
}

INSTANTIATE_TEST_SUITE_P(Call, ReleasedFromWithin,
                         testing::Values("changed=", "status=", "stop?", "log", "dialogue show"));

using ReenteredSession = NotedSession;

TEST_F(ReenteredSession, AWindowTakenBackDuringAChangeIsNotUsedAgain) {
  Open();
  Calls.DoDuring("changed=", [this] { EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK); });
  Page().Select(ListControl::CageType, 1);
  Page().Select(ListControl::CageType, 0);
  EXPECT_EQ(Calls.Of({"changed="}), Texts{"changed=false"});
}

TEST_F(ReenteredSession, AChoiceIsStoredAlthoughTheHostReloadsAnEmptyListMeanwhile) {
  Open();
  Calls.DoDuring("changed=", [this] {
    Store(ProgramFolder::OfThisRun().Configuration(), "[PumpControl]\nModuleInstalled=0\n");
    EXPECT_EQ(Form->LoadDefaults(), S_OK);
  });
  Page().Select(ListControl::DeviceType, 1);
  EXPECT_TRUE(Page().Shown().Of(ListControl::DeviceType).Entries.empty());
  EXPECT_NE(ContentOf(ProgramFolder::OfThisRun().Configuration()).find("Installed=2"), std::string::npos);
}

// ---- With little around it ----

using small_host::Object;
using small_host::OneRecordEach;
using small_host::read;
using small_host::set;

class ReenteringHost : public testing::Test {
 protected:
  // Detaches the page as soon as it reports the change that the user makes.
  void DetachDuring(void (*makeChange)(HWND frame)) {
    bool mayDetach = false;
    const auto tell = [&](const MemberUse&) {
      return mayDetach ? form_->putref_ObjectParent(nullptr) : S_OK;
    };
    form_->putref_FormParent(Offer({{names::changed, set, tell}}).Get());
    form_->putref_ObjectParent(Offer({}).Get());
    form_->LoadDefaults();
    mayDetach = true;
    const HWND frame = FrameOf(form_);
    makeChange(frame);
    EXPECT_FALSE(IsWindow(frame));
    EXPECT_EQ(OfferedObjectsAlive(), 0);
  }

  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();
  OfferedSettings settings_{[] { return std::make_shared<OneRecordEach>(); }};
  ComPtr<IAddIn> addIn_ = folder_.Module().Create();
  ComPtr<IAddInForm> form_ = FormOf(addIn_);
};

TEST_F(ReenteringHost, TheClassMayBeUsedWhileItsLastReferenceIsReleased) {
  ComPtr<IAddIn> addIn;
  MakeClassFactory()->CreateInstance(nullptr, __uuidof(IAddIn), addIn.PutVoid());
  IAddIn* const raw = addIn.Get();
  int uses = 0;
  const auto link = Offer({{names::hold, set, [&](const MemberUse&) {
                              ++uses;
                              raw->AddRef();
                              raw->Release();
                              return S_OK;
                            }}});
  FormOf(addIn)->putref_ObjectParent(Offer({Object(names::instrumentLink, link)}).Get());
  int deletions = 0;
  {
    const WatchedDeletion watched{raw};
    addIn.Reset();
    deletions = watched.Count();
  }
  EXPECT_EQ(deletions, 1);
  EXPECT_EQ(uses, 1);
}

TEST_F(ReenteringHost, APageDetachedWhileItsPanelIsLookedUpHoldsNothing) {
  {
    const auto panel = Offer({});
    const auto panels = Offer({Object(L"", panel)});
    const auto statusBar = Offer({Object(names::panels, panels)});
    const auto window = Offer({{names::statusBar, read, [&](const MemberUse& use) {
                                  EXPECT_EQ(form_->putref_ObjectParent(nullptr), S_OK);
                                  return use.Give(statusBar);
                                }}});
    EXPECT_EQ(form_->putref_FormParent(window.Get()), S_OK);
  }
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_F(ReenteringHost, APageMayBeDetachedWhileAListReportsAChoice) {
  DetachDuring([](HWND frame) {
    const HWND list = GetDlgItem(frame, IdOf(ListControl::DeviceType));
    SendMessageW(list, WM_KEYDOWN, VK_DOWN, 0);
    SendMessageW(list, WM_KEYDOWN, VK_UP, 0);
  });
}

TEST_F(ReenteringHost, APageMayBeDetachedWhileABoxReportsAClick) {
  DetachDuring([](HWND frame) { SendMessageW(GetDlgItem(frame, IdOf(CheckControl::RFID)), BM_CLICK, 0, 0); });
}

}  // namespace
}  // namespace zolvane
