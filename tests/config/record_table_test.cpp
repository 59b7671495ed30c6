#include "config/record_table.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

std::string LineOf(const Texts& fields) {
  ConfigFixture fixture;
  EXPECT_TRUE(WriteFieldList(fixture.Config.Settings, "S", "K", fields, backup).Ok());
  EXPECT_EQ(fixture.Writes().size(), 1U);
  return fixture.Settings.Value("S", "K", backup).value_or("nothing written");
}

TEST(WriteFieldList, JoinsTheFieldsWithCommasAndNothingElse) {
  EXPECT_EQ(LineOf({"\"A b\"", "0", "-1.5"}), "\"A b\",0,-1.5");
  EXPECT_EQ(LineOf({"A"}), "A");
  EXPECT_EQ(LineOf({" a ", " b "}), " a , b ");
}

TEST(WriteFieldList, DropsTrailingEmptyFieldsWithTheirSeparators) {
  EXPECT_EQ(LineOf({"A", "b", "", "", ""}), "A,b");
  EXPECT_EQ(LineOf({"A", ""}), "A");
}

TEST(WriteFieldList, KeepsTheCommasOfEmptyFieldsInsideTheLine) {
  EXPECT_EQ(LineOf({"A", "", "", "d", ""}), "A,,,d");
  EXPECT_EQ(LineOf({"", "", "c"}), ",,c");
}

TEST(WriteFieldList, TrimsEmptyTextsOnly) {
  EXPECT_EQ(LineOf({"A", "0", "0"}), "A,0,0");
  EXPECT_EQ(LineOf({"A", "\"\""}), "A,\"\"");
  EXPECT_EQ(LineOf({"A", " "}), "A, ");
}

TEST(WriteFieldList, DropsEveryTrailingCommaEvenOfAField) {
  EXPECT_EQ(LineOf({"A", "b,,", ""}), "A,b");
}

TEST(WriteFieldList, WritesTheKeyWithAnEmptyValueWhenNothingIsLeft) {
  EXPECT_EQ(LineOf({"", "", ""}), "");
  EXPECT_EQ(LineOf({}), "");
}

TEST(WriteFieldList, WritesUnderTheGivenSectionKeyAndFile) {
  ConfigFixture fixture;
  EXPECT_TRUE(WriteFieldList(fixture.Config.Settings, "NestType", "Item7", Texts{"a"}, "/other.bak").Ok());
  EXPECT_EQ(fixture.Writes(), Texts{"write [NestType] Item7=a in /other.bak"});
}

TEST(WriteFieldList, ReportsAFailedWriteAndLeavesTheFile) {
  ConfigFixture fixture{"[S]\nK=old\n"};
  fixture.Calls.FailEverythingThatStartsWith("write");
  EXPECT_FALSE(WriteFieldList(fixture.Config.Settings, "S", "K", Texts{"new"}, fixture.ConfigFile()).Ok());
  EXPECT_EQ(fixture.Settings.Text(), "[S]\nK=old\n");
}

TEST(ReadRecordLine, CutsTheLineAtEveryComma) {
  ConfigFixture fixture{"[S]\nItem1=\"A,b\",, c\n"};
  const auto pieces = ReadRecordLine(fixture.Config.Settings, "S", "Item1", fixture.ConfigFile());
  EXPECT_EQ(pieces, (Texts{"\"A", "b\"", "", " c"}));
}

TEST(ReadRecordLine, TellsALineThatCannotBeReadFromAMissingOne) {
  ConfigFixture fixture{"[S]\nItem1=a,b\n"};
  EXPECT_EQ(ReadRecordLine(fixture.Config.Settings, "S", "Item2", fixture.ConfigFile()), Texts{});
  fixture.Calls.FailEverythingThatStartsWith("read");
  EXPECT_EQ(ReadRecordLine(fixture.Config.Settings, "S", "Item1", fixture.ConfigFile()), std::nullopt);
}

TEST(ReadRecordLine, HasNoPiecesWhenTheLineCannotBeCut) {
  ConfigFixture fixture{"[S]\nItem1=a,b\n"};
  fixture.Calls.FailEverythingThatStartsWith("split");
  EXPECT_EQ(ReadRecordLine(fixture.Config.Settings, "S", "Item1", fixture.ConfigFile()), Texts{});
}

