#include "config/item_lists.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

using Entries = std::vector<ListEntry>;

ListContent ContentOf(std::string_view text) {
  ConfigFixture fixture{text};
  return ReadListContent(fixture.Config.Settings, "T");
}

// ---- The entries ----

TEST(ReadListContent, ListsTheNamesWithTheirNumbers) {
  EXPECT_EQ(ContentOf("[T]\nItem1=\"8 CH\",a\nItem2=\"12 CH\",b\n").Entries,
            (Entries{{"8 CH", 1}, {"12 CH", 2}}));
}

TEST(ReadListContent, BridgesGapsUpToItemNine) {
  EXPECT_EQ(ContentOf("[T]\nItem0=\"A\"\nItem1=\"B\"\nItem5=\"C\"\n").Entries,
            (Entries{{"A", 0}, {"B", 1}, {"C", 5}}));
  EXPECT_EQ(ContentOf("[T]\nItem9=\"J\"\n").Entries, (Entries{{"J", 9}}));
}

TEST(ReadListContent, EndsAtTheFirstMissingItemBeyondNine) {
  EXPECT_EQ(ContentOf("[T]\nItem0=a\nItem1=b\nItem2=c\nItem3=d\nItem4=e\nItem5=f\nItem6=g\nItem7=h\nItem8=i\n"
                      "Item9=j\nItem11=l\nItem12=m\n")
                .Entries,
            (Entries{{"a", 0},
                     {"b", 1},
                     {"c", 2},
                     {"d", 3},
                     {"e", 4},
                     {"f", 5},
                     {"g", 6},
                     {"h", 7},
                     {"i", 8},
                     {"j", 9}}));
}

TEST(ReadListContent, GoesOnBeyondNineWhileItemsFollowEachOther) {
  EXPECT_EQ(ContentOf("[T]\nItem9=j\nItem10=k\nItem11=l\nItem13=n\n").Entries,
            (Entries{{"j", 9}, {"k", 10}, {"l", 11}}));
}

TEST(ReadListContent, DoesNotLookAtItemTenWhenItemNineIsMissing) {
  ConfigFixture fixture{"[T]\nItem8=i\nItem10=k\n"};
  EXPECT_EQ(ReadListContent(fixture.Config.Settings, "T").Entries, (Entries{{"i", 8}}));
  EXPECT_EQ(fixture.Calls.Count("read [T] Item9"), 1U);
  EXPECT_EQ(fixture.Calls.Count("read [T] Item10"), 0U);
}

TEST(ReadListContent, LeavesOutItemsWithoutAName) {
  EXPECT_EQ(ContentOf("[T]\nItem1=\"\",x\nItem2=,y\nItem3=\"C\"\n").Entries, (Entries{{"C", 3}}));
}

TEST(ReadListContent, GoesOnBeyondNineBehindAnItemWithoutAName) {
  EXPECT_EQ(ContentOf("[T]\nItem9=j\nItem10=\"\",x\nItem11=l\n").Entries, (Entries{{"j", 9}, {"l", 11}}));
}

TEST(ReadListContent, TakesANameUpToItsFirstComma) {
  EXPECT_EQ(ContentOf("[T]\nItem1=\"8, 12\",x\n").Entries, (Entries{{"8", 1}}));
}

TEST(ReadListContent, DropsEveryQuoteOfAName) {
  EXPECT_EQ(ContentOf("[T]\nItem1=\"a\"\"b\"\nItem2=c\n").Entries, (Entries{{"ab", 1}, {"c", 2}}));
}

TEST(ReadListContent, ListsEqualNamesEachWithItsNumber) {
  EXPECT_EQ(ContentOf("[T]\nItem1=\"A\"\nItem2=\"A\"\n").Entries, (Entries{{"A", 1}, {"A", 2}}));
}

TEST(ReadListContent, AMissingSectionGivesAnEmptyList) {
  const auto content = ContentOf("");
  EXPECT_EQ(content.Entries, Entries{});
  EXPECT_EQ(content.Preselected, std::nullopt);
}

