#include "custody/transfer/twin_link.h"

#include <gtest/gtest.h>

#include "custody/support/transfer_room.h"

namespace zolvane {
namespace {

Values Answers() {
  auto values = ValuesOf({{"A", "1"}});
  values.Add({.Name = "NEW", .Text = std::nullopt});
  values.Add({.Name = "LOST", .Text = std::nullopt, .WasAnswered = false});
  return values;
}

TEST(TwinLink, AnswersWhatTheInstrumentAnsweredAndStoresWhatItIsSent) {
  TwinLink twin{Answers(), nullptr, noInterrupt};
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION A"), "A=1");
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION NEW"), "SYNTAX_ERROR");
  EXPECT_EQ(SendLine(twin, "SET_CALIBRATION A 2"), "OK");
  EXPECT_EQ(SendLine(twin, "SET_CALIBRATION SAVE"), "OK");
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION A"), "A=2");
  EXPECT_EQ(AskCalibration(twin, "A").Text, "2");
  EXPECT_EQ(AskCalibration(twin, "NEW").Text, std::nullopt);
  EXPECT_TRUE(twin.Guesses().empty());
}

TEST(TwinLink, SaysWhatItHadToGuess) {
  TwinLink twin{Answers(), nullptr, noInterrupt};
  SendLine(twin, "SET_CALIBRATION NEW 5");
  SendLine(twin, "SET_CALIBRATION NEW 6");
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION LOST"), "SYNTAX_ERROR");
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION LOST"), "SYNTAX_ERROR");
  EXPECT_EQ(twin.Guesses(),
            (std::vector<std::string>{
                "the instrument may not know the key NEW; it is assumed to store it",
                "nobody asked the instrument \"GET_CALIBRATION LOST\", and it is taken to refuse it"}));
}

TEST(TwinLink, AsksTheOriginalOnceAndTellsItNothing) {
  const auto original = InstrumentWith({{"A", "1"}}, {"silent@3"});
  TwinLink twin{Values{}, original, noInterrupt};
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION A"), "A=1");
  EXPECT_EQ(SendLine(twin, "GET_CALIBRATION A"), "A=1");
  EXPECT_EQ(SendLine(twin, "SET_CALIBRATION A 2"), "OK");
  EXPECT_EQ(SendLine(twin, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(SendLine(twin, "STATUS_MECH"), std::nullopt) << "the third line that the original sees";
  EXPECT_EQ(SendLine(twin, "RFID ON"), "SYNTAX_ERROR");
  EXPECT_EQ(HeldBy(*original, "A"), "1");
}

}  // namespace
}  // namespace zolvane