TEST(ItemKey, IsTheWordAndTheNumberAsItStands) {
  EXPECT_EQ(ItemKey("0"), "Item0");
  EXPECT_EQ(ItemKey("12"), "Item12");
  EXPECT_EQ(ItemKey("007"), "Item007");
  EXPECT_EQ(ItemKey(""), "Item");
}

// ---- A small table of its own: what rows do, apart from any real table ----

struct Box {
  std::string ID;
  std::string Name = "old";
  bool IsUnread = false;
  double Width = 1.5;
  std::int32_t Far = 40;
  bool Lid = true;
  bool Closed = false;

  bool operator==(const Box&) const = default;
};

void PrintTo(const Box& box, std::ostream* stream) {
  PrintMembers<&Box::ID, &Box::Name, &Box::IsUnread, &Box::Width, &Box::Far, &Box::Lid, &Box::Closed>(
      "Box", box, *stream);
}

constexpr std::array boxRows{
    InLine<&Box::Name, BareText>(0),                  //
    UnderKey<&Box::Width, StrictReal>("Width", "9"),  //
    InLine<&Box::Far, SDStepsByPicture>(2),           //
    InLine<&Box::Lid, StrictFlag>(1),                 //
    InLine<&Box::Closed, NegatedFlag>(1),             //
};
constexpr RecordTable<Box> boxTable = MakeTable(TableSection{"S"}, boxRows);

TEST(RecordPrinting, NamesTheMembersThatDifferFromAFreshRecord) {
  EXPECT_EQ(testing::PrintToString(Box{.ID = "3", .Far = 7}), "Box{.ID = \"3\", .Far = 7}");
  EXPECT_EQ(testing::PrintToString(Box{}), "Box{}");
}

template <const auto& rows>
concept MakesATable = requires { typename std::bool_constant<(MakeTable(TableSection{"S"}, rows), true)>; };

constexpr std::array forgottenRows{InLine<&Box::Name, BareText>(0), InLine<&Box::Far, SDSteps>(2)};
constexpr std::array doubledRows{InLine<&Box::Name, BareText>(0), InLine<&Box::Far, SDSteps>(0)};
constexpr std::array unsavedRows{InLine<&Box::Name, BareText>(0).OnlyRead(), InLine<&Box::Far, SDSteps>(1)};
constexpr std::array onlyKeys{UnderKey<&Box::Width, StrictReal>("Width")};

TEST(MakeTable, RefusesRowsThatLeaveOutOrRepeatAPiece) {
  static_assert(MakesATable<boxRows>);
  static_assert(MakesATable<onlyKeys>);
  static_assert(!MakesATable<forgottenRows>);
  static_assert(!MakesATable<doubledRows>);
  static_assert(!MakesATable<unsavedRows>, "a piece that is never saved");
  SUCCEED();
}

TEST(MakeTable, CountsThePiecesOfTheLine) {
  EXPECT_EQ(boxTable.Pieces, 3U);
  EXPECT_EQ(MakeTable(TableSection{"S"}, onlyKeys).Pieces, 0U);
}

struct Scale {
  std::string Name;
  float Step = 0.0F;
};
constexpr std::array scaleRows{InLine<&Scale::Name, BareText>(0), InLine<&Scale::Step, StrictSingle>(1)};
constexpr std::array scaleRowsWithAGap{InLine<&Scale::Name, BareText>(0),
                                       InLine<&Scale::Step, StrictSingle>(2)};

TEST(MakeTable, CountsWhatIsReadOfLinesThatAreNeverSaved) {
  EXPECT_EQ(MakeTable(TableSection{"S"}, scaleRows).Pieces, 2U);
  static_assert(!MakesATable<scaleRowsWithAGap>);
}

TEST(TableSection, IsATextOrNamedAfterTheRecordsInForce) {
  CurrentRecords current;
  current.Device.Name = "A";
  EXPECT_EQ(TableSection{"S"}.Name(current), "S");
  const auto naming = [](const CurrentRecords& records) { return "Of_" + records.Device.Name; };
  EXPECT_EQ(TableSection{naming}.Name(current), "Of_A");
}

