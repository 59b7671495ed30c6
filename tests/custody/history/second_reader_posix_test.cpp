// A second reader, written from docs/format-history.md by itself, finds the same as ours, whatever was done
// to a history. And every line that we write is one that the schema describes.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "bench/process_support.h"
#include "config/text.h"
#include "custody/disk/sha256.h"
#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/support/fake_witness.h"
#include "custody/support/history_fixture.h"
#include "custody/values/values_json.h"
#include "support/file_bytes.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using nlohmann::json;

const std::string testFolder = ZOLVANE_SOURCE_PATH "/tests/custody";

std::string RunPython(const std::string& script, const Arguments& arguments) {
  Arguments all{"-c", script};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const auto result = RunProgram("/usr/bin/python3", all);
  EXPECT_EQ(result.Status, 0) << result.Errors;
  return result.Output;
}

// What the second reader says of each of the folders, with the checkpoints in one file.
std::vector<json> SecondReaderOn(const std::vector<std::string>& folders, const std::string& checkpointFile) {
  Arguments arguments{testFolder, checkpointFile};
  arguments.insert(arguments.end(), folders.begin(), folders.end());
  std::istringstream lines{RunPython(
      "import sys; sys.dont_write_bytecode = True; sys.path.insert(0, sys.argv[1]); import history_reader\n"
      "for folder in sys.argv[3:]: history_reader.main(folder, sys.argv[2])",
      arguments)};
  std::vector<json> answers;
  for (std::string line; std::getline(lines, line);) {
    answers.push_back(json::parse(line));
  }
  return answers;
}

// Each with its name, its text and whether it was answered.
json HexOfAll(const Values& values) {
  auto list = json::array();
  for (const auto& value : values.InOrder()) {
    list.push_back({HexOf(value.Name), value.Text ? json(HexOf(*value.Text)) : json(), value.WasAnswered});
  }
  return list;
}

json OursOn(const std::string& folder, const std::vector<Checkpoint>& checkpoints) {
  SystemDisk disk;
  const auto journal = ReadJournal(BytesOf(folder + "/Zolvane.history/journal.jsonl"));
  const auto audit = Audit(disk, folder, checkpoints);
  json ours{{"identity", journal.Identity},
            {"torn", journal.Torn.size()},
            {"intact", audit.IsIntact},
            {"complete", audit.IsComplete},
            {"anchored", audit.IsAnchored},
            {"anchored_up_to", audit.AnchoredUpTo},
            {"sequences", json::array()},
            {"actions", json::array()},
            {"people", json::array()},
            {"found", json::array()},
            {"damage", 0}};
  for (const auto& entry : journal.Entries) {
    ours["sequences"].push_back(entry.Sequence);
    ours["actions"].push_back(entry.Action);
    ours["people"].push_back(HexOf(entry.Person));
    const auto kept = ReadObject(disk, PlaceOfHistory(folder), entry.Found);
    if (const auto values = kept ? ValuesIn(*kept) : std::nullopt) {
      ours["found"].push_back(HexOfAll(*values));
    }
  }
  if (!journal.Defects.empty()) {
    ours["damage"] = journal.Defects.front().Line;
  }
  return ours;
}

class SecondReader : public testing::Test {
 protected:
  void SetUp() override {
    History history{Disk, Witness, Folder.Path()};
    ASSERT_TRUE(history.OpenForRecording().Ok());
    Witness.Account =
        "\xc3\x84"
        "da \"\\\x01\t \xf0\x9f\x98\x80\xff";
    for (const auto* action : {"upload", "undo", "import"}) {
      auto begun = EntryOf(action);
      begun.Found = *history.PutObject(ValuesText(FoundBy(action)));
      begun.Intended = *history.PutObject("intended");
      begun.FileBefore = *history.PutObject("[Arm]\r\n");
      begun.OtherFiles = {{"backup.ini", "", begun.FileBefore}};
      begun.Objections = {{"findings", "", "2"}};
      begun.Reason = begun.Link = begun.Instrument = "a line\nand one more";
      const auto number = *history.Begin(begun);
      auto ended = EndOf(action, "not_proven");
      ended.Counts = {{"verified", 178}, {"\xee\x80\x80", -1}, {"\xf0\x9f\x98\x80", 9007199254740992}};
      ended.Details = *history.PutObject("{}");
      ASSERT_TRUE(history.End(number, ended).Ok());
      Checkpoints = {history.LastCheckpoint().value_or(Checkpoint{})};
    }
    ASSERT_TRUE(history.Begin(EntryOf("download")));
    const auto lines = LinesOf(Checkpoints[0]);
    CheckpointFile = Folder.Put("checkpoint.txt", lines[0] + "\n" + lines[1] + "\n" + lines[2] + "\n");
    Journal = Folder.Read("Zolvane.history/journal.jsonl");
  }

  static Values FoundBy(const std::string& action) {
    Values values;
    values.Add({.Name = action, .Text = "\xc3\x84 caf\xe9 \\x9b"});
    values.Add({.Name = "unknown\xff", .Text = std::nullopt});
    values.Add({.Name = "silent", .Text = std::nullopt, .WasAnswered = false});
    return values;
  }

