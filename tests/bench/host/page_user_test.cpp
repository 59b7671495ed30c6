#include "bench/host/page_user.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace zolvane {
namespace {

// A page with the tip types "Tall", "tall" and "#0", which writes down what was done with it.
struct NotedPage {
  NotedPage() {
    Model.Of(ListControl::TipType).Entries = {
        {.Text = "Tall", .Data = 1}, {.Text = "tall", .Data = 2}, {.Text = "#0", .Data = 3}};
  }

  bool Use(const Action& action) {
    return UsePage(
        {.Shown = [this] { return Model; },
         .Press = [this](int button) { Done.push_back("press " + std::to_string(button)); },
         .Select = [this](ListControl,
                          int position) { Done.push_back("select " + std::to_string(position)); },
         .SetCheck = [this](CheckControl, int value) { Done.push_back("tick " + std::to_string(value)); }},
        action, Tally, [this](const std::string& text) { Complaints.push_back(text); });
  }

  bool Select(const std::string& entry) {
    return Use({.Kind = ActionKind::SelectEntry,
                .Place = "job.txt, line 3",
                .List = ListControl::TipType,
                .Entry = entry});
  }

  PageModel Model;
  ActionTally Tally;
  std::vector<std::string> Done;
  std::vector<std::string> Complaints;
};

TEST(PageUser, SelectsTheEntryOfThatTextAndLooksAtCaseFirst) {
  NotedPage page;
  EXPECT_TRUE(page.Select("tall"));
  EXPECT_TRUE(page.Select("TALL"));
  EXPECT_EQ(page.Done, (std::vector<std::string>{"select 1", "select 0"}));
}

TEST(PageUser, TakesATextForAPositionOnlyIfNoEntryHasIt) {
  NotedPage page;
  EXPECT_TRUE(page.Select("#0"));
  EXPECT_TRUE(page.Select("#1"));
  EXPECT_EQ(page.Done, (std::vector<std::string>{"select 2", "select 1"}));
}

TEST(PageUser, ComplainsAboutAnEntryThatTheListDoesNotHave) {
  for (const auto* entry : {"short", "#3", "#-1", "#", ""}) {
    NotedPage page;
    EXPECT_FALSE(page.Select(entry));
    EXPECT_TRUE(page.Done.empty());
    EXPECT_TRUE(page.Tally.WasMisused);
    EXPECT_EQ(page.Complaints,
              std::vector<std::string>{"job.txt, line 3: cboTipType has no entry \"" + std::string{entry} +
                                       "\"; the command page prints its entries"});
  }
}

TEST(PageUser, LeavesADisabledControlAlone) {
  NotedPage page;
  page.Model.ButtonsEnabled[queryButton] = false;
  page.Model.Of(CheckControl::RFID).Enabled = false;
  EXPECT_FALSE(page.Use({.Kind = ActionKind::PressButton, .Button = queryButton}));
  EXPECT_FALSE(page.Use({.Kind = ActionKind::SetCheck, .Box = CheckControl::RFID, .Value = 1}));
  EXPECT_TRUE(page.Done.empty());
  EXPECT_TRUE(page.Tally.WasDisabled);
  EXPECT_EQ(page.Complaints,
            (std::vector<std::string>{"cmdButton(2) (Query Zolvane) is disabled and does not react",
                                      "chkRFID is disabled and does not react"}));
}

TEST(PageUser, PressesAnyNumber) {
  NotedPage page;
  for (const int button : {-1, uploadButton, 99}) {
    EXPECT_TRUE(page.Use({.Kind = ActionKind::PressButton, .Button = button}));
  }
  EXPECT_EQ(page.Done, (std::vector<std::string>{"press -1", "press 0", "press 99"}));
}

TEST(ActionTally, CountsNoButtonOfABoxWithOkAloneAsDeclined) {
  ActionTally tally;
  tally.TakeAnswer(message_style::okOnly + message_style::exclamationIcon, message_answer::cancel);
  EXPECT_FALSE(tally.WasCancelled);
  tally.TakeAnswer(message_style::okCancel, message_answer::cancel);
  EXPECT_TRUE(tally.WasCancelled);
}

TEST(ActionTally, TakesAStopSignForARefusalEvenIfTheBoxCouldNotBeShown) {
  ActionTally tally;
  tally.TakeAnswer(message_style::stopIcon, std::nullopt);
  EXPECT_TRUE(tally.WasRefused);
  EXPECT_FALSE(tally.WasCancelled);
}

}  // namespace
}  // namespace zolvane