TEST(ReadListContent, AlwaysProbesItemsZeroToNine) {
  ConfigFixture fixture;
  ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(fixture.Reads(),
            (Texts{"read [T] Default", "read [T] Installed", "read [T] Item0", "read [T] Item1",
                   "read [T] Item2", "read [T] Item3", "read [T] Item4", "read [T] Item5", "read [T] Item6",
                   "read [T] Item7", "read [T] Item8", "read [T] Item9"}));
}

TEST(ReadListContent, ProbesItemTenAfterItemNine) {
  ConfigFixture fixture{"[T]\nDefault=x\nItem9=j\n"};
  ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(fixture.Reads().back(), "read [T] Item10");
}

TEST(ReadListContent, EndsWhere16BitCountersEnd) {
  ConfigFixture fixture;
  const auto settings = fixture.WithoutEnd("n");
  const auto content = ReadListContent(fixture.Config.Settings, "T");
  ASSERT_EQ(content.Entries.size(), 32768U);
  EXPECT_EQ(content.Entries.back(), (ListEntry{"n", 32767}));
  EXPECT_EQ(settings->LastItem, "Item32767");
}

TEST(ReadListContent, ReadsTheConfigurationFileAndTheGivenSectionAlone) {
  ConfigFixture fixture{"[T]\nItem1=a\n[U]\nItem1=b\nItem2=c\n"};
  EXPECT_EQ(ReadListContent(fixture.Config.Settings, "U").Entries, (Entries{{"b", 1}, {"c", 2}}));
  fixture.Process.Folder = "/elsewhere";
  EXPECT_EQ(ReadListContent(fixture.Config.Settings, "U").Entries, Entries{});
}

TEST(ReadListContent, WritesNothing) {
  ConfigFixture fixture{"[T]\nDefault=x=\"a\"\nItem1=a\n"};
  ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(fixture.Writes(), Texts{});
}

// ---- The preselected entry ----

TEST(ReadListContent, PreselectsTheNameBehindTheEqualsSignOfDefault) {
  const auto content = ContentOf("[T]\nDefault=Item2=\"B\"\nInstalled=1\nItem0=A\nItem2=\"B\",x\nItem3=C\n");
  EXPECT_EQ(content.Preselected, 1U);
}

TEST(ReadListContent, TakesTheDefaultFromInstalledWhenDefaultIsMissingOrEmpty) {
  EXPECT_EQ(ContentOf("[T]\nInstalled=x=\"B\"\nItem1=A\nItem2=B\n").Preselected, 1U);
  EXPECT_EQ(ContentOf("[T]\nDefault=\nInstalled=x=\"B\"\nItem1=A\nItem2=B\n").Preselected, 1U);
}

TEST(ReadListContent, DoesNotAskForInstalledWhenThereIsADefault) {
  ConfigFixture fixture{"[T]\nDefault=5\nInstalled=x=\"A\"\nItem1=A\n"};
  EXPECT_EQ(ReadListContent(fixture.Config.Settings, "T").Preselected, std::nullopt);
  EXPECT_EQ(fixture.Calls.Count("read [T] Installed"), 0U);
}

TEST(ReadListContent, PreselectsNothingFromAPlainItemNumber) {
  EXPECT_EQ(ContentOf("[T]\nInstalled=2\nItem1=A\nItem2=B\nItem3=2\n").Preselected, std::nullopt);
  EXPECT_EQ(ContentOf("[T]\nDefault=B\nItem1=A\nItem2=B\n").Preselected, std::nullopt);
}

TEST(ReadListContent, TakesTheTextBetweenTheFirstAndTheSecondEqualsSign) {
  EXPECT_EQ(ContentOf("[T]\nDefault=x=\"B\"=\"A\"\nItem1=A\nItem2=B\n").Preselected, 1U);
  EXPECT_EQ(ContentOf("[T]\nDefault=A=\nItem1=A\n").Preselected, std::nullopt);
  EXPECT_EQ(ContentOf("[T]\nDefault==B\nItem1=A\nItem2=B\n").Preselected, 1U);
}

TEST(ReadListContent, PreselectsWithRegardToCaseAndBlanks) {
  EXPECT_EQ(ContentOf("[T]\nDefault=x=\"a\"\nItem1=A\n").Preselected, std::nullopt);
  EXPECT_EQ(ContentOf("[T]\nDefault=x=\"A \"\nItem1=A\n").Preselected, std::nullopt);
  EXPECT_EQ(ContentOf("[T]\nDefault=x=A\nItem1=\"A\"\n").Preselected, 0U);
}

