#include "config/record_table.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

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

// ---- A small table of its own: what rows do, apart from any real table ----

struct Box {
  std::string Number;
  std::string Name = "old";
  bool IsUnread = false;
  double Width = 1.5;
  std::int32_t Far = 40;
  bool Lid = true;
  bool Closed = false;
};

using Row = Field<Box>;
constexpr std::array boxRows{
    Row::Line<&Box::Name, BareText>(0),        Row::Key<&Box::Width, StrictReal>("Width", "9"),
    Row::Line<&Box::Far, SDStepsByPicture>(2), Row::Line<&Box::Lid, WordOrNumberFlag>(1),
    Row::Line<&Box::Closed, NegatedFlag>(1),
};
constexpr RecordTable<Box> boxTable{boxRows, 3, &Box::Number};

TEST(CoversLine, IsTrueOnlyWhenEveryPieceIsFilledOnce) {
  static_assert(CoversLine<Box>(boxRows, 3));
  static_assert(!CoversLine<Box>(boxRows, 4), "a forgotten piece");
  constexpr std::array doubled{Row::Line<&Box::Name, BareText>(0), Row::Line<&Box::Far, SDSteps>(0)};
  static_assert(!CoversLine<Box>(doubled, 1), "a doubled piece");
  constexpr std::array onlyRead{Row::Line<&Box::Name, BareText>(0).OnlyRead()};
  static_assert(!CoversLine<Box>(onlyRead, 1), "a piece that is never saved");
  constexpr std::array key{Row::Key<&Box::Width, StrictReal>("Width")};
  static_assert(!CoversLine<Box>(key, 1), "a key is no piece");
  SUCCEED();
}

TEST(LoadInto, LeavesMembersAloneWhosePieceIsMissing) {
  ConfigFixture fixture;
  Box box;
  LoadInto<Box>(box, boxRows, Texts{"new"}, fixture.Config, "S", fixture.ConfigFile());
  EXPECT_EQ(box.Name, "new");
  EXPECT_EQ(box.Far, 40);
  EXPECT_TRUE(box.Lid);
  EXPECT_FALSE(box.Closed);
}

TEST(LoadInto, LeavesMembersAloneWhosePieceDoesNotConvert) {
  ConfigFixture fixture{"[S]\nWidth=wide\n"};
  Box box;
  LoadInto<Box>(box, boxRows, Texts{"new", "perhaps", "9999999999"}, fixture.Config, "S",
                fixture.ConfigFile());
  EXPECT_EQ(box.Far, 40);
  EXPECT_TRUE(box.Lid);
  EXPECT_FALSE(box.Closed);
  EXPECT_EQ(box.Width, 1.5);
}

TEST(LoadInto, ReadsKeysWithTheirDefault) {
  ConfigFixture fixture;
  Box box;
  LoadInto<Box>(box, boxRows, Texts{}, fixture.Config, "S", "/other");
  EXPECT_EQ(box.Width, 9.0);
  EXPECT_EQ(fixture.Reads(), Texts{"read [S] Width default \"9\" in /other"});
}

TEST(LoadInto, LeavesAMemberAloneWhoseKeyCannotBeRead) {
  ConfigFixture fixture{"[S]\nWidth=3\n"};
  fixture.Calls.FailEverythingThatStartsWith("read");
  Box box;
  LoadInto<Box>(box, boxRows, Texts{"new", "0"}, fixture.Config, "S", fixture.ConfigFile());
  EXPECT_EQ(box.Width, 1.5);
  EXPECT_EQ(box.Name, "new");
  EXPECT_FALSE(box.Lid);
  EXPECT_TRUE(box.Closed);
}

TEST(SaveRecord, WritesKeysFirstAndThenTheLineAndNeverADerivedMember) {
  ConfigFixture fixture;
  Box box;
  box.Number = "3";
  SaveRecord(boxTable, box, fixture.Config, "S", backup);
  EXPECT_EQ(fixture.Writes(),
            (Texts{"write [S] Width=1.5 in /backup.bak", "write [S] Item3=old,1,20 in /backup.bak"}));
}

TEST(SaveRecord, LeavesAPieceEmptyThatCannotBeConverted) {
  ConfigFixture fixture;
  fixture.SetFactor(0.0);
  Box box;
  box.Number = "3";
  SaveRecord(boxTable, box, fixture.Config, "S", backup);
  EXPECT_EQ(fixture.Settings.Value("S", "Item3", backup), "old,1");
}

TEST(SaveRecord, GoesOnAfterAFailedWrite) {
  ConfigFixture fixture;
  Box box;
  box.Number = "3";
  fixture.Calls.FailEverythingThatStartsWith("write [S] Width");
  SaveRecord(boxTable, box, fixture.Config, "S", backup);
  EXPECT_EQ(fixture.Settings.Text(std::string{backup}), "[S]\nItem3=old,1,20\n");
}

// ---- Walks ----

struct Entry {
  std::string Number;
  std::string Name;
  std::string Code;
  bool IsUnread = false;
};

// A table of records with these names, and which numbers were asked for. The record of a name "?" cannot be read.
struct CountedEntries {
  Texts Names;
  Texts Asked;

  auto Loader() {
    return [this](const std::string& number) {
      Asked.push_back(number);
      const auto index = static_cast<std::size_t>(std::stoi(number)) - 1;
      const auto name = index < Names.size() ? Names[index] : "";
      return name == "?" ? Entry{.Number = number, .Name = "", .Code = "", .IsUnread = true}
                         : Entry{.Number = number, .Name = name, .Code = "c" + number};
    };
  }
};

