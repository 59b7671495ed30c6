#include "bench/simulator/instrument.h"

#include <gtest/gtest.h>

#include <random>

#include "bench/simulator/faults.h"
#include "bench/usage_error.h"
#include "support/temporary_folder.h"

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
  auto instrument = KeptIn(file);
  instrument.SwitchOn();
  instrument.Answer("SET_CALIBRATION B 2");
  instrument.Answer("SET_CALIBRATION A 1");
  EXPECT_EQ(BytesOf(file), "{}\n");
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
  EXPECT_EQ(BytesOf(file), "{\n  \"A\": \"1\",\n  \"B\": \"2\"\n}\n");
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"state.json"});
}

TEST(SimulatedInstrument, ASaveThatFailsIsNotAnswered) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("sub"));
  auto instrument = KeptIn(folder.Path("sub/state.json"));
  std::filesystem::remove_all(folder.Path("sub"));
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), std::nullopt);
}

TEST(SimulatedInstrument, AnyBytesGetAnAnswerAndCanBeKept) {
  const TemporaryFolder folder;
  auto instrument = KeptIn(folder.Path("state.json"));
  std::mt19937 random{7};
  for (int round = 0; round < 5000; ++round) {
    std::string command = round % 2 == 0 ? "SET_CALIBRATION " : "GET_CALIBRATION ";
    for (auto length = random() % 12; length > 0; --length) {
      command += static_cast<char>(random() % 256);
    }
    EXPECT_TRUE(instrument.Answer(command).has_value());
  }
  EXPECT_EQ(instrument.Answer("SET_CALIBRATION SAVE"), "OK");
  EXPECT_NO_THROW(KeptIn(folder.Path("state.json")));
}

TEST(Faults, AKindAndANumberMakeAPlan) {
  FaultPlan plan;
  AddFault(plan, "late@3");
  AddFault(plan, "no-newline@12");
  EXPECT_EQ(plan, (FaultPlan{{3, Fault::Late}, {12, Fault::NoNewline}}));
}

TEST(Faults, EveryKindHasItsName) {
  const std::vector<std::pair<std::string, Fault>> kinds{
      {"late@1", Fault::Late},         {"silent@1", Fault::Silent},        {"close@1", Fault::Close},
      {"garbage@1", Fault::Garbage},   {"empty@1", Fault::Empty},          {"split@1", Fault::Split},
      {"overlong@1", Fault::Overlong}, {"no-newline@1", Fault::NoNewline},
  };
  for (const auto& [text, kind] : kinds) {
    FaultPlan plan;
    AddFault(plan, text);
    EXPECT_EQ(plan.at(1), kind) << text;
  }
}

TEST(Faults, AnythingElseIsRefused) {
  FaultPlan plan;
  for (const auto* text : {"", "late", "@1", "late@", "late@0", "late@x", "late@1x", "Late@1", "late@-1"}) {
    EXPECT_THROW(AddFault(plan, text), UsageError) << text;
  }
  EXPECT_TRUE(plan.empty());
}

}  // namespace
}  // namespace zolvane
