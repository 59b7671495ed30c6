#include "instrument/simulator/faulty_instrument.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

// Holds KEY=1 and OTHER=2, saved, before the first line that a fault can meet.
class FaultyInstrumentTest : public testing::Test {
 protected:
  FaultyInstrumentTest() {
    instrument_.Store("KEY", "1");
    instrument_.Store("OTHER", "2");
    instrument_.Answer("SET_CALIBRATION SAVE");
  }

  void Plan(FaultPlan faults) { faulty_.emplace(instrument_, std::move(faults)); }

  // The lines that it sends back, each ended by "|".
  std::string Lines(const std::string& command) {
    std::string text;
    for (const auto& line : faulty_->Answer(command).Lines) {
      text.append(line).append("|");
    }
    return text;
  }

  // What the instrument really holds.
  std::string Held(const std::string& key) { return *instrument_.Answer("GET_CALIBRATION " + key); }

  // What it holds of KEY after a fault has met the setting of it.
  std::string HeldAfter(std::string_view kind, const std::string& value) {
    Plan({std::string{kind} + "@KEY"});
    EXPECT_EQ(Lines("SET_CALIBRATION KEY " + value), "OK|");
    return Held("KEY");
  }

 private:
  SimulatedInstrument instrument_{{}};
  std::optional<FaultyInstrument> faulty_;
};

TEST_F(FaultyInstrumentTest, WithoutFaultsItIsTheInstrument) {
  Plan({});
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "OK|");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "KEY=7|");
  EXPECT_EQ(Lines("SET_CALIBRATION KEY"), "SYNTAX_ERROR|");
}

TEST_F(FaultyInstrumentTest, LinesCountFromOneWhateverTheySay) {
  Plan({"silent@2"});
  EXPECT_EQ(Lines("NONSENSE"), "SYNTAX_ERROR|");
  EXPECT_EQ(Lines("STATUS_MECH"), "");
  EXPECT_EQ(Lines("STATUS_MECH"), "SD|");
}

TEST_F(FaultyInstrumentTest, RefusedIsAnsweredSyntaxErrorAndNotStored) {
  Plan({"refuse@KEY", "refuse@3"});
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "SYNTAX_ERROR|");
  EXPECT_EQ(Held("KEY"), "KEY=1");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "KEY=1|");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "KEY=1|") << "a question is not refused";
}

TEST_F(FaultyInstrumentTest, DroppedIsAnsweredAndNotStored) {
  EXPECT_EQ(HeldAfter("drop", "7"), "KEY=1");
}

TEST_F(FaultyInstrumentTest, LimitedIsHalf) {
  EXPECT_EQ(HeldAfter("limit", "1612"), "KEY=806");
  EXPECT_EQ(HeldAfter("limit", "-7"), "KEY=-3.5");
  EXPECT_EQ(HeldAfter("limit", "text"), "KEY=text");
}

TEST_F(FaultyInstrumentTest, CutLacksTheLastCharacter) {
  EXPECT_EQ(HeldAfter("cut", "1612"), "KEY=161");
  EXPECT_EQ(HeldAfter("cut", "7"), "KEY=");
}

TEST_F(FaultyInstrumentTest, RoundedIsAWholeNumber) {
  EXPECT_EQ(HeldAfter("round", "12.5"), "KEY=13");
  EXPECT_EQ(HeldAfter("round", "-0.2"), "KEY=0");
  EXPECT_EQ(HeldAfter("round", "12"), "KEY=12");
}

TEST_F(FaultyInstrumentTest, NegatedHasTheOtherSign) {
  EXPECT_EQ(HeldAfter("negate", "1612"), "KEY=-1612");
  EXPECT_EQ(HeldAfter("negate", "-2.5"), "KEY=2.5");
}

TEST_F(FaultyInstrumentTest, Times100IsAHundredTimesAsMuch) {
  EXPECT_EQ(HeldAfter("times100", "16.12"), "KEY=1612");
}

TEST_F(FaultyInstrumentTest, RespelledIsTheSameNumber) {
  EXPECT_EQ(HeldAfter("respell", "2.5"), "KEY=2.500");
  EXPECT_EQ(HeldAfter("respell", "1612"), "KEY=1612.000");
  EXPECT_EQ(HeldAfter("respell", "text"), "KEY=text");
  EXPECT_EQ(HeldAfter("respell", "1E-05"), "KEY=1E-05");
  EXPECT_EQ(HeldAfter("respell", "-2.5e3"), "KEY=-2.5e3");
}

TEST_F(FaultyInstrumentTest, ANeighbourGetsTheValue) {
  Plan({"neighbour@OTHER"});
  EXPECT_EQ(Lines("SET_CALIBRATION OTHER 8"), "OK|");
  EXPECT_EQ(Held("OTHER"), "OTHER=2") << "no key had been set before";
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "OK|");
  EXPECT_EQ(Lines("SET_CALIBRATION OTHER 8"), "OK|");
  EXPECT_EQ(Held("KEY"), "KEY=8");
  EXPECT_EQ(Held("OTHER"), "OTHER=2");
}

TEST_F(FaultyInstrumentTest, ForgottenIsSeenAfterARestartAlone) {
  Plan({"forget@SAVE", "power@5"});
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "OK|");
  EXPECT_EQ(Lines("SET_CALIBRATION SAVE"), "OK|");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "KEY=7|");
  EXPECT_EQ(Lines("GET_CALIBRATION OTHER"), "OTHER=2|");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "KEY=1|");
}

TEST_F(FaultyInstrumentTest, ARestartComesBeforeItsLine) {
  Plan({"power@2"});
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "OK|");
  EXPECT_EQ(Lines("SET_CALIBRATION OTHER 8"), "OK|");
  EXPECT_EQ(Held("KEY"), "KEY=1");
  EXPECT_EQ(Held("OTHER"), "OTHER=8");
}

TEST_F(FaultyInstrumentTest, RepliesAreDoubledEchoedAndShifted) {
  Plan({"shift@1", "double@2", "echo@3", "shift@4", "echo@5", "double@5"});
  EXPECT_EQ(Lines("STATUS_MECH"), "") << "there was no command before";
  EXPECT_EQ(Lines("STATUS_STAGE"), "ZV400|ZV400|");
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 7"), "SET_CALIBRATION KEY 7|OK|");
  EXPECT_EQ(Lines("GET_CALIBRATION KEY"), "OK|");
  EXPECT_EQ(Lines("STATUS_MECH"), "STATUS_MECH|SD|SD|");
}

TEST_F(FaultyInstrumentTest, FaultsThatMeetOneLineAddUp) {
  Plan({"limit@KEY", "negate@KEY", "double@KEY"});
  EXPECT_EQ(Lines("SET_CALIBRATION KEY 8"), "OK|OK|");
  EXPECT_EQ(Held("KEY"), "KEY=-4");
}

TEST_F(FaultyInstrumentTest, TheOrderInWhichFaultsAreNamedDoesNotMatter) {
  for (const auto& [first, second] : {std::pair{"limit@KEY", "cut@KEY"}, std::pair{"cut@KEY", "limit@KEY"}}) {
    Plan({first, second});
    EXPECT_EQ(Lines("SET_CALIBRATION KEY 20"), "OK|");
    EXPECT_EQ(Held("KEY"), "KEY=1");
  }
}

}  // namespace
}  // namespace zolvane