TEST(ReadListContent, PreselectsTheLastOfEqualNames) {
  EXPECT_EQ(ContentOf("[T]\nDefault=x=\"A\"\nItem1=A\nItem2=B\nItem4=A\nItem5=C\n").Preselected, 2U);
}

TEST(ReadListContent, CountsThePreselectedEntryInTheListAndNotInTheSection) {
  EXPECT_EQ(ContentOf("[T]\nDefault=x=\"B\"\nItem1=\"\"\nItem7=B\n").Preselected, 0U);
}

// ---- Failing calls ----

TEST(ReadListContent, GoesOnWhenTheDefaultCannotBeRead) {
  ConfigFixture fixture{"[T]\nDefault=x=\"A\"\nInstalled=x=\"B\"\nItem1=A\nItem2=B\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [T] Default");
  const auto content = ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(content.Entries, (Entries{{"A", 1}, {"B", 2}}));
  EXPECT_EQ(content.Preselected, 1U);
}

TEST(ReadListContent, IsEmptyWhenNothingCanBeRead) {
  ConfigFixture fixture{"[T]\nItem1=A\n"};
  fixture.Calls.FailEverythingThatStartsWith("read");
  EXPECT_EQ(ReadListContent(fixture.Config.Settings, "T").Entries, Entries{});
}

TEST(ReadListContent, GoesOnBehindAnItemThatCannotBeRead) {
  ConfigFixture fixture{"[T]\nItem9=j\nItem10=k\nItem11=l\nItem12=m\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [T] Item11");
  const auto content = ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(content.Entries.back(), (ListEntry{"m", 12}));
}

TEST(ReadListContent, CutsOnlyTextsThatAreThere) {
  ConfigFixture fixture{"[T]\nItem3=c,d\n"};
  ReadListContent(fixture.Config.Settings, "T");
  EXPECT_EQ(fixture.Calls.Of({"split "}), Texts{"split \",\" of \"c,d\""});
}

TEST(ReadListContent, EndsAndListsTheOtherItemsWhicheverCallFails) {
  const std::string_view text = "[T]\nDefault=x=\"B\"\nItem1=A\nItem2=B\nItem3=C\n";
  ConfigFixture clean{text};
  ReadListContent(clean.Config.Settings, "T");
  for (std::size_t call = 2; call <= clean.Calls.CallCount; ++call) {
    ConfigFixture fixture{text};
    fixture.Calls.FailingCall = call;
    const auto content = ReadListContent(fixture.Config.Settings, "T");
    EXPECT_GE(content.Entries.size(), 2U) << "failing " << clean.Calls.Events[call - 1];
  }
}

// ---- The search by a field ----

constexpr std::string_view codes =
    "[T]\nItem0=\"Zero\",NULL\nItem1=\"A\",MICROTITER\nItem2=\"B\",SERIALDILUTE\nItem4=\"D\",PUMP\n";

std::int16_t Find(std::string_view text, std::size_t piece, std::string_view file = codes) {
  ConfigFixture fixture{file};
  return FindItemByField(fixture.Config.Settings, "T", text, piece);
}

TEST(FindItemByField, GivesTheNumberOfTheFirstItemWhosePieceEqualsTheText) {
  EXPECT_EQ(Find("MICROTITER", 1), 1);
  EXPECT_EQ(Find("SERIALDILUTE", 1), 2);
  EXPECT_EQ(Find("x", 0, "[T]\nItem1=y\nItem2=x\nItem3=x\n"), 2);
}

TEST(FindItemByField, ComparesThePieceOfTheIndexAlone) {
  EXPECT_EQ(Find("MICROTITER", 0), 0);
  EXPECT_EQ(Find("A", 0), 1);
  EXPECT_EQ(Find("A", 1), 0);
  EXPECT_EQ(Find("c", 2, "[T]\nItem1=c,c,b\nItem2=a,b,c\n"), 2);
}

