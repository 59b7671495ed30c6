#include "bench/host/command_tally.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

CommandTally TallyOf(std::string_view command, std::string_view reply) {
  CommandTally tally;
  tally.Count(command, true, reply);
  return tally;
}

TEST(CommandTally, AcceptsALineOfAnUploadThatIsAnsweredOkWithBlanksAndLineEndsAside) {
  for (const auto* reply : {"OK", "OK\r\n", " OK\t", "\r\nOK"}) {
    const auto tally = TallyOf("SET_CALIBRATION STAGE1_X 1", reply);
    EXPECT_EQ(tally.Accepted, 1U) << reply;
    EXPECT_FALSE(tally.IsFailedByReplies()) << reply;
  }
}

TEST(CommandTally, FailsByALineOfAnUploadThatIsAnsweredOtherwise) {
  for (const auto* reply : {"", "ok", "OKAY", "OK OK", "STAGE1_X=1", "SYNTAX_ERROR", "ERROR 42"}) {
    const auto tally = TallyOf("SET_CALIBRATION STAGE1_X 1", reply);
    EXPECT_EQ(tally.Accepted, 0U) << reply;
    EXPECT_EQ(tally.Refused, 1U) << reply;
    EXPECT_EQ(tally.FirstRefused->Key, "STAGE1_X");
    EXPECT_EQ(tally.FirstRefused->Reply, reply);
    EXPECT_TRUE(tally.IsFailedByReplies()) << reply;
  }
}

TEST(CommandTally, AcceptsAnAnswerToAQuestionThatHoldsAnEqualsSign) {
  EXPECT_EQ(TallyOf("GET_CALIBRATION STAGE1_X", "STAGE1_X=400\r\n").Accepted, 1U);
}

TEST(CommandTally, FailsByAnAnswerToAQuestionThatIsNoValue) {
  for (const auto* reply : {"", "OK", "250"}) {
    EXPECT_TRUE(TallyOf("GET_CALIBRATION STAGE1_X", reply).IsFailedByReplies()) << reply;
  }
}

TEST(CommandTally, FailsByUnknownKeysOnlyWhenThereIsNothingElse) {
  auto tally = TallyOf("GET_CALIBRATION STAGE1_X", "SYNTAX_ERROR");
  EXPECT_TRUE(tally.IsFailedByReplies());
  tally.Count("GET_CALIBRATION STAGE1_Y", true, "STAGE1_Y=1");
  EXPECT_FALSE(tally.IsFailedByReplies());
  EXPECT_EQ(tally.Refused, 1U);
}

TEST(CommandTally, TakesWhateverAQueryIsAnsweredForItsAnswer) {
  for (const auto* reply : {"ZV400", "96/384", "PUMPS OPEN", "1,2,,4,5"}) {
    EXPECT_EQ(TallyOf("STATUS_STAGE", reply).Accepted, 1U) << reply;
  }
}

TEST(CommandTally, CountsAQueryThatTheInstrumentDoesNotKnowAsRefusedButNotAsAFailure) {
  for (const auto* reply : {"SYNTAX_ERROR\r\n", ""}) {
    const auto tally = TallyOf("RFID READ_PERSISTENT", reply);
    EXPECT_EQ(tally.Refused, 1U) << reply;
    EXPECT_EQ(tally.FirstRefused->Key, "RFID READ_PERSISTENT");
    EXPECT_FALSE(tally.IsFailedByReplies()) << reply;
  }
}

TEST(CommandTally, KeepsTheFirstOfEachKind) {
  CommandTally tally;
  for (const auto* command : {"SET_CALIBRATION A 1", "SET_CALIBRATION B 2"}) {
    tally.Count(command, false, "left over");
    tally.Count(command, true, "no");
  }
  EXPECT_EQ(tally.Sent, 4U);
  EXPECT_EQ(tally.NotAnswered, 2U);
  EXPECT_EQ(tally.FirstNotAnswered, "A");
  EXPECT_EQ(tally.FirstRefused->Key, "A");
}

TEST(CommandTally, TellsWhatBecameOfTheSave) {
  EXPECT_TRUE(TallyOf("SET_CALIBRATION SAVE", "OK").IsSaveAccepted);
  const auto refused = TallyOf("SET_CALIBRATION SAVE", "SYNTAX_ERROR");
  EXPECT_TRUE(refused.IsSaveSent);
  EXPECT_FALSE(refused.IsSaveAccepted);
  EXPECT_FALSE(TallyOf("SET_CALIBRATION SAVE_X 1", "OK").IsSaveSent);
}

TEST(CommandTally, CountsWhatWasNotSent) {
  auto tally = TallyOf("SET_CALIBRATION A 1", "OK");
  EXPECT_EQ(tally.NotSent(), 0U);
  tally.Expected = 36;
  EXPECT_EQ(tally.Total(), 36U);
  EXPECT_EQ(tally.NotSent(), 35U);
}

TEST(CommandTally, CountsWhatTheLinkCouldNotSendAsNotSent) {
  auto tally = TallyOf("SET_CALIBRATION A 1", "OK");
  tally.Undelivered = 2;
  EXPECT_EQ(tally.Total(), 3U);
  EXPECT_EQ(tally.NotSent(), 2U);
}

}  // namespace
}  // namespace zolvane
