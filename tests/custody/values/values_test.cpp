#include "custody/values/values.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zolvane {
namespace {

Value Holding(std::string name, std::string text) {
  return {.Name = std::move(name), .Text = std::move(text)};
}

Value UnknownNamed(std::string name) {
  return {.Name = std::move(name), .Text = {}};
}

Value Unanswered(std::string name) {
  return {.Name = std::move(name), .Text = {}, .WasAnswered = false};
}

Values Of(std::initializer_list<Value> list) {
  Values values;
  for (const auto& value : list) {
    values.Add(value);
  }
  return values;
}

TEST(SameText, TakesPlainDecimalNumbersOfOneValueForTheSame) {
  for (const auto& [left, right] :
       {std::pair{"2.5", "2.50"},
        {"2.5", "+2.5"},
        {"0", "-0"},
        {"0", "-0.00"},
        {"007", "7"},
        {".5", "0.5"},
        {"5.", "5"},
        {"-12.5", "-12.500"},
        {"100000000000000000000000000000001.0", "100000000000000000000000000000001"}}) {
    EXPECT_TRUE(SameText(left, right)) << left << " and " << right;
    EXPECT_TRUE(SameText(right, left)) << right << " and " << left;
  }
}

TEST(SameText, HasNoTolerance) {
  for (const auto& [left, right] :
       {std::pair{"2.5", "2.51"},
        {"1", "-1"},
        {"10", "1"},
        {"0.1", "0.10000000000000001"},
        {"100000000000000000000000000000001", "100000000000000000000000000000002"}}) {
    EXPECT_FALSE(SameText(left, right)) << left << " and " << right;
  }
}

TEST(SameText, ComparesTheBytesOfEverythingElse) {
  for (const auto& [left, right] : {std::pair{"1e1", "10"},
                                    {" 1", "1"},
                                    {"1,5", "1.5"},
                                    {"", "0"},
                                    {".", "0"},
                                    {"+", "-"},
                                    {"--1", "1"},
                                    {"0x1", "1"},
                                    {"1.2.3", "1.23"},
                                    {"abc", "ABC"}}) {
    EXPECT_FALSE(SameText(left, right)) << left << " and " << right;
  }
  EXPECT_TRUE(SameText("\"8_CH\"", "\"8_CH\""));
  EXPECT_TRUE(SameText("", ""));
}

TEST(Values, TheLastOfOneNameCountsAndTheEarlierOnesAreOverridden) {
  const auto values = Of({Holding("A", "1"), Holding("B", "2"), Holding("A", "3"), Holding("A", "4")});
  EXPECT_EQ(values.InOrder(), (std::vector<Value>{Holding("A", "4"), Holding("B", "2")}));
  EXPECT_EQ(values.Overridden(), (std::vector<Value>{Holding("A", "1"), Holding("A", "3")}));
}

TEST(Values, NamesOfTheInstrumentDifferInCase) {
  EXPECT_EQ(Of({Holding("PickUp_1ChShort_Z", "1"), Holding("PickUp_1CHSHORT_Z", "2")}).InOrder().size(), 2U);
  Values ofFile{NameCase::Ignored};
  ofFile.Add(Holding("[HeadType] Installed", "1"));
  ASSERT_NE(ofFile.Find("[HEADTYPE] installed"), nullptr);
}

TEST(Setting, IsTheKeyUpToTheFirstBlankAndTheRest) {
  EXPECT_EQ(SettingIn("SET_CALIBRATION STAGE1_X 400"), Holding("STAGE1_X", "400"));
  EXPECT_EQ(SettingIn("SET_CALIBRATION VOL 8 100000"), Holding("VOL", "8 100000"));
  for (const auto* line :
       {"SET_CALIBRATION SAVE", "GET_CALIBRATION STAGE1_X", "SET_CALIBRATION ", "", "SET_CALIBRATION  5"}) {
    EXPECT_EQ(SettingIn(line), std::nullopt) << line;
  }
}

TEST(Comparison, NamesEachKindOfDifferenceWithBothTexts) {
  const auto comparison = Compare(Of({Holding("Same", "2.5"), Holding("Other", "1"), Holding("A", "1"),
                                      UnknownNamed("Neither"), UnknownNamed("B"), Unanswered("Silent")}),
                                  Of({Holding("Same", "2.50"), Holding("Other", "2"), UnknownNamed("A"),
                                      Holding("B", "3"), Holding("Silent", "4"), Holding("New", "5")}));
  ASSERT_EQ(comparison.Differences.size(), 5U);
  const auto expect = [&](std::size_t index, const char* name, DifferenceKind kind, const char* a,
                          const char* b) {
    const auto& difference = comparison.Differences[index];
    EXPECT_EQ(difference.Name, name);
    EXPECT_EQ(difference.Kind, kind) << name;
    EXPECT_EQ(difference.A.value_or("(none)"), a) << name;
    EXPECT_EQ(difference.B.value_or("(none)"), b) << name;
  };
  expect(0, "Other", DifferenceKind::Different, "1", "2");
  expect(1, "A", DifferenceKind::OnlyInA, "1", "(none)");
  expect(2, "B", DifferenceKind::OnlyInB, "(none)", "3");
  expect(3, "Silent", DifferenceKind::NotAnswered, "(none)", "4");
  expect(4, "New", DifferenceKind::OnlyInB, "(none)", "5");
  EXPECT_EQ(comparison.Same, 2U);
}

TEST(Comparison, CountsAddUpToTheNamesOfBothSides) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    std::mt19937 random{seed};
    std::array<Values, 2> sides;
    std::set<std::string> names;
    for (auto& side : sides) {
      for (auto count = random() % 30; count > 0; --count) {
        const auto name = "K" + std::to_string(random() % 20);
        names.insert(name);
        const auto text = std::to_string(random() % 3);
        side.Add(random() % 4 == 0   ? UnknownNamed(name)
                 : random() % 4 == 0 ? Unanswered(name)
                                     : Holding(name, text));
      }
    }
    const auto compared = Compare(sides[0], sides[1]);
    const auto differing = compared.Different + compared.OnlyInA + compared.OnlyInB + compared.NotAnswered;
    EXPECT_EQ(compared.Same + differing, names.size()) << "seed " << seed;
    EXPECT_EQ(compared.Differences.size(), differing) << "seed " << seed;
  }
}

}  // namespace
}  // namespace zolvane
