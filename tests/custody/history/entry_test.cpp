#include "custody/history/entry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/text.h"

namespace zolvane {
namespace {

const std::string hashA(64, 'a');
const std::string hashB(64, 'b');

Entry FullEntry() {
  Entry entry;
  entry.Action = "upload";
  entry.Outcome = "done";
  entry.Person = "Ada \"L\"";
  entry.Reason = "new head";
  entry.Program = "zolvane";
  entry.Version = "1.0";
  entry.Link = "tcp:lab:4711";
  entry.Instrument = "MINI";
  entry.File = "Zolvane.ini";
  entry.FileBefore = entry.Found = entry.Details = hashA;
  entry.FileAfter = entry.Intended = entry.Left = hashB;
  entry.OtherFiles = {{"/backup.ini", "", hashB}};
  entry.Objections = {{"other-instrument", "MINI", "MAXI"}, {"findings", "", "2"}};
  entry.Counts = {{"verified", 178}, {"lost", -1}};
  entry.Sequence = 3;
  entry.Of = 2;
  entry.Time = "2026-03-14T09:26:53.589Z";
  entry.Offset = -330;
  entry.Machine = "bench-7";
  entry.Previous = hashA;
  return entry;
}

Entry ShortEntry() {
  Entry entry;
  entry.Action = "query";
  entry.Sequence = 2;
  entry.Previous = hashA;
  return entry;
}

const std::string fullLine =
    R"({"action":"upload","counts":{"lost":-1,"verified":178},"details":")" + hashA +
    R"(","file":"Zolvane.ini",)" + R"("file_after":")" + hashB + R"(","file_before":")" + hashA +
    R"(","found":")" + hashA + R"(","instrument":"MINI","intended":")" + hashB + R"(","left":")" + hashB +
    R"(","link":"tcp:lab:4711","machine":"bench-7","objections":[{"actual":"MAXI","code":"other-instrument",)" +
    R"("expected":"MINI"},{"actual":"2","code":"findings","expected":""}],"of":2,"offset":-330,"other_files":[{"after":")" +
    hashB + R"(","path":"/backup.ini"}],"outcome":"done","person":"Ada \"L\"","previous":")" + hashA +
    R"(","program":"zolvane","reason":"new head","seq":3,"state":"ended","time":"2026-03-14T09:26:53.589Z",)" +
    R"("version":"1.0"})";

const std::string shortLine = R"({"action":"query","machine":"","offset":0,"person":"","previous":")" +
                              hashA + R"(","program":"","seq":2,"state":"begun","time":"","version":""})";

TEST(Entry, WithEverythingIsOneLine) {
  EXPECT_EQ(LineOf(FullEntry()), fullLine);
}

TEST(Entry, WithNothingHasWhatEveryEntryHas) {
  EXPECT_EQ(LineOf(ShortEntry()), shortLine);
}

TEST(Entry, IsReadBackFromItsLine) {
  EXPECT_EQ(EntryIn(fullLine), FullEntry());
  EXPECT_EQ(EntryIn(shortLine), ShortEntry());
}

TEST(Entry, KeepsEveryByteOfEveryText) {
  auto entry = ShortEntry();
  entry.Person = "caf\xe9 \\x9b";
  entry.Reason = std::string{"\0\x1b\x80\xff", 4};
  EXPECT_EQ(EntryIn(LineOf(entry)), entry);
  EXPECT_NE(LineOf(entry).find(R"("person":"caf\\xe9 \\x5cx9b")"), std::string::npos) << LineOf(entry);
}

TEST(Entry, PassesOverMembersThatItDoesNotKnow) {
  const auto line = Replaced(shortLine, "{\"action\"", "{\"Later\":[1.5,{\"a\":null}],\"action\"");
  EXPECT_EQ(EntryIn(line), EntryIn(shortLine));
}

TEST(Entry, NamesAllItsObjects) {
  EXPECT_EQ(ObjectsOf(FullEntry()),
            (std::vector<std::string>{hashA, hashB, hashA, hashB, hashB, hashA, hashB}));
}

TEST(Entry, IsRefusedWithoutWhatEveryEntryHas) {
  ASSERT_TRUE(EntryIn(shortLine));
  for (const auto* member :
       {"action", "machine", "offset", "person", "previous", "program", "seq", "state", "time", "version"}) {
    EXPECT_FALSE(EntryIn(Replaced(shortLine, std::string{"\""} + member + "\":", "\"other\":"))) << member;
  }
}

TEST(Entry, IsRefusedWithAMemberOfAnotherKind) {
  ASSERT_TRUE(EntryIn(fullLine));
  const std::string::size_type none = std::string::npos;
  const auto refused = [&](const std::string& from, const std::string& to) {
    ASSERT_NE(fullLine.find(from), none) << from;
    EXPECT_FALSE(EntryIn(Replaced(fullLine, from, to))) << to;
  };
  refused("\"seq\":3", "\"seq\":\"3\"");
  refused("\"seq\":3", "\"seq\":-3");
  refused("\"seq\":3", "\"seq\":3.5");
  refused("\"seq\":3", "\"seq\":18446744073709551615");
  refused("\"offset\":-330", "\"offset\":-1e999");
  refused("\"outcome\":\"done\"", "\"outcome\":null");
  refused("\"counts\":{", "\"counts\":[],\"x\":{");
  refused("\"lost\":-1", "\"lost\":\"-1\"");
  refused("\"code\":\"findings\"", "\"code\":7");
  refused("\"code\":\"findings\"", "\"cade\":\"findings\"");
  refused("\"expected\":\"\"", "\"awaited\":\"\"");
  refused("\"objections\":[", "\"objections\":[null,");
  refused("\"state\":\"ended\"", "\"state\":\"begun\"");
  refused("\"of\":2", "\"of\":0");
  refused("\"found\":\"" + hashA + "\"", "\"found\":\"../../passwd\"");
  refused("\"previous\":\"" + hashA + "\"", "\"previous\":\"\"");
}

TEST(Entry, IsRefusedIfTheLineIsNoObject) {
  for (const auto* line : {"", " ", "[]", "7", "null", "{", "\"text\"", "{}{}", "{\"a\":\"\xff\"}"}) {
    EXPECT_FALSE(EntryIn(line)) << line;
  }
  EXPECT_FALSE(EntryIn(std::string(100'000, '[')));
}

}  // namespace
}  // namespace zolvane
