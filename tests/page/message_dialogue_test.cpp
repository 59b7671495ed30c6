#include "page/message_dialogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

struct MessageFixture : FakeHost {
  std::int16_t Show(const std::string& message, std::int16_t style = 0, const std::string& title = "Title",
                    std::int16_t extraStyle = 0) {
    return ShowMessage(Process, Object.get(), message, style, title, Object.get(), extraStyle);
  }
};

constexpr auto logged = "log ******* Message dialogue : Title [Text]";

std::string LoggedAnswer(int answer) {
  return "log ******* Message dialogue : button selected : " + std::to_string(answer);
}

// ---- The system message box ----

TEST(MessageDialogue, IsLoggedBeforeAndAfterItIsShownInAMessageBox) {
  MessageFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel};
  EXPECT_EQ(fixture.Show("Text"), 2);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{logged, "dialogue available?", "box 65584 \"Title\" \"Text\"", LoggedAnswer(2)}));
}

TEST(MessageDialogue, ShowsLineBreaksInTheBoxAndCommasInTheLog) {
  MessageFixture fixture;
  fixture.Show("A\r\n\r\nB\r\nC");
  EXPECT_EQ(fixture.Calls.Events.front(), "log ******* Message dialogue : Title [A, , B, C]");
  EXPECT_EQ(fixture.Process.Boxes.front().Text, "A\r\n\r\nB\r\nC");
}

TEST(MessageDialogue, KeepsLoneCarriageReturnsAndLineFeedsInTheLog) {
  MessageFixture fixture;
  fixture.Show("A\rB\nC\n\rD");
  EXPECT_EQ(fixture.Calls.Events.front(), "log ******* Message dialogue : Title [A\rB\nC\n\rD]");
}

TEST(MessageDialogue, AddsTheIconAndTheForegroundToAnyStyle) {
  MessageFixture fixture;
  fixture.Show("Text", 1);
  fixture.Show("Text", 3, "Title", 4);
  fixture.Show("Text", 16);
  fixture.Show("Text", 48, "Title", 256);
  std::vector<std::int32_t> styles;
  for (const auto& box : fixture.Process.Boxes) {
    styles.push_back(box.Style);
  }
  EXPECT_EQ(styles, (std::vector<std::int32_t>{65585, 65591, 65600, 65888}));
}

TEST(MessageDialogue, ShowsABoxWhenTheHostCannotTellWhetherItHasADialogue) {
  MessageFixture fixture;
  fixture.Object->OffersDialog = true;
  fixture.Calls.FailEverythingThatStartsWith("dialogue available?");
  EXPECT_EQ(fixture.Show("Text"), 1);
  EXPECT_EQ(fixture.Process.Boxes.size(), 1U);
}

TEST(MessageDialogue, ShowsABoxWithoutAnyHost) {
  MessageFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::no};
  EXPECT_EQ(ShowMessage(fixture.Process, nullptr, "Text", 0, "Title", nullptr, 0), 7);
  EXPECT_EQ(fixture.Calls.Events, Texts{"box 65584 \"Title\" \"Text\""});
}

TEST(MessageDialogue, IsLoggedByOneHostAndShownByTheOther) {
  MessageFixture fixture;
  FakeHost other;
  other.Object->OffersDialog = true;
  other.Object->Dialog->Results = {5};
  EXPECT_EQ(ShowMessage(fixture.Process, fixture.Object.get(), "Text", 0, "Title", other.Object.get(), 0), 5);
  EXPECT_EQ(fixture.Calls.Events, (Texts{logged, "yield", LoggedAnswer(5)}));
  EXPECT_EQ(other.Calls.Of({"log"}), Texts{});
  EXPECT_EQ(other.Calls.Of({"dialogue show"}).size(), 1U);
}

TEST(MessageDialogue, IsShownAndAnsweredAlsoWhenItCannotBeLogged) {
  MessageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("log");
  EXPECT_EQ(fixture.Show("Text"), 1);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{logged, "dialogue available?", "box 65584 \"Title\" \"Text\"", LoggedAnswer(1)}));
}

TEST(MessageDialogue, AnswersZeroWhenTheBoxCannotBeShown) {
  MessageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("box");
  EXPECT_EQ(fixture.Show("Text"), 0);
  EXPECT_EQ(fixture.Calls.Events.back(), LoggedAnswer(0));
}

// ---- The host's dialogue ----

struct HostDialogueFixture : MessageFixture {
  HostDialogueFixture() { Object->OffersDialog = true; }
  std::deque<std::int16_t>& Results() { return Object->Dialog->Results; }
};

