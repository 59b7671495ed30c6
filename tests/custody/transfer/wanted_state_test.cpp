#include "custody/transfer/wanted_state.h"

#include <gtest/gtest.h>

#include <array>

#include "custody/support/transfer_room.h"

namespace zolvane {
namespace {

// What an upload found, was to send, and where it is now.
const Settings found{{"A", "1"}, {"B", "2.0"}, {"C", "3"}, {"D", "4"}};
const Settings intended{{"A", "10"}, {"B", "2"}, {"C", "30"}, {"D", "40"}};

Values Without(Values values, const std::string& key) {
  values.Add({.Name = key, .Text = std::nullopt});
  return values;
}

// "A to do, B as wanted".
std::string Standings(const std::vector<Step>& plan) {
  constexpr std::array<std::string_view, 4> names{"as wanted", "to do", "changed", "cannot be removed"};
  std::string text;
  for (const auto& step : plan) {
    text.append(text.empty() ? "" : ", ").append(step.Of.Name).append(" ");
    text.append(names.at(static_cast<std::size_t>(step.Is)));
  }
  return text;
}

std::vector<Step> UndoOf(const Values& before, const Values& sent, const Values* left,
                         const Values& present) {
  return PlanFor(WishesFor(before, {.Found = &before, .Intended = &sent, .Left = left}), present,
                 Spelling::GoesBack);
}

std::vector<Step> ResumeOf(const Values& before, const Values& sent, const Values& present) {
  return PlanFor(WishesFor(sent, {.Found = &before, .Intended = &sent}), present, Spelling::Stays);
}

TEST(WantedState, UndoTakesBackWhatWasLeftAndNothingElse) {
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  EXPECT_EQ(Standings(UndoOf(before, sent, &sent, sent)), "A to do, B to do, C to do, D to do");
  EXPECT_EQ(
      Standings(UndoOf(before, sent, &sent, ValuesOf({{"A", "10"}, {"B", "2.00"}, {"C", "3"}, {"D", "7"}}))),
      "A to do, B as wanted, C as wanted, D changed");
}

TEST(WantedState, AfterACutWhatWasFoundOrSentOrDamagedIsExpected) {
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  EXPECT_EQ(Standings(UndoOf(before, sent, nullptr,
                             ValuesOf({{"A", "2"}, {"B", "2.0"}, {"C", "-30"}, {"D", "777"}}))),
            "A to do, B as wanted, C to do, D changed")
      << "A holds what belongs to B";
}

TEST(WantedState, WhatWasLeftUnansweredIsExpectedAsAfterACut) {
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  auto left = ValuesOf({{"A", "10"}});
  left.Add({.Name = "C", .Text = std::nullopt, .WasAnswered = false});
  EXPECT_EQ(
      Standings(UndoOf(before, sent, &left, ValuesOf({{"A", "5"}, {"B", "2"}, {"C", "15"}, {"D", "4"}}))),
      "A changed, B to do, C to do, D as wanted");
}

// A restart may have taken back what was left; nothing else can have become of it by itself.
TEST(WantedState, WhatWasLeftButNotSavedIsExpectedOrWhatWasFound) {
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  const auto left = ValuesOf({{"A", "1"}, {"B", "2"}, {"C", "77"}, {"D", "40"}});
  const auto wishes =
      WishesFor(before, {.Found = &before, .Intended = &sent, .Left = &left, .IsLeftCertain = false});
  const auto present = ValuesOf({{"A", "10"}, {"B", "2.0"}, {"C", "3"}, {"D", "-40"}});
  EXPECT_EQ(Standings(PlanFor(wishes, present, Spelling::GoesBack)),
            "A changed, B as wanted, C as wanted, D changed");
  EXPECT_EQ(Standings(PlanFor(wishes, left, Spelling::GoesBack)), "A as wanted, B to do, C to do, D to do");
}

TEST(WantedState, ResumeSendsWhatIsMissingAlone) {
  EXPECT_EQ(Standings(ResumeOf(ValuesOf(found), ValuesOf(intended),
                               ValuesOf({{"A", "10.0"}, {"B", "2.0"}, {"C", "3"}, {"D", "5"}}))),
            "A as wanted, B as wanted, C to do, D changed");
}

TEST(WantedState, AKeyThatWasUnknownBeforeCannotBeRemoved) {
  const auto before = Without(ValuesOf(found), "A");
  const auto sent = ValuesOf(intended);
  EXPECT_EQ(Standings(UndoOf(before, sent, &sent, sent)), "A cannot be removed, B to do, C to do, D to do");
  EXPECT_EQ(Standings(UndoOf(before, sent, &sent, Without(sent, "A"))),
            "A as wanted, B to do, C to do, D to do");
}

TEST(WantedState, WhereNothingIsExpectedAnythingGoes) {
  EXPECT_EQ(Standings(PlanFor(WishesFor(ValuesOf({{"A", "1"}, {"B", "2"}}), {}),
                              Without(ValuesOf({{"A", "777"}}), "B"), Spelling::Stays)),
            "A to do, B to do");
}

TEST(WantedState, WhatDidNotAnswerIsNotTouched) {
  Values present;
  present.Add({.Name = "A", .Text = std::nullopt, .WasAnswered = false});
  EXPECT_EQ(Standings(PlanFor(WishesFor(ValuesOf({{"A", "1"}}), {}), present, Spelling::Stays)), "A changed");
}

TEST(WantedState, BringingSendsProvesAndSaves) {
  const auto instrument = InstrumentWith(intended);
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  const auto plan = UndoOf(before, sent, &sent, sent);
  ProvingLink link{instrument, {.Found = sent, .Arrived = ArrivedOf(plan)}, noInterrupt};
  EXPECT_TRUE(Bring(link, plan, Ending::Save));
  EXPECT_TRUE(link.Tally().IsSaved);
  for (const auto& [key, text] : found) {
    EXPECT_EQ(HeldBy(*instrument, key), text);
  }
}

TEST(WantedState, BringingWithoutSaveIsProvenAllTheSame) {
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  const auto plan = UndoOf(before, sent, &sent, sent);
  for (const bool isFaulty : {false, true}) {
    ProvingLink link{InstrumentWith(intended, isFaulty ? FaultPlan{"drop@C"} : FaultPlan{}),
                     {.Found = sent, .Arrived = ArrivedOf(plan)},
                     noInterrupt};
    EXPECT_EQ(Bring(link, plan, Ending::Prove), !isFaulty);
    EXPECT_FALSE(link.Tally().SaveWasSent);
  }
}

TEST(WantedState, AValueThatWasThereAndIsLostMeanwhileHoldsSaveBack) {
  const auto instrument = InstrumentWith(found, {"power@8"});
  const auto before = ValuesOf(found);
  const auto sent = ValuesOf(intended);
  Upload(*instrument, intended, 3);  // three lines
  const auto names = NamesOf(sent);
  const auto present = WireFaceOfInstrument(*instrument, names);  // four more
  const auto plan = ResumeOf(before, sent, present);
  EXPECT_EQ(Standings(plan), "A as wanted, B as wanted, C as wanted, D to do");
  ProvingLink link{instrument, {.Found = before, .Arrived = ArrivedOf(plan)}, noInterrupt};
  EXPECT_FALSE(Bring(link, plan, Ending::Save));
  EXPECT_FALSE(link.Tally().SaveWasSent);
}

// ---- Files ----

TEST(WantedState, AFileGoesBackAsAWholeIfItIsAsExpected) {
  const Wish wish{.Name = "Zolvane.ini", .Wanted = "2.5", .Expected = {"7", std::nullopt}};
  EXPECT_EQ(PlanForFile(wish, "2.5").Is, Standing::AsWanted);
  EXPECT_EQ(PlanForFile(wish, "7").Is, Standing::ToDo);
  EXPECT_EQ(PlanForFile(wish, std::nullopt).Is, Standing::ToDo);
  EXPECT_EQ(PlanForFile(wish, "2.50").Is, Standing::Changed) << "bytes are bytes";
}

TEST(WantedState, InAFileThatSomebodyElseChangedValuesGoBackOneByOne) {
  const std::string before = "[Height]\r\nA=1\r\nB=2\r\nC=3\r\n; kept\r\n";
  const std::string after = "[Height]\r\nA=10\r\nB=20\r\nC=3\r\n; kept\r\nNew=1\r\n";
  const std::string now = "[Height]\r\nA=10\r\nB=777\r\nC=33\r\n; kept\r\nNew=1\r\n; my own\r\n";
  const auto plan = PlanInFile(before, after, now);
  EXPECT_EQ(Standings(plan), "[Height] A to do, [Height] B changed, [Height] New cannot be removed");
  EXPECT_EQ(Brought(now, plan), "[Height]\r\nA=1\r\nB=777\r\nC=33\r\n; kept\r\nNew=1\r\n; my own\r\n");
}

TEST(WantedState, OfALineThePieceAloneGoesBack) {
  const std::string before = "[HeadType]\r\nItem1=\"A\",\"B\",1,2,3\r\n";
  const std::string after = "[HeadType]\r\nItem1=\"A\",\"B\",1,20,3\r\n";
  const std::string now = "[HeadType]\r\nItem1=\"A\",\"B\",1,20,33\r\n";
  EXPECT_EQ(Brought(now, PlanInFile(before, after, now)), "[HeadType]\r\nItem1=\"A\",\"B\",1,2,33\r\n");
}

}  // namespace
}  // namespace zolvane