TEST(FindRecord, StartsAtItemOneAndStopsAtTheFirstThatMatches) {
  CountedEntries entries{{"a", "b", "b", "c"}, {}};
  const auto found = FindRecord(entries.Loader(), [](const Entry& entry) { return entry.Name == "b"; });
  EXPECT_EQ(found.Number, "2");
  EXPECT_EQ(entries.Asked, (Texts{"1", "2"}));
}

TEST(FindRecord, GivesTheNamelessRecordAtTheEndWhenNothingMatches) {
  CountedEntries entries{{"a", "b", "", "z"}, {}};
  const auto found = FindRecord(entries.Loader(), [](const Entry& entry) { return entry.Name == "z"; });
  EXPECT_EQ(found.Number, "3");
  EXPECT_EQ(found.Name, "");
  EXPECT_EQ(entries.Asked, (Texts{"1", "2", "3"}));
}

TEST(FindRecord, ComparesBeforeItTestsForTheEnd) {
  CountedEntries entries{{"a", "", "b"}, {}};
  const auto found = FindRecord(entries.Loader(), [](const Entry& entry) { return entry.Code == "c2"; });
  EXPECT_EQ(found.Number, "2");
}

TEST(FindRecord, LeavesOutARecordThatCannotBeReadAndGoesOn) {
  CountedEntries entries{{"a", "?", "b"}, {}};
  EXPECT_EQ(FindRecord(entries.Loader(), [](const Entry& entry) { return entry.Code != "c1"; }).Number, "3");
}

TEST(FindRecord, DoesNotTakeARecordThatCannotBeReadForTheEnd) {
  CountedEntries entries{{"a", "?", "b"}, {}};
  EXPECT_EQ(FindRecord(entries.Loader(), [](const Entry&) { return false; }).Number, "4");
}

TEST(FindRecord, EndsAtOnceWhereTheFirstRecordCannotBeRead) {
  CountedEntries entries{{"?", "b"}, {}};
  EXPECT_EQ(FindRecord(entries.Loader(), [](const Entry&) { return false; }).Number, "1");
  EXPECT_EQ(entries.Asked, Texts{"1"});
}

TEST(FindRecord, EndsWhere16BitCountersEndAlsoWhenNothingCanBeReadAnyMore) {
  CountedEntries entries{Texts(40000, "?"), {}};
  entries.Names.front() = "a";
  EXPECT_TRUE(FindRecord(entries.Loader(), [](const Entry&) { return false; }).IsUnread);
  EXPECT_EQ(entries.Asked.size(), 32767U);
}

TEST(FindRecord, OfAnEmptyTableIsItsEnd) {
  CountedEntries entries;
  EXPECT_EQ(FindRecord(entries.Loader(), [](const Entry&) { return false; }).Number, "1");
  EXPECT_EQ(entries.Asked, Texts{"1"});
}

TEST(FindRecord, EndsWhere16BitCountersEnd) {
  CountedEntries entries{Texts(40000, "n"), {}};
  const auto last = FindRecord(entries.Loader(), [](const Entry&) { return false; });
  EXPECT_EQ(last.Number, "32767");
  EXPECT_EQ(entries.Asked.size(), 32767U);
}

TEST(FindRecord, StillComparesTheLastNumber) {
  CountedEntries entries{Texts(40000, "n"), {}};
  int compared = 0;
  FindRecord(entries.Loader(), [&compared](const Entry&) {
    ++compared;
    return false;
  });
  EXPECT_EQ(compared, 32767);
}

TEST(ForEachRecord, VisitsTheRecordsBeforeTheFirstNamelessOne) {
  CountedEntries entries{{"a", "b", "", "d"}, {}};
  Texts visited;
  ForEachRecord(entries.Loader(), [&visited](const Entry& entry) { visited.push_back(entry.Number); });
  EXPECT_EQ(visited, (Texts{"1", "2"}));
  EXPECT_EQ(entries.Asked, (Texts{"1", "2", "3"}));
}

TEST(ForEachRecord, LeavesOutWhatCannotBeRead) {
  CountedEntries entries{{"a", "?", "c", "?", "", "f"}, {}};
  Texts visited;
  ForEachRecord(entries.Loader(), [&visited](const Entry& entry) { visited.push_back(entry.Number); });
  EXPECT_EQ(visited, (Texts{"1", "3"}));
}

TEST(ForEachRecord, VisitsNothingOfAnEmptyTable) {
  CountedEntries entries;
  int visits = 0;
  ForEachRecord(entries.Loader(), [&visits](const Entry&) { ++visits; });
  EXPECT_EQ(visits, 0);
}

TEST(ForEachRecord, EndsWhere16BitCountersEnd) {
  CountedEntries entries{Texts(40000, "n"), {}};
  int visits = 0;
  ForEachRecord(entries.Loader(), [&visits](const Entry&) { ++visits; });
  EXPECT_EQ(visits, 32767);
}

TEST(ForEachRecordAndTheEnd, VisitsTheNamelessRecordToo) {
  CountedEntries entries{{"a", "b", "", "d"}, {}};
  Texts visited;
  ForEachRecordAndTheEnd(entries.Loader(),
                         [&visited](const Entry& entry) { visited.push_back(entry.Number); });
  EXPECT_EQ(visited, (Texts{"1", "2", "3"}));
  EXPECT_EQ(entries.Asked, (Texts{"1", "2", "3"}));
}

}  // namespace
}  // namespace zolvane
