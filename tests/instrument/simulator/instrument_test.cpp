#include "instrument/simulator/instrument.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <map>
#include <random>

#include "support/temporary_folder.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

SimulatedInstrument KeptIn(const std::string& file) {
  SimulatedInstrument::Setup setup;
  setup.StateFile = file;
  return SimulatedInstrument{setup};
}

SimulatedInstrument FailingAfter(std::size_t answers) {
  SimulatedInstrument::Setup setup;
  setup.FailAfter = answers;
  return SimulatedInstrument{setup};
}

TEST(SimulatedInstrument, SaysWhatItIsSetUpToBe) {
  SimulatedInstrument instrument{
      {.Stage = "ABC", .Mechanics = "96/384", .Tag = "TAG1", .Pumps = "PUMPS OPEN"}};
  EXPECT_EQ(instrument.Answer("STATUS_STAGE"), "ABC");
  EXPECT_EQ(instrument.Answer("STATUS_MECH"), "96/384");
  EXPECT_EQ(instrument.Answer("STATUS PUMPS"), "PUMPS OPEN");
  EXPECT_EQ(instrument.Answer("RFID ON"), "OK");
  EXPECT_EQ(instrument.Answer("RFID OFF"), "OK");
  EXPECT_EQ(instrument.Answer("RFID READ_PERSISTENT"), "RFID,PERSISTENT,TAG1,READ,OK");
}

TEST(SimulatedInstrument, KeepsValuesByKeyToTheLetter) {
  SimulatedInstrument instrument{{}};
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION PickUp_1ChShort_Z"), "SYNTAX_ERROR");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION PickUp_1ChShort_Z 10912"), "OK");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION PickUp_1CHSHORT_Z 7"), "OK");
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION PickUp_1ChShort_Z"), "PickUp_1ChShort_Z=10912");
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION PickUp_1CHSHORT_Z"), "PickUp_1CHSHORT_Z=7");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION PickUp_1CHSHORT_Z 8"), "OK");
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION PickUp_1CHSHORT_Z"), "PickUp_1CHSHORT_Z=8");
}

TEST(SimulatedInstrument, EverythingBehindTheKeyIsTheValue) {
  SimulatedInstrument instrument{{}};
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION KEY  a  b "), "OK");
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION KEY"), "KEY= a  b ");
}

TEST(SimulatedInstrument, AnythingElseIsASyntaxError) {
  SimulatedInstrument instrument{{}};
  for (const auto* command : {"", "status_stage", "STATUS_STAGE ", "SET_CALIBRATION", "SET_CALIBRATION ",
                              "SET_CALIBRATION KEY", "SET_CALIBRATION KEY ", "SET_CALIBRATION  5",
                              "GET_CALIBRATION", "GET_CALIBRATION ", "RFID", "SAVE"}) {
    EXPECT_EQ(instrument.Answer(command), "SYNTAX_ERROR") << command;
  }
}

TEST(SimulatedInstrument, FallsSilentAfterSoManyAnswers) {
  auto instrument = FailingAfter(2);
  EXPECT_EQ(instrument.Answer("RFID ON"), "OK");
  EXPECT_EQ(instrument.Answer("RFID ON"), "OK");
  EXPECT_EQ(instrument.Answer("RFID ON"), std::nullopt);
  EXPECT_EQ(instrument.Answer("RFID ON"), std::nullopt);
  auto mute = FailingAfter(0);
  EXPECT_EQ(mute.Answer("RFID ON"), std::nullopt);
}

TEST(SimulatedInstrument, SavingKeepsTheMemoryInTheFile) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  {
    auto instrument = KeptIn(file);
    instrument.SwitchOn();
    instrument.Answer("SET_CALIBRATION B 2");
    instrument.Answer("SET_CALIBRATION A 1");
    EXPECT_EQ(BytesOf(file), "{}\n");
    EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
    EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"1\",\n  \"B\": \"2\"\n}\n");
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"state.json"});
}

TEST(SimulatedInstrument, WhatWasNeverSavedIsHeldUntilTheEndAndNotKept) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  {
    auto instrument = KeptIn(file);
    instrument.SwitchOn();
    instrument.Answer("SET_CALIBRATION A 1");
    instrument.Answer("SET_CALIBRATION SAVE");
    instrument.Answer("SET_CALIBRATION A 2");
    instrument.Answer("SET_CALIBRATION B 3");
    EXPECT_EQ(instrument.Answer("GET_CALIBRATION A"), "A=2");
  }
  auto again = KeptIn(file);
  EXPECT_EQ(again.Answer("GET_CALIBRATION A"), "A=1");
  EXPECT_EQ(again.Answer("GET_CALIBRATION B"), "SYNTAX_ERROR");
}

TEST(SimulatedInstrument, SavingAddsWhatChangedAndTheEndPutsTheFileInOrder) {
  const TemporaryFolder folder;
  const auto file = folder.Put("state.json", R"({"A":"1", "B":"2"})");
  {
    auto instrument = KeptIn(file);
    instrument.SwitchOn();
    instrument.Answer("SET_CALIBRATION C 3");
    instrument.Answer("SET_CALIBRATION SAVE");
    EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"1\",\n  \"B\": \"2\",\n  \"C\": \"3\"\n}\n");
    instrument.Answer("SET_CALIBRATION A 7");
    instrument.Answer("SET_CALIBRATION SAVE");
    EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"1\",\n  \"B\": \"2\",\n  \"C\": \"3\",\n  \"A\": \"7\"\n}\n");
  }
  EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"7\",\n  \"B\": \"2\",\n  \"C\": \"3\"\n}\n");
}