TEST(LoadInto, LeavesMembersAloneWhosePieceIsMissing) {
  ConfigFixture fixture;
  Box box;
  LoadInto(box, boxTable, Texts{"new"}, fixture.Config, fixture.ConfigFile());
  EXPECT_EQ(box, (Box{.Name = "new", .Width = 9.0}));
}

TEST(LoadInto, LeavesMembersAloneWhosePieceDoesNotConvert) {
  ConfigFixture fixture{"[S]\nWidth=wide\n"};
  Box box;
  LoadInto(box, boxTable, Texts{"new", "perhaps", "9999999999"}, fixture.Config, fixture.ConfigFile());
  EXPECT_EQ(box, (Box{.Name = "new"}));
}

TEST(LoadInto, ReadsKeysWithTheirDefault) {
  ConfigFixture fixture;
  Box box;
  LoadInto(box, boxTable, Texts{}, fixture.Config, "/other");
  EXPECT_EQ(box.Width, 9.0);
  EXPECT_EQ(fixture.Reads(), Texts{"read [S] Width default \"9\" in /other"});
}

TEST(LoadInto, LeavesAMemberAloneWhoseKeyCannotBeRead) {
  ConfigFixture fixture{"[S]\nWidth=3\n"};
  fixture.Calls.FailEverythingThatStartsWith("read");
  Box box;
  LoadInto(box, boxTable, Texts{"new", "0"}, fixture.Config, fixture.ConfigFile());
  EXPECT_EQ(box, (Box{.Name = "new", .Lid = false, .Closed = true}));
}

TEST(Load, TellsARecordWhoseLineCannotBeRead) {
  ConfigFixture fixture{"[S]\nItem1=new\n"};
  EXPECT_FALSE(Load(boxTable, fixture.Config, "1").IsUnread);
  fixture.Calls.FailEverythingThatStartsWith("read [S] Item");
  EXPECT_EQ(Load(boxTable, fixture.Config, "1"), (Box{.ID = "1", .IsUnread = true, .Width = 9.0}));
}

TEST(Load, CompletesTheRecordWithTheFileThatItCameFrom) {
  constexpr RecordTable<Box> completed = MakeTable(
      TableSection{"S"}, boxRows,
      [](Box& box, const Configuration&, std::string_view file) { box.Name.append(" from ").append(file); });
  ConfigFixture fixture{"[S]\nItem1=new\n"};
  EXPECT_EQ(Load(completed, fixture.Config, "1").Name, "new from " + fixture.ConfigFile());
  EXPECT_EQ(Load(completed, fixture.Config, "1", "/other").Name, "old from /other");
}

TEST(Load, WithoutANumberIsAnEmptyRecordAndReadsNothing) {
  ConfigFixture fixture{"[S]\nItem=a\nItem1=b\n"};
  EXPECT_EQ(Load(boxTable, fixture.Config, ""), Box{});
  EXPECT_EQ(fixture.Reads(), Texts{});
}

TEST(LoadInstalled, LoadsTheItemThatTheFileNames) {
  ConfigFixture fixture{"[S]\nInstalled=2\nItem1=a\nItem2=b\n"};
  fixture.Settings.Load("/other", "[S]\nInstalled=1\nItem1=c\n");
  EXPECT_EQ(LoadInstalled(boxTable, fixture.Config).ID, "2");
  EXPECT_EQ(LoadInstalled(boxTable, fixture.Config).Name, "b");
  EXPECT_EQ(LoadInstalled(boxTable, fixture.Config, "/other").ID, "1");
  EXPECT_EQ(LoadInstalled(boxTable, fixture.Config, "/other").Name, "c");
}

TEST(Save, WritesKeysFirstAndThenTheLineAndNeverADerivedMember) {
  ConfigFixture fixture;
  Save(boxTable, fixture.Config, Box{.ID = "3"}, backup);
  EXPECT_EQ(fixture.Writes(),
            (Texts{"write [S] Width=1.5 in /backup.bak", "write [S] Item3=old,1,20 in /backup.bak"}));
}

