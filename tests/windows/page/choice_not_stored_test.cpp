// What the page's window says if one of the user's choices could not be stored.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bench/host/outcome.h"
#include "bench/windows/play/dialogue_answerer.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/player.h"
#include "page/page_controls.h"
#include "windows/support/dialogue_spectator.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

constexpr int tipList = IdOf(ListControl::TipType);
constexpr int rfidBox = IdOf(CheckControl::RFID);
constexpr int anotherTip = 2;  // than the one that is installed

// Collects the boxes, which do not appear.
class CollectedBoxes final : public DialogueSpectator {
 public:
  std::vector<MessageBoxRequest> Boxes;

  bool ShowsDialogues() const override { return false; }
  std::optional<std::int32_t> AnswerUnshown(const MessageBoxRequest& request) override {
    Boxes.push_back(request);
    return message_answer::ok;
  }
};

class ChoiceNotStored : public testing::Test {
 protected:
  ChoiceNotStored() { page_.Host().Calls.FailEverythingThatStartsWith("write "); }

  HWND Control(int id) const { return page_.Control(id); }

  void Notify(int id, int notification) const {
    SendMessageW(page_.Frame(), WM_COMMAND, MAKEWPARAM(id, notification),
                 reinterpret_cast<LPARAM>(Control(id)));
  }

  void Choose(int position) const {
    SendMessageW(Control(tipList), CB_SETCURSEL, static_cast<WPARAM>(position), 0);
    Notify(tipList, CBN_SELCHANGE);
  }

  static void Pump() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

  HostedPage page_;
  CollectedBoxes shown_;
  DialogueHooks hooks_{ProgramFolder::OfThisRun().Module().Module(), nullptr, shown_};
};

TEST_F(ChoiceNotStored, AStopBoxNamesTheFile) {
  Choose(anotherTip);
  ASSERT_EQ(shown_.Boxes.size(), 1U);
  const auto& box = shown_.Boxes.front();
  EXPECT_EQ(box.Title, "Zolvane Setup");
  EXPECT_EQ(box.Style, 16) << "the stop sign over OK";
  EXPECT_EQ(box.Text,
            "Your choice could not be stored in\r\n" + ProgramFolder::OfThisRun().FileText("Zolvane.ini") +
                "\r\n\r\nThe page shows it, but it is not in the file. Please make sure that the file can "
                "be written, then choose again.");
}

TEST_F(ChoiceNotStored, AListKeepsTheChoiceOnThePage) {
  const auto stored = HostedPage::Stored("TipType", "Installed");
  ASSERT_NE(SendMessageW(Control(tipList), CB_GETCURSEL, 0, 0), anotherTip);
  Choose(anotherTip);
  EXPECT_EQ(SendMessageW(Control(tipList), CB_GETCURSEL, 0, 0), anotherTip);
  EXPECT_EQ(HostedPage::Stored("TipType", "Installed"), stored);
}

TEST_F(ChoiceNotStored, ABoxKeepsItsStateAndTheUserIsToldOnce) {
  ASSERT_EQ(SendMessageW(Control(rfidBox), BM_GETCHECK, 0, 0), BST_CHECKED);
  SendMessageW(Control(rfidBox), BM_CLICK, 0, 0);
  EXPECT_EQ(shown_.Boxes.size(), 1U);
  EXPECT_EQ(SendMessageW(Control(rfidBox), BM_GETCHECK, 0, 0), BST_UNCHECKED);
  EXPECT_EQ(HostedPage::Stored("DeviceType", "SensorEnableRFID"), "1");
}

TEST_F(ChoiceNotStored, TheUserIsToldAfterEachAction) {
  Choose(anotherTip);
  Choose(0);
  SendMessageW(Control(rfidBox), BM_CLICK, 0, 0);
  EXPECT_EQ(shown_.Boxes.size(), 3U);
}

TEST_F(ChoiceNotStored, TheUserIsToldOnceWhenAListCloses) {
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, TRUE, 0);
  SendMessageW(Control(tipList), CB_SETCURSEL, anotherTip, 0);
  Notify(tipList, CBN_SELCHANGE);
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, FALSE, 0);
  Pump();
  EXPECT_EQ(shown_.Boxes.size(), 1U);
}