TEST(FindItemByField, IgnoresCase) {
  EXPECT_EQ(Find("serialdilute", 1), 2);
  EXPECT_EQ(Find("SerialDilute", 1), 2);
  EXPECT_EQ(Find("GERÄT", 0, "[T]\nItem1=gerät\n"), 1);
}

TEST(FindItemByField, NeverExaminesItemZero) {
  EXPECT_EQ(Find("NULL", 1), 0);
  ConfigFixture fixture{codes};
  FindItemByField(fixture.Config.Settings, "T", "NULL", 1);
  EXPECT_EQ(fixture.Reads(), (Texts{"read [T] Item1", "read [T] Item2", "read [T] Item3"}));
}

TEST(FindItemByField, EndsAtTheFirstMissingItem) {
  EXPECT_EQ(Find("PUMP", 1), 0);
  EXPECT_EQ(Find("PUMP", 1, "[T]\nItem2=a,PUMP\n"), 0);
}

TEST(FindItemByField, EndsAtTheItemItFinds) {
  ConfigFixture fixture{codes};
  FindItemByField(fixture.Config.Settings, "T", "microtiter", 1);
  EXPECT_EQ(fixture.Reads(), Texts{"read [T] Item1"});
}

TEST(FindItemByField, DropsEveryQuoteOfTheLine) {
  EXPECT_EQ(Find("ZV400", 2, "[T]\nItem1=\"A\",1,\"ZV\"400\"\"\n"), 1);
}

TEST(FindItemByField, ComparesBlanksToTheLetter) {
  EXPECT_EQ(Find("8_CH", 1, "[T]\nItem1=a, 8_CH\n"), 0);
  EXPECT_EQ(Find(" 8_CH", 1, "[T]\nItem1=a, 8_CH\n"), 1);
}

TEST(FindItemByField, CannotMatchALineWithoutThePiece) {
  EXPECT_EQ(Find("", 2, "[T]\nItem1=a,b\nItem2=a,b,\n"), 0);
  EXPECT_EQ(Find("x", 2, "[T]\nItem1=a\nItem2=a,b,x\n"), 2);
}

TEST(FindItemByField, MatchesAnEmptyPieceWithAnEmptyText) {
  EXPECT_EQ(Find("", 1, "[T]\nItem1=a,b,c\nItem2=a,,c\n"), 2);
}

TEST(FindItemByField, FindsNothingInAMissingSection) {
  EXPECT_EQ(Find("MICROTITER", 1, ""), 0);
}

TEST(FindItemByField, ReadsTheConfigurationFile) {
  ConfigFixture fixture{codes};
  fixture.Process.Folder = "/elsewhere";
  EXPECT_EQ(FindItemByField(fixture.Config.Settings, "T", "MICROTITER", 1), 0);
}

TEST(FindItemByField, EndsWhere16BitCountersEnd) {
  ConfigFixture fixture;
  const auto settings = fixture.WithoutEnd("n");
  EXPECT_EQ(FindItemByField(fixture.Config.Settings, "T", "other", 0), 0);
  EXPECT_EQ(settings->LastItem, "Item32767");
}

TEST(FindItemByField, PassesALineOverThatCannotBeCut) {
  ConfigFixture fixture{"[T]\nItem1=a,x\nItem2=b,x\n"};
  fixture.Calls.FailEverythingThatStartsWith("split \",\" of \"a,x\"");
  EXPECT_EQ(FindItemByField(fixture.Config.Settings, "T", "x", 1), 2);
}

TEST(FindItemByField, GoesOnBehindAnItemThatCannotBeRead) {
  ConfigFixture fixture{"[T]\nItem1=a,x\nItem2=b,y\nItem3=c,z\n"};
  fixture.Calls.FailEverythingThatStartsWith("read [T] Item2");
  EXPECT_EQ(FindItemByField(fixture.Config.Settings, "T", "z", 1), 3);
}

TEST(FindItemByField, FindsNothingWhenNothingCanBeRead) {
  ConfigFixture fixture{codes};
  fixture.Calls.FailEverythingThatStartsWith("read");
  EXPECT_EQ(FindItemByField(fixture.Config.Settings, "T", "MICROTITER", 1), 0);
}

}  // namespace
}  // namespace zolvane