  void ExpectAgreement(const std::vector<std::string>& folders) {
    const auto theirs = SecondReaderOn(folders, CheckpointFile);
    ASSERT_EQ(theirs.size(), folders.size());
    for (std::size_t index = 0; index < folders.size(); ++index) {
      ASSERT_EQ(theirs[index], OursOn(folders[index], Checkpoints))
          << BytesOf(folders[index] + "/Zolvane.history/journal.jsonl");
    }
  }

  TemporaryFolder Folder;
  SystemDisk Disk;
  FakeWitness Witness;
  std::vector<Checkpoint> Checkpoints;
  std::string CheckpointFile;
  std::string Journal;
};

TEST_F(SecondReader, FindsTheWholeHistory) {
  const auto theirs = SecondReaderOn({Folder.Path()}, CheckpointFile);
  ASSERT_EQ(theirs.size(), 1U);
  EXPECT_EQ(theirs[0]["sequences"], (json{2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(theirs[0]["found"].size(), 3U);
  EXPECT_EQ(theirs[0]["intact"], true);
  EXPECT_EQ(theirs[0]["anchored_up_to"], 7);
  EXPECT_EQ(theirs[0], OursOn(Folder.Path(), Checkpoints));
}

// Cut anywhere, bytes changed, lines moved and removed, in all mixtures.
TEST_F(SecondReader, AgreesWithOursOnDamagedHistories) {
  std::mt19937 random{20260314};
  const auto below = [&random](std::size_t end) { return static_cast<std::size_t>(random() % end); };
  constexpr int damages = 300;
  std::vector<std::string> folders;
  for (int number = 0; number < damages; ++number) {
    auto bytes = Journal;
    for (std::size_t change = below(3) + 1; change > 0 && !bytes.empty(); --change) {
      const auto at = below(bytes.size());
      const auto end = bytes.find('\n', at) == std::string::npos ? bytes.size() : bytes.find('\n', at) + 1;
      switch (below(5)) {
        case 0:
          bytes.resize(at);
          break;
        case 1:
          bytes[at] = static_cast<char>(random() & 0xFFU);
          break;
        case 2:
          bytes.insert(end, bytes.substr(at, end - at));
          break;
        case 3:
          bytes.erase(at, end - at);
          break;
        default:
          bytes.insert(at, "\n");
      }
    }
    folders.push_back(Folder.Path("damaged-" + std::to_string(number)));
    std::filesystem::create_directories(folders.back() + "/Zolvane.history");
    std::filesystem::create_symlink(Folder.Path("Zolvane.history/objects"),
                                    folders.back() + "/Zolvane.history/objects");
    Folder.Put("damaged-" + std::to_string(number) + "/Zolvane.history/journal.jsonl", bytes);
  }
  ExpectAgreement(folders);
}

TEST_F(SecondReader, AgreesThatAnObjectIsDamaged) {
  const auto name = ReadJournal(Journal).Entries.at(0).Found;
  Folder.Put("Zolvane.history/objects/" + name, "other");
  ExpectAgreement({Folder.Path()});
  EXPECT_EQ(SecondReaderOn({Folder.Path()}, CheckpointFile).at(0)["intact"], false);
}

constexpr const char* validation =
    "import json, sys, jsonschema\n"
    "validator = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))\n"
    "for line in open(sys.argv[2], 'rb').read().splitlines(): "
    "print(len(list(validator.iter_errors(json.loads(line)))))";

TEST_F(SecondReader, TheSchemaDescribesEveryLine) {
  const Arguments files{ZOLVANE_SOURCE_PATH "/docs/schema/history.json",
                        Folder.Path("Zolvane.history/journal.jsonl")};
  EXPECT_EQ(RunPython(validation, files), "0\n0\n0\n0\n0\n0\n0\n0\n");
}

TEST_F(SecondReader, TheSchemaDescribesValues) {
  const auto path = Folder.Put("values", ValuesText(FoundBy("upload")) + "\n[{\"text\":\"1\"}]\n");
  EXPECT_EQ(RunPython(validation, {ZOLVANE_SOURCE_PATH "/docs/schema/values.json", path}), "0\n1\n");
}

TEST_F(SecondReader, TheSchemaRefusesOtherLines) {
  const auto path = Folder.Put("lines", "{}\n{\"seq\":2}\n" + Replaced(Journal, "\"state\"", "\"status\""));
  EXPECT_EQ(RunPython(validation, {ZOLVANE_SOURCE_PATH "/docs/schema/history.json", path}),
            "1\n1\n0\n1\n1\n1\n1\n1\n1\n1\n");
}

TEST_F(SecondReader, OtherProgramsCanCheckTheObjects) {
  const auto result = RunProgram(
      "/bin/sh",
      {"-c", "cd \"$0\" && for object in *; do echo \"$object  $object\"; done | sha256sum --check --quiet",
       Folder.Path("Zolvane.history/objects")});
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
}

}  // namespace
}  // namespace zolvane