// Not every system reports the choice of an entry that was selected already.
TEST_F(ChoiceNotStored, ChoosingTheSameEntryAgainStoresIt) {
  Choose(anotherTip);
  page_.Host().Calls.FailsIf = nullptr;
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, TRUE, 0);
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, FALSE, 0);
  Pump();
  EXPECT_EQ(HostedPage::Stored("TipType", "Installed"), "3");
  EXPECT_EQ(shown_.Boxes.size(), 1U);
}

TEST_F(ChoiceNotStored, TheUserIsToldOnceEachTimeTheSameEntryIsChosenAgain) {
  Choose(anotherTip);
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, TRUE, 0);
  Notify(tipList, CBN_SELCHANGE);
  SendMessageW(Control(tipList), CB_SHOWDROPDOWN, FALSE, 0);
  Pump();
  EXPECT_EQ(shown_.Boxes.size(), 2U);
}

TEST_F(ChoiceNotStored, TheUserIsNotToldWhatThePageItselfSelects) {
  page_.Form()->LoadDefaults();
  EXPECT_TRUE(shown_.Boxes.empty());
}

TEST_F(ChoiceNotStored, TheUserIsNotToldWhenTheChoiceWasStored) {
  page_.Host().Calls.FailsIf = nullptr;
  Choose(anotherTip);
  SendMessageW(Control(rfidBox), BM_CLICK, 0, 0);
  EXPECT_TRUE(shown_.Boxes.empty());
}

// The real box, over the host that it belongs to.
class OverTheHost final : public DialogueSpectator {
 public:
  explicit OverTheHost(HWND host) : host_{host} {}

  void BoxOpens(const MessageBoxRequest& request) override {
    Text = request.Text;
    answerer_.PressButton(message_answer::ok);
  }
  void BoxClosed(const MessageBoxRequest&, std::optional<std::int32_t> answer) override {
    answerer_.Closed();
    Answer = answer;
    IsHostBack = IsWindowEnabled(host_) != FALSE;
  }

  std::string Text;
  std::optional<std::int32_t> Answer;
  bool IsHostBack = false;

 private:
  HWND host_;
  DialogueAnswerer answerer_;
};

TEST(ChoiceNotStoredOnScreen, TheBoxAppearsAndGivesTheHostBack) {
  HostedPage page;
  OverTheHost user{page.Window()};
  const DialogueHooks hooks{ProgramFolder::OfThisRun().Module().Module(), nullptr, user};
  page.Host().Calls.FailEverythingThatStartsWith("write ");
  SendMessageW(page.Control(rfidBox), BM_CLICK, 0, 0);
  EXPECT_EQ(user.Answer, message_answer::ok);
  EXPECT_TRUE(user.IsHostBack);
  EXPECT_NE(user.Text.find(ProgramFolder::OfThisRun().FileText("Zolvane.ini")), std::string::npos);
}

TEST(ChoiceNotStoredOnScreen, ARunFileGoesOnAndCountsItAsFailed) {
  HostedPage page;
  Player player{{.Listed = {}, .AffirmsRest = false}, [](const std::string&) {}};
  const DialogueHooks hooks{ProgramFolder::OfThisRun().Module().Module(), nullptr, player};
  page.Host().Calls.FailEverythingThatStartsWith("write ");
  const PageDriver user{page.Frame()};
  EXPECT_TRUE(
      player.Play({.Kind = ActionKind::SelectEntry, .List = ListControl::TipType, .Entry = "#2"}, user));
  EXPECT_EQ(ExitStatusOf(player.Tally()), 1);
  EXPECT_TRUE(player.Play({.Kind = ActionKind::SetCheck, .Box = CheckControl::RFID, .Value = 2}, user));
  EXPECT_EQ(ExitStatusOf(player.Tally()), 1);
  EXPECT_EQ(user.Shown().Of(ListControl::TipType).Selected, anotherTip);
  EXPECT_EQ(user.Shown().Of(CheckControl::RFID).Value, 2);
}

}  // namespace
}  // namespace zolvane