TEST(Save, LeavesAPieceEmptyThatCannotBeConverted) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  Save(boxTable, fixture.Config, Box{.ID = "3"}, backup);
  EXPECT_EQ(fixture.Settings.Value("S", "Item3", backup), "old,1");
}

TEST(Save, GoesOnAfterAFailedWrite) {
  ConfigFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("write [S] Width");
  Save(boxTable, fixture.Config, Box{.ID = "3"}, backup);
  EXPECT_EQ(fixture.Settings.Text(std::string{backup}), "[S]\nItem3=old,1,20\n");
}

// ---- Walks ----

struct Entry {
  std::string ID;
  std::string Name;
  std::string Code;
  bool IsUnread = false;
};

constexpr std::array entryRows{InLine<&Entry::Name, BareText>(0), InLine<&Entry::Code, BareText>(1)};
constexpr RecordTable<Entry> entryTable = MakeTable(TableSection{"T"}, entryRows);

// A table of records with these names and the codes c1, c2, ... The line of a record of the name "?" cannot be read.
struct EntryFixture : ConfigFixture {
  explicit EntryFixture(const Texts& names) {
    std::string text = "[T]\n";
    for (std::size_t index = 0; index < names.size(); ++index) {
      const auto number = std::to_string(index + 1);
      text.append("Item").append(number).append("=").append(names[index]).append(",c").append(number) += '\n';
      if (names[index] == "?") {
        Unread.insert("read [T] Item" + number);
      }
    }
    Settings.Load(text);
    Calls.FailsIf = [this](std::string_view event) { return Unread.contains(std::string{event}); };
  }

  std::set<std::string> Unread;

  // The numbers of the items that were read.
  Texts Asked() const {
    Texts numbers;
    for (const auto& event : Reads()) {
      numbers.push_back(event.substr(std::string_view{"read [T] Item"}.size()));
    }
    return numbers;
  }
};

const auto none = [](const Entry&) { return false; };

TEST(Find, StartsAtItemOneAndStopsAtTheFirstThatMatches) {
  EntryFixture fixture{{"a", "b", "b", "c"}};
  const auto isB = [](const Entry& entry) { return entry.Name == "b"; };
  EXPECT_EQ(Find(entryTable, fixture.Config, isB).ID, "2");
  EXPECT_EQ(fixture.Asked(), (Texts{"1", "2"}));
}

TEST(Find, GivesTheNamelessRecordAtTheEndWhenNothingMatches) {
  EntryFixture fixture{{"a", "b", "", "z"}};
  const auto found = Find(entryTable, fixture.Config, [](const Entry& entry) { return entry.Name == "z"; });
  EXPECT_EQ(found.ID, "3");
  EXPECT_EQ(found.Name, "");
  EXPECT_EQ(fixture.Asked(), (Texts{"1", "2", "3"}));
}

TEST(Find, ComparesBeforeItTestsForTheEnd) {
  EntryFixture fixture{{"a", "", "b"}};
  const auto isSecond = [](const Entry& entry) { return entry.Code == "c2"; };
  EXPECT_EQ(Find(entryTable, fixture.Config, isSecond).ID, "2");
}

TEST(Find, LeavesOutARecordThatCannotBeReadAndGoesOn) {
  EntryFixture fixture{{"a", "?", "b"}};
  const auto isLater = [](const Entry& entry) { return entry.Code != "c1"; };
  EXPECT_EQ(Find(entryTable, fixture.Config, isLater).ID, "3");
}

TEST(Find, DoesNotTakeARecordThatCannotBeReadForTheEnd) {
  EntryFixture fixture{{"a", "?", "b"}};
  EXPECT_EQ(Find(entryTable, fixture.Config, none).ID, "4");
}

TEST(Find, EndsAtOnceWhereTheFirstRecordCannotBeRead) {
  EntryFixture fixture{{"?", "b"}};
  EXPECT_EQ(Find(entryTable, fixture.Config, none).ID, "1");
  EXPECT_EQ(fixture.Asked(), Texts{"1"});
}