TEST(SimulatedInstrument, SavingWhatIsKeptAlreadyLeavesTheFileAlone) {
  const TemporaryFolder folder;
  const auto file = folder.Put("state.json", R"({"A":"1"})");
  const auto before = std::filesystem::last_write_time(file);
  auto instrument = KeptIn(file);
  instrument.SwitchOn();
  instrument.Answer("SET_CALIBRATION A 1");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
  EXPECT_EQ(BytesOf(file), R"({"A":"1"})");
  EXPECT_EQ(std::filesystem::last_write_time(file), before);
}

TEST(SimulatedInstrument, OneValueThatIsSavedAgainAndAgainDoesNotLetTheFileGrow) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  auto instrument = KeptIn(file);
  for (int round = 0; round < 300; ++round) {
    instrument.Answer("SET_CALIBRATION A " + std::to_string(1000 + round));
    ASSERT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
    ASSERT_LT(BytesOf(file).size(), 100U);
  }
}

TEST(SimulatedInstrument, AChangeOfTheFileByAnotherProgramDoesNotKeepItFromSaving) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  auto instrument = KeptIn(file);
  instrument.Answer("SET_CALIBRATION A 1");
  instrument.Answer("SET_CALIBRATION SAVE");
  folder.Put("state.json", "something else");
  instrument.Answer("SET_CALIBRATION B 2");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
  EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"1\",\n  \"B\": \"2\"\n}\n");
}

std::string RefusalOf(const std::string& file) {
  try {
    KeptIn(file);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(SimulatedInstrument, AMemoryServesOneInstrumentAtATimeUnderWhicheverName) {
  const TemporaryFolder folder;
  const auto file = folder.Put("state.json", "{}");
  std::filesystem::create_symlink(file, folder.Path("link.json"));
  {
    const auto instrument = KeptIn(file);
    for (const auto& name : {file, folder.Path("./state.json"), folder.Path("link.json")}) {
      EXPECT_EQ(RefusalOf(name), "\"" + name + "\" is in use by another simulated instrument (process " +
                                     std::to_string(::getpid()) + ")");
    }
  }
  EXPECT_EQ(RefusalOf(file), "accepted");
}

TEST(SimulatedInstrument, AFileUnderTheNameOfAMarkThatIsNoneStays) {
  const TemporaryFolder folder;
  const auto mark = folder.Put(".state.json.in-use", "my notes");
  EXPECT_EQ(RefusalOf(folder.Path("state.json")),
            "\"" + mark + "\" is in the way: it holds no process number");
  EXPECT_EQ(BytesOf(mark), "my notes");
}

TEST(SimulatedInstrument, AFileWithALineBreakInAKeyOrAValueIsRefused) {
  const TemporaryFolder folder;
  for (const auto* document :
       {R"({"A": "1\r\nB"})", R"({"A": "1\n"})", R"({"A\r": "1"})", R"({"A": "1\\x0aB"})"}) {
    EXPECT_NE(RefusalOf(folder.Put("state.json", document)).find(": there is a line break in \""),
              std::string::npos)
        << document;
  }
}

TEST(SimulatedInstrument, ASaveThatFailsIsNotAnswered) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("sub"));
  auto instrument = KeptIn(folder.Path("sub/state.json"));
  std::filesystem::remove_all(folder.Path("sub"));
  instrument.Answer("SET_CALIBRATION A 1");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), std::nullopt);
}

TEST(SimulatedInstrument, AnyBytesGetAnAnswerAndAreKeptToTheLetter) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  std::mt19937 random{7};
  constexpr std::string_view some = "\\x5c9b \"\xc3\xa4\xe4\x9b\x00\x1b\x7f{=";
  const auto text = [&](bool isKey) {
    std::string bytes;
    for (auto length = 1 + random() % 8; length > 0; --length) {
      const auto byte = random() % 2 == 0 ? some[random() % some.size()] : static_cast<char>(random() % 256);
      bytes += byte == '\r' || byte == '\n' || (isKey && byte == ' ') ? '\\' : byte;
    }
    return bytes;
  };
  std::map<std::string, std::string> told;
  {
    auto instrument = KeptIn(file);
    for (int round = 0; round < 5000; ++round) {
      const auto key = text(true);
      const auto value = text(false);
      ASSERT_EQ(instrument.Answer("SET_CALIBRATION " + key + " " + value), "OK");
      told[key] = value;
      if (round % 500 == 0) {
        ASSERT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
      }
    }
    ASSERT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
  }
  auto again = KeptIn(file);
  for (const auto& [key, value] : told) {
    ASSERT_EQ(again.Answer("GET_CALIBRATION " + key), key + "=" + value) << testing::PrintToString(key);
  }
}

TEST(SimulatedInstrument, WhatHasALineBreakInItIsNoValue) {
  SimulatedInstrument instrument{{}};
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION A 1\r2"), "SYNTAX_ERROR");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION A\r 1"), "SYNTAX_ERROR");
}

TEST(SimulatedInstrument, ARestartHasWhatWasSavedAndNothingElse) {
  SimulatedInstrument instrument{{}};
  instrument.Answer("SET_CALIBRATION A 1");
  instrument.Answer("SET_CALIBRATION SAVE");
  instrument.Answer("SET_CALIBRATION A 2");
  instrument.Answer("SET_CALIBRATION B 3");
  instrument.Restart();
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION A"), "A=1");
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION B"), "SYNTAX_ERROR");
  instrument.Answer("SET_CALIBRATION SAVE");
  instrument.Restart();
  EXPECT_EQ(instrument.Answer("GET_CALIBRATION A"), "A=1");
}

}  // namespace
}  // namespace zolvane
