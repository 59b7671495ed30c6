#include "bench/job/box_answers.h"

#include <gtest/gtest.h>

#include "host/dialogues.h"

namespace zolvane {
namespace {

using Buttons = std::vector<std::int32_t>;

// A user who types prepared lines and then goes away.
class ScriptedUser final : public Questioner {
 public:
  explicit ScriptedUser(std::vector<std::string> lines) : lines_{std::move(lines)} {}

  std::vector<std::string> Asked;

  std::optional<std::string> Ask(std::string_view text) override {
    Asked.emplace_back(text);
    if (Asked.size() > lines_.size()) {
      return std::nullopt;
    }
    return lines_[Asked.size() - 1];
  }

 private:
  std::vector<std::string> lines_;
};

Question Box(std::int32_t style) {
  return {.Title = "Title", .Text = "First\r\n\r\nSecond", .Style = style};
}

const Question okBox = Box(message_style::okOnly + message_style::informationIcon);
const Question okCancelBox = Box(message_style::okCancel + message_style::exclamationIcon);
const Question yesNoCancelBox = Box(message_style::yesNoCancel);
const Question yesNoBox = Box(4);

// A desk that notes what it complains of.
struct Desk {
  Desk(const Buttons& listed, bool affirmsRest, Questioner* terminal)
      : Answers{{.Listed = listed, .AffirmsRest = affirmsRest}, terminal, [this](const std::string& text) {
                  Complaints.push_back(text);
                }} {}

  std::vector<std::string> Complaints;
  BoxAnswers Answers;

  std::int32_t To(const Question& question) { return Answers.AnswerTo(question).Button; }
};

TEST(Buttons, FollowFromTheStyleWhateverItsIcon) {
  EXPECT_EQ(ButtonsOf(0), (Buttons{1}));
  EXPECT_EQ(ButtonsOf(65584), (Buttons{1}));
  EXPECT_EQ(ButtonsOf(49), (Buttons{1, 2}));
  EXPECT_EQ(ButtonsOf(51), (Buttons{6, 7, 2}));
  EXPECT_EQ(ButtonsOf(4), (Buttons{6, 7}));
  EXPECT_EQ(ButtonsOf(5), (Buttons{1}));
}

TEST(Answers, ABoxWithOneButtonIsAnsweredWithItAndUsesNoAnswerUp) {
  Desk desk{{2, 1}, false, nullptr};
  EXPECT_EQ(desk.To(okBox), 1);
  EXPECT_EQ(desk.Answers.AnswerTo(okBox).By, AnsweredBy::OnlyButton);
  EXPECT_EQ(desk.To(okCancelBox), 2);
  EXPECT_EQ(desk.To(okBox), 1);
  EXPECT_EQ(desk.To(okCancelBox), 1);
  EXPECT_TRUE(desk.Complaints.empty());
}

TEST(Answers, TheListComesBeforeTheAffirmation) {
  Desk desk{{7}, true, nullptr};
  EXPECT_EQ(desk.To(yesNoCancelBox), 7);
  EXPECT_EQ(desk.To(yesNoCancelBox), 6);
  EXPECT_EQ(desk.To(okCancelBox), 1);
  EXPECT_EQ(desk.To(yesNoBox), 6);
}

TEST(Answers, AnAnswerThatDoesNotFitIsUsedUpAndToldOf) {
  Desk desk{{6, 2}, false, nullptr};
  EXPECT_EQ(desk.To(okCancelBox), 2);
  EXPECT_EQ(desk.Complaints, (std::vector<std::string>{"--answer: the box \"Title\" has no button Yes"}));
  EXPECT_EQ(desk.Answers.AnswerTo(okCancelBox).By, AnsweredBy::List);
  EXPECT_EQ(desk.Complaints.size(), 1U);
}

TEST(Answers, AnAnswerThatDoesNotFitIsFollowedByWhoeverIsNext) {
  ScriptedUser user{{"ok"}};
  Desk desk{{7}, false, &user};
  EXPECT_EQ(desk.To(okCancelBox), 1);
  EXPECT_EQ(desk.Answers.AnswerTo(yesNoCancelBox).By, AnsweredBy::Caution);
}

TEST(Answers, NobodyThereMeansTheCautiousButton) {
  Desk desk{{}, false, nullptr};
  EXPECT_EQ(desk.To(okCancelBox), 2);
  EXPECT_EQ(desk.To(yesNoCancelBox), 2);
  EXPECT_EQ(desk.To(yesNoBox), 7);
  EXPECT_EQ(desk.Answers.AnswerTo(okCancelBox).By, AnsweredBy::Caution);
}

TEST(Answers, TheUserIsShownTitleTextAndChoices) {
  ScriptedUser user{{"no"}};
  Desk desk{{}, false, &user};
  EXPECT_EQ(desk.To(yesNoCancelBox), 7);
  EXPECT_EQ(user.Asked, (std::vector<std::string>{"\nTitle\n  First\n\n  Second\nYes / No / Cancel? "}));
}

TEST(Answers, TheUserMayAbbreviateAndIsAskedAgainForAnythingElse) {
  ScriptedUser user{{"", "ok", "maybe", "yesno", " C\t\r"}};
  Desk desk{{}, false, &user};
  EXPECT_EQ(desk.To(yesNoCancelBox), 2);
  EXPECT_EQ(user.Asked.size(), 5U);
  EXPECT_EQ(user.Asked[4], "Yes / No / Cancel? ");
}

TEST(Answers, AUserWhoLeavesMeansTheCautiousButton) {
  ScriptedUser user{{"what?"}};
  Desk desk{{}, false, &user};
  EXPECT_EQ(desk.To(okCancelBox), 2);
}

TEST(Answers, TextsCannotSteerTheTerminal) {
  ScriptedUser user{{"ok"}};
  Desk desk{{}, false, &user};
  desk.To({.Title = "\x1b[2J", .Text = "a\tb\x07\rc", .Style = 1});
  EXPECT_EQ(user.Asked[0], "\n\\u001b[2J\n  a\\u0009b\\u0007\\u000dc\nOK / Cancel? ");
}

}  // namespace
}  // namespace zolvane