TEST(HostMessageDialogue, IsSetUpShownAndPolledUntilItIsClosed) {
  HostDialogueFixture fixture;
  fixture.Results() = {-1, -1, 2};
  EXPECT_EQ(fixture.Show("A\r\nB", 3), 2);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"log ******* Message dialogue : Title [A, B]", "dialogue available?", "get dialogue",
                   "dialogue style 3", "dialogue title Title", "dialogue message A\r\nB",
                   "dialogue show true", "yield", "dialogue result?", "yield", "dialogue result?", "yield",
                   "dialogue result?", "dialogue result?", LoggedAnswer(2)}));
}

TEST(HostMessageDialogue, RunsTheMessageLoopOnceAlsoWhenItIsClosedAtOnce) {
  HostDialogueFixture fixture;
  fixture.Results() = {0};
  EXPECT_EQ(fixture.Show("Text"), 0);
  EXPECT_EQ(fixture.Calls.Of({"yield", "dialogue result?"}),
            (Texts{"yield", "dialogue result?", "dialogue result?"}));
}

TEST(HostMessageDialogue, TakesTheResultThatIsReadOnceMoreForTheAnswer) {
  HostDialogueFixture fixture;
  fixture.Results() = {-1, 1, 6};
  EXPECT_EQ(fixture.Show("Text"), 6);
}

TEST(HostMessageDialogue, GetsTheStyleUnchanged) {
  HostDialogueFixture fixture;
  fixture.Show("Text", 16, "Title", 256);
  EXPECT_EQ(fixture.Calls.Of({"dialogue style"}), Texts{"dialogue style 16"});
  EXPECT_TRUE(fixture.Process.Boxes.empty());
}

TEST(HostMessageDialogue, EndsTheWaitWhenTheResultCannotBeReadAndAnswersZero) {
  HostDialogueFixture fixture;
  fixture.Results() = {-1};
  fixture.Calls.FailEverythingThatStartsWith("dialogue result?");
  EXPECT_EQ(fixture.Show("Text"), 0);
  EXPECT_EQ(fixture.Calls.Of({"yield", "dialogue result?"}),
            (Texts{"yield", "dialogue result?", "dialogue result?"}));
}

TEST(HostMessageDialogue, AnswersWhatWasReadLastWhenTheLaterReadingsFail) {
  HostDialogueFixture fixture;
  fixture.Results() = {-1, -2, 5};
  int readings = 0;
  fixture.Calls.FailsIf = [&](auto event) { return event == "dialogue result?" && ++readings > 2; };
  EXPECT_EQ(fixture.Show("Text"), -2);
  EXPECT_EQ(readings, 4);

  HostDialogueFixture closed;
  closed.Results() = {-1, 5};
  int closedReadings = 0;
  closed.Calls.FailsIf = [&](auto event) { return event == "dialogue result?" && ++closedReadings == 3; };
  EXPECT_EQ(closed.Show("Text"), 5);
}

TEST(HostMessageDialogue, IsUsedFurtherWhateverOfItsSettingUpFails) {
  for (const auto* failing : {"dialogue style", "dialogue title", "dialogue message", "dialogue show"}) {
    HostDialogueFixture fixture;
    fixture.Results() = {-1, 2};
    fixture.Calls.FailEverythingThatStartsWith(failing);
    EXPECT_EQ(fixture.Show("Text"), 2) << failing;
    EXPECT_EQ(
        fixture.Calls.Of({"dialogue s", "dialogue t", "dialogue m"}),
        (Texts{"dialogue style 0", "dialogue title Title", "dialogue message Text", "dialogue show true"}));
  }
}

TEST(HostMessageDialogue, ADialogueThatTheHostDoesNotGiveIsNotReplacedByABox) {
  HostDialogueFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("get dialogue");
  EXPECT_EQ(fixture.Show("Text"), 0);
  EXPECT_TRUE(fixture.Process.Boxes.empty());
  EXPECT_EQ(fixture.Calls.Events.back(), LoggedAnswer(0));
}

TEST(HostMessageDialogue, ADialogueThatTheHostDoesNotGiveLetsTheMessageLoopRunOnce) {
  // Setting it up and reading its result fail one by one; running the message loop in between does not.
  HostDialogueFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("get dialogue");
  fixture.Show("Text");
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{logged, "dialogue available?", "get dialogue", "yield", LoggedAnswer(0)}));
}

TEST(HostMessageDialogue, IsReleasedBeforeTheAnswerIsLogged) {
  HostDialogueFixture fixture;
  const std::weak_ptr<FakeDialog> dialogue = fixture.Object->Dialog;
  bool isGone = false;
  // The host gives its only reference away.
  fixture.Process.WhileYielding = [&] { fixture.Object->Dialog.reset(); };
  fixture.Calls.FailsIf = [&](auto event) {
    isGone = isGone || (event.find("button selected") != event.npos && dialogue.expired());
    return false;
  };
  fixture.Show("Text");
  EXPECT_TRUE(isGone);
}

}  // namespace
}  // namespace zolvane
