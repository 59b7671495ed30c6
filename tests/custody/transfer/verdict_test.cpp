#include "custody/transfer/verdict.h"

#include <gtest/gtest.h>

#include "custody/support/transfer_room.h"

namespace zolvane {
namespace {

// One line, and the one value that the instrument held before and holds now.
Verdict VerdictOn(const std::string& found, const std::string& sent, const std::string& left) {
  const std::vector<SentLine> lines{{.Key = "KEY", .Text = sent, .Reply = "OK"}};
  return Judged(lines, ValuesOf({{"KEY", found}}), ValuesOf({{"KEY", left}})).front();
}

std::string CauseOfChange(const std::string& sent, const std::string& left) {
  const auto verdict = VerdictOn("7777", sent, left);
  return std::string{NameOf(verdict.Why)} + (verdict.Factor > 0 ? " " + std::to_string(verdict.Factor) : "");
}

Values Unknown(const std::string& key) {
  Values values;
  values.Add({.Name = key, .Text = std::nullopt});
  return values;
}

TEST(Verdict, TheSameNumberIsVerifiedInAnySpelling) {
  for (const auto* left : {"2.5", "2.500", "+2.5", "02.5"}) {
    EXPECT_EQ(VerdictOn("1", "2.5", left).Is, Proof::Verified) << left;
  }
  EXPECT_EQ(VerdictOn("1", "2.5", "2.49").Is, Proof::Differs);
}

TEST(Verdict, NamesWhatBecameOfANumber) {
  EXPECT_EQ(CauseOfChange("1612", "161"), "cut");
  EXPECT_EQ(CauseOfChange("1610", "161"), "cut");
  EXPECT_EQ(CauseOfChange("1612", "16"), "cut");
  EXPECT_EQ(CauseOfChange("5", ""), "cut");
  EXPECT_EQ(CauseOfChange("2.5", "3"), "rounded");
  EXPECT_EQ(CauseOfChange("2.5", "2"), "rounded");
  EXPECT_EQ(CauseOfChange("0.126", "0.13"), "rounded");
  EXPECT_EQ(CauseOfChange("1612", "-1612"), "sign");
  EXPECT_EQ(CauseOfChange("-2.5", "2.50"), "sign");
  EXPECT_EQ(CauseOfChange("16.12", "1612"), "factor 100");
  EXPECT_EQ(CauseOfChange("1612", "16.12"), "factor 100");
  EXPECT_EQ(CauseOfChange("7", "70"), "factor 10");
  EXPECT_EQ(CauseOfChange("7", "7000"), "factor 1000");
  EXPECT_EQ(CauseOfChange("1612", "806"), "limited");
  EXPECT_EQ(CauseOfChange("-40", "-33"), "limited");
  EXPECT_EQ(CauseOfChange("40", "41"), "other");
  EXPECT_EQ(CauseOfChange("text", "TEXT"), "other");
  EXPECT_EQ(CauseOfChange("text", "tex"), "cut");
}

TEST(Verdict, AValueThatHoldsWhatItHeldBeforeIsKeptOrRefused) {
  EXPECT_EQ(VerdictOn("7", "8", "7.0").Why, Cause::Kept);
  const std::vector<SentLine> refused{{.Key = "KEY", .Text = "8", .Reply = "SYNTAX_ERROR"}};
  EXPECT_EQ(Judged(refused, ValuesOf({{"KEY", "7"}}), ValuesOf({{"KEY", "7"}})).front().Why, Cause::Refused);
}

TEST(Verdict, AValueUnderTheKeyBeforeIsTheNeighboursOnBoth) {
  const std::vector<SentLine> lines{{.Key = "A", .Text = "1", .Reply = "OK"},
                                    {.Key = "B", .Text = "2", .Reply = "OK"},
                                    {.Key = "C", .Text = "3", .Reply = "OK"}};
  const auto verdicts = Judged(lines, ValuesOf({{"A", "7"}, {"B", "8"}, {"C", "9"}}),
                               ValuesOf({{"A", "2"}, {"B", "8"}, {"C", "3"}}));
  EXPECT_EQ(verdicts[0].Why, Cause::Neighbour);
  EXPECT_EQ(verdicts[1].Why, Cause::Neighbour);
  EXPECT_EQ(verdicts[2].Is, Proof::Verified);
}

TEST(Verdict, AValueUnderTheKeyBeforeIsTheNeighboursThoughItStoodInItsOwnPlaceBefore) {
  const std::vector<SentLine> lines{{.Key = "A", .Text = "1", .Reply = "OK"},
                                    {.Key = "B", .Text = "2", .Reply = "OK"}};
  const auto found = ValuesOf({{"A", "1"}, {"B", "2"}});
  EXPECT_EQ(Judged(lines, found, ValuesOf({{"A", "2"}, {"B", "2"}})).front().Why, Cause::Neighbour);
  EXPECT_NE(Judged(lines, found, ValuesOf({{"A", "3"}, {"B", "2"}})).front().Why, Cause::Neighbour);
}

TEST(Verdict, AKeyThatIsUnknownBeforeAndAfterIsUnreadable) {
  const std::vector<SentLine> lines{{.Key = "KEY", .Text = "8", .Reply = "OK"}};
  const auto verdict = Judged(lines, Unknown("KEY"), Unknown("KEY")).front();
  EXPECT_EQ(verdict.Is, Proof::Unreadable);
  EXPECT_EQ(verdict.Why, Cause::None);
}

TEST(Verdict, AKeyThatIsGoneDiffers) {
  const std::vector<SentLine> lines{{.Key = "KEY", .Text = "8", .Reply = "OK"}};
  const auto verdict = Judged(lines, ValuesOf({{"KEY", "7"}}), Unknown("KEY")).front();
  EXPECT_EQ(verdict.Is, Proof::Differs);
  EXPECT_EQ(verdict.Why, Cause::Other);
}

TEST(Verdict, WhatWasNotAskedIsUnknown) {
  const std::vector<SentLine> lines{{.Key = "KEY", .Text = "8", .Reply = "OK"}};
  EXPECT_EQ(Judged(lines, ValuesOf({{"KEY", "8"}}), Values{}).front().Is, Proof::Unknown);
}

TEST(Verdict, OfSeveralLinesWithOneKeyTheLastCounts) {
  const std::vector<SentLine> lines{{.Key = "A", .Text = "1", .Reply = "OK"},
                                    {.Key = "B", .Text = "2", .Reply = "OK"},
                                    {.Key = "A", .Text = "3", .Reply = "OK"}};
  const auto verdicts = Judged(lines, Values{}, ValuesOf({{"A", "3"}, {"B", "2"}}));
  ASSERT_EQ(verdicts.size(), 2U);
  EXPECT_EQ(verdicts[0].Sent, "3");
  EXPECT_EQ(verdicts[0].Is, Proof::Verified);
}

TEST(Verdict, AReplyThatIsNoneToASettingAnswersNothing) {
  const auto isAnswered = [](std::optional<std::string> reply) {
    return SentLine{.Key = "A", .Text = "1", .Reply = std::move(reply)}.IsAnswered();
  };
  for (const auto* reply : {"OK", "OK\r\n", "SYNTAX_ERROR", "out of range"}) {
    EXPECT_TRUE(isAnswered(reply)) << reply;
  }
  for (const auto* reply : {"", "\r\n", "A=1", "STAGE1_X=1612", "\xFF\xFE", "O\x01K"}) {
    EXPECT_FALSE(isAnswered(reply)) << reply;
  }
  EXPECT_FALSE(isAnswered(std::nullopt));
}

TEST(Verdict, DamageIsToldFromAValueThatSomebodySet) {
  for (const auto* left : {"161", "-1612", "161200", "806"}) {
    EXPECT_TRUE(CouldBeDamage("1612", left)) << left;
  }
  for (const auto* left : {"1613", "1600", "777", "0", "9999"}) {
    EXPECT_FALSE(CouldBeDamage("1612", left)) << left;
  }
}

}  // namespace
}  // namespace zolvane