TEST(Find, EndsWhere16BitCountersEndAlsoWhenNothingCanBeReadAnyMore) {
  EntryFixture fixture{{"a"}};
  fixture.Calls.FailsIf = [](std::string_view event) {
    return event.starts_with("read [T] Item") && event != "read [T] Item1";
  };
  EXPECT_TRUE(Find(entryTable, fixture.Config, none).IsUnread);
  EXPECT_EQ(fixture.Asked().size(), 32767U);
}

TEST(Find, AnEmptyTableGivesItsEnd) {
  EntryFixture fixture{{}};
  EXPECT_EQ(Find(entryTable, fixture.Config, none).ID, "1");
  EXPECT_EQ(fixture.Asked(), Texts{"1"});
}

TEST(Find, EndsWhere16BitCountersEndAndStillComparesTheLastNumber) {
  ConfigFixture fixture;
  const auto settings = fixture.WithoutEnd("n");
  int compared = 0;
  const auto last = Find(entryTable, fixture.Config, [&compared](const Entry&) {
    ++compared;
    return false;
  });
  EXPECT_EQ(last.ID, "32767");
  EXPECT_EQ(settings->LastItem, "Item32767");
  EXPECT_EQ(compared, 32767);
}

TEST(FindByName, ComparesTheMemberItIsGiven) {
  EntryFixture fixture{{"a", "c1", "c"}};
  EXPECT_EQ(FindByName(entryTable, fixture.Config, &Entry::Name, "c1").ID, "2");
  EXPECT_EQ(FindByName(entryTable, fixture.Config, &Entry::Code, "c1").ID, "1");
}

TEST(FindByName, WithoutANameIsAnEmptyRecordAndReadsNothing) {
  EntryFixture fixture{{"", "b"}};
  EXPECT_EQ(FindByName(entryTable, fixture.Config, &Entry::Name, "").ID, "");
  EXPECT_EQ(fixture.Reads(), Texts{});
}

template <class Walk>
Texts Visited(EntryFixture& fixture, Walk walk) {
  Texts visited;
  walk(fixture, [&visited](const Entry& entry) { visited.push_back(entry.ID); });
  return visited;
}

const auto forEach = [](EntryFixture& fixture, auto visit) { ForEach(entryTable, fixture.Config, visit); };

TEST(ForEach, VisitsTheRecordsBeforeTheFirstNamelessOne) {
  EntryFixture fixture{{"a", "b", "", "d"}};
  EXPECT_EQ(Visited(fixture, forEach), (Texts{"1", "2"}));
  EXPECT_EQ(fixture.Asked(), (Texts{"1", "2", "3"}));
}

TEST(ForEach, LeavesOutWhatCannotBeRead) {
  EntryFixture fixture{{"a", "?", "c", "?", "", "f"}};
  EXPECT_EQ(Visited(fixture, forEach), (Texts{"1", "3"}));
}

TEST(ForEach, VisitsNothingOfAnEmptyTable) {
  EntryFixture fixture{{}};
  EXPECT_EQ(Visited(fixture, forEach), Texts{});
}

TEST(ForEach, VisitsTheRecordsOfTheFileItIsGiven) {
  EntryFixture fixture{{"a", "b"}};
  fixture.Settings.Load("/other", "[T]\nItem1=c\n");
  Texts names;
  ForEach(
      entryTable, fixture.Config, [&names](const Entry& entry) { names.push_back(entry.Name); }, "/other");
  EXPECT_EQ(names, Texts{"c"});
}

TEST(ForEach, EndsWhere16BitCountersEnd) {
  ConfigFixture fixture;
  fixture.WithoutEnd("n");
  int visits = 0;
  ForEach(entryTable, fixture.Config, [&visits](const Entry&) { ++visits; });
  EXPECT_EQ(visits, 32767);
}

TEST(ForEachAndTheEnd, VisitsTheNamelessRecordToo) {
  EntryFixture fixture{{"a", "b", "", "d"}};
  const auto walk = [](EntryFixture& entries, auto visit) {
    ForEachAndTheEnd(entryTable, entries.Config, visit);
  };
  EXPECT_EQ(Visited(fixture, walk), (Texts{"1", "2", "3"}));
  EXPECT_EQ(fixture.Asked(), (Texts{"1", "2", "3"}));
}

}  // namespace
}  // namespace zolvane
