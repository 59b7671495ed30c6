// Which line answers which command. Nothing here waits or opens anything.
#include "instrument/links/wire_rules.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

using Verdict = WireRules::Verdict;
class WireRulesTest : public testing::Test {
 protected:
  WireRulesTest() { Rules.Connect(); }

  // The command is answered at once.
  void Exchange(std::string_view command, std::string_view reply) {
    Rules.Ask(command);
    ASSERT_EQ(Rules.Hear(reply), Verdict::Answer) << command << ": " << reply;
  }

  void Miss(std::string_view command) {
    Rules.Ask(command);
    Rules.TimeOut();
  }

  WireRules Rules;
};

// ---- Replies that name a key

TEST_F(WireRulesTest, ALineThatNamesTheKeyAnswersTheQuestionForIt) {
  Exchange("GET_CALIBRATION STAGE1_X", "STAGE1_X=2016");
  Exchange("GET_CALIBRATION STAGE1_X", " STAGE1_X = 2016");
  Exchange("GET_CALIBRATION PickUp_8 CH_Z", "PickUp_8 CH_Z=12");
  Exchange("GET_CALIBRATION STAGE1_X", "STAGE1_X=SYNTAX_ERROR");
}

TEST_F(WireRulesTest, ALineThatNamesAnotherKeyIsNotTheReply) {
  Rules.Ask("GET_CALIBRATION STAGE1_Y");
  EXPECT_EQ(Rules.Hear("STAGE1_X=2016"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("RACK_STAGE1_Y=5"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("STAGE1_YY=5"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("STAGE1_X=SYNTAX_ERROR"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("STAGE1_Y=2487"), Verdict::Answer);
}

TEST_F(WireRulesTest, AnotherCaseAnswersWhileThatSpellingIsNotOwed) {
  Exchange("GET_CALIBRATION PickUp_1CHSHORT_Z", "PICKUP_1chshort_Z=7");
  Miss("GET_CALIBRATION PickUp_1ChShort_Z");
  ASSERT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE1_X");  // what was answered reads like what is owed
  ASSERT_EQ(Rules.Hear("STAGE1_X=1"), Verdict::Answer);
  Rules.Ask("GET_CALIBRATION PickUp_1CHSHORT_Z");
  EXPECT_EQ(Rules.Hear("PickUp_1ChShort_Z=5"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("PickUp_1ChShort_Z=7"), Verdict::Answer) << "the debt has been paid";
}

TEST_F(WireRulesTest, ALineThatNamesAKeyAnswersNothingButTheQuestionForIt) {
  for (const auto* command : {"SET_CALIBRATION STAGE1_X 5", "STATUS_STAGE", "RFID ON"}) {
    Rules.Ask(command);
    EXPECT_EQ(Rules.Hear("STAGE1_X=2016"), Verdict::Skip) << command;
    EXPECT_EQ(Rules.Hear("OK"), Verdict::Answer) << command;
  }
}

TEST_F(WireRulesTest, AnEqualSignBehindAListOrAStatusTextNamesNoKey) {
  for (const auto* reply : {"RFID,PERSISTENT,TAG=,READ,OK", "PUMPS CLOSED (A=1)", "=5", "\x01\x02=5"}) {
    Exchange("STATUS PUMPS", reply);
  }
}

// ---- Replies that name nothing

TEST_F(WireRulesTest, AnyLineAnswersACommandThatIsNoQuestion) {
  Exchange("SET_CALIBRATION A 1", "OK");
  Exchange("SET_CALIBRATION A 1", "SYNTAX_ERROR");
  Exchange("SET_CALIBRATION A 1", "ERROR 42");
  Exchange("STATUS_STAGE", "");
}

TEST_F(WireRulesTest, ASyntaxErrorAnswersAQuestion) {
  Exchange("GET_CALIBRATION A", "SYNTAX_ERROR");
  Exchange("GET_CALIBRATION A", "?SYNTAX_ERROR: no such key");
}

TEST_F(WireRulesTest, ABareLineDoesNotAnswerAQuestionAndIsQuoted) {
  Exchange("GET_CALIBRATION A", "A=1");
  Rules.Ask("GET_CALIBRATION B");
  for (const auto* line : {"HELLO", "OK", "", "250", "250"}) {
    EXPECT_EQ(Rules.Hear(line), Verdict::Skip) << line;
  }
  Rules.TimeOut();
  EXPECT_EQ(Rules.SkippedLine(), "HELLO");
}

TEST_F(WireRulesTest, ALineThatAnEarlierCommandIsOwedIsNotQuoted) {
  Miss("GET_CALIBRATION A");
  Rules.AskForPlace();
  ASSERT_EQ(Rules.Hear("STAGE1_X=1"), Verdict::Answer);
  Rules.Ask("GET_CALIBRATION B");
  EXPECT_EQ(Rules.Hear("A=1"), Verdict::Skip);
  EXPECT_EQ(Rules.SkippedLine(), std::nullopt);
  EXPECT_EQ(Rules.Hear("A=1"), Verdict::Skip) << "a second time it is owed to nobody";
  EXPECT_EQ(Rules.SkippedLine(), "A=1");
}

TEST_F(WireRulesTest, ALineThatEqualsTheCommandIsAnEcho) {
  for (const auto* command : {"GET_CALIBRATION A", "SET_CALIBRATION A 1", "STATUS_STAGE"}) {
    Rules.Ask(command);
    EXPECT_EQ(Rules.Hear(command), Verdict::Skip) << command;
    EXPECT_EQ(Rules.Hear(command), Verdict::Skip) << command;
    EXPECT_EQ(Rules.Hear("A=1") == Verdict::Answer || Rules.Hear("OK") == Verdict::Answer, true) << command;
    EXPECT_EQ(Rules.SkippedLine().value_or("A=1"), "A=1") << command;
  }
}

TEST_F(WireRulesTest, WithNoCommandInHandEveryLineIsSkipped) {
  for (const auto* line : {"OK", "A=1", "250", "SYNTAX_ERROR"}) {
    EXPECT_EQ(Rules.Hear(line), Verdict::Skip) << line;
  }
}

TEST_F(WireRulesTest, AKeyWithABlankInItIsKnownAgainInALaterLine) {
  constexpr std::string_view question = "GET_CALIBRATION PickUp_8 CH_Z";
  constexpr std::string_view answer = "PickUp_8 CH_Z=12";
  Exchange(question, answer);
  Rules.Ask("STATUS_STAGE");
  EXPECT_EQ(Rules.Hear(answer), Verdict::Skip) << "it has come twice";
  EXPECT_EQ(Rules.Hear("ZV400"), Verdict::Answer);
  Rules.Ask(question);
  Rules.Disconnect();
  Rules.Connect();
  Rules.Ask("STATUS_STAGE");
  EXPECT_EQ(Rules.Hear(answer), Verdict::Skip) << "it is late";
  EXPECT_EQ(Rules.Hear("ZV400"), Verdict::Answer);
  Miss("STATUS_STAGE");
  EXPECT_EQ(Rules.AskForPlace(), question) << "the debt has been paid";
}

// ---- Instruments that answer with bare values

TEST_F(WireRulesTest, ABareValueThatComesTwiceIsTheAnswerAndSoAreAllBehindIt) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("250"), Verdict::AskAgain);
  EXPECT_EQ(Rules.Hear("250"), Verdict::Answer);
  Exchange("GET_CALIBRATION B", "-13.5");
  Exchange("GET_CALIBRATION C", "SYNTAX_ERROR");
}

TEST_F(WireRulesTest, AStrayNumberIsNoValue) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("17"), Verdict::AskAgain);
  EXPECT_EQ(Rules.Hear("250"), Verdict::Skip) << "the question is repeated once";
  EXPECT_EQ(Rules.Hear("250"), Verdict::Answer);
}

TEST_F(WireRulesTest, OnlyNumbersAreBareValues) {
  Rules.Ask("GET_CALIBRATION A");
  for (const auto* line : {"BUSY", "BUSY", "ERROR 42", "ERROR 42", "", "", "OK", "OK"}) {
    EXPECT_EQ(Rules.Hear(line), Verdict::Skip) << line;
  }
}

TEST_F(WireRulesTest, OnceAReplyHasNamedAKeyBareValuesAnswerNothing) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("17"), Verdict::AskAgain);
  EXPECT_EQ(Rules.Hear("A=1"), Verdict::Answer);
  Rules.Ask("GET_CALIBRATION B");
  EXPECT_EQ(Rules.Hear("17"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("17"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("A=1"), Verdict::Skip) << "the answer to the repeated question";
  EXPECT_EQ(Rules.Hear("B=2"), Verdict::Answer);
}

TEST_F(WireRulesTest, ALineThatWasOverheardHasNamedAKeyToo) {
  Rules.Overhear("Z=1");
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("17"), Verdict::Skip);
}

// Else the second one would be taken for the answer to the next question.
TEST_F(WireRulesTest, ARepeatedQuestionIsRefusedWhenBothTimesAre) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("17"), Verdict::AskAgain);
  EXPECT_EQ(Rules.Hear("SYNTAX_ERROR"), Verdict::Skip);
  EXPECT_EQ(Rules.SkippedLine(), "17");
  EXPECT_EQ(Rules.Hear("SYNTAX_ERROR"), Verdict::Answer);
  Exchange("GET_CALIBRATION B", "B=2");
}

TEST_F(WireRulesTest, WhatIsOverheardBeforeAQuestionIsRepeatedWasForItsFirstTime) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("17"), Verdict::AskAgain);
  Rules.Overhear("SYNTAX_ERROR");
  Rules.Overhear("SYNTAX_ERROR");
  EXPECT_EQ(Rules.Hear("SYNTAX_ERROR"), Verdict::Answer);
  Rules.Ask("GET_CALIBRATION B");
  EXPECT_EQ(Rules.Hear("17"), Verdict::AskAgain);
  Rules.Overhear("B=2");
  EXPECT_EQ(Rules.Hear("B=2"), Verdict::Answer);
  Miss("STATUS_STAGE");
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION B") << "nothing is owed for it";
}

// Both late values, the same as they are, would prove themselves for the next question.
TEST_F(WireRulesTest, AConnectionThatEndsWhenAQuestionWasRepeatedLosesThePlace) {
  Rules.Ask("GET_CALIBRATION A");
  EXPECT_EQ(Rules.Hear("250"), Verdict::AskAgain);
  Rules.Disconnect();
  EXPECT_TRUE(Rules.IsLost());
}

TEST_F(WireRulesTest, BareValuesProveThemselvesOnEachConnection) {
  Rules.Ask("GET_CALIBRATION A");
  Rules.Hear("250");
  ASSERT_EQ(Rules.Hear("250"), Verdict::Answer);
  Rules.Connect();
  Rules.Ask("GET_CALIBRATION B");
  EXPECT_EQ(Rules.Hear("250"), Verdict::AskAgain);
}

TEST_F(WireRulesTest, NothingFindsThePlaceAmongBareValues) {
  Rules.Ask("GET_CALIBRATION A");
  Rules.Hear("250");
  ASSERT_EQ(Rules.Hear("250"), Verdict::Answer);
  Miss("GET_CALIBRATION B");
  Rules.AskForPlace();
  EXPECT_EQ(Rules.Hear("250"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("250"), Verdict::Skip);
  EXPECT_TRUE(Rules.IsLost());
}

// ---- After a missing reply

TEST_F(WireRulesTest, TheKeyAnsweredLastShowsThePlace) {
  Exchange("GET_CALIBRATION A", "A=1");
  Exchange("GET_CALIBRATION B", "B=2");
  Exchange("GET_CALIBRATION C", "SYNTAX_ERROR");
  Miss("SET_CALIBRATION A 1");
  ASSERT_TRUE(Rules.IsLost());
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION B");
  for (const auto* line : {"OK", "SYNTAX_ERROR", "A=1", "", "GET_CALIBRATION B", "2"}) {
    EXPECT_EQ(Rules.Hear(line), Verdict::Skip) << line;
    EXPECT_TRUE(Rules.IsLost()) << line;
  }
  EXPECT_EQ(Rules.Hear("B=2"), Verdict::Answer);
  EXPECT_FALSE(Rules.IsLost());
}

TEST_F(WireRulesTest, BeforeAnyReplyThePlaceIsAskedForWithKeysThatEveryInstrumentHolds) {
  Miss("STATUS_STAGE");
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE1_X");
  Rules.TimeOut();
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE2_X");
  EXPECT_EQ(Rules.Hear("STAGE1_X=1"), Verdict::Skip) << "that is the answer to the first";
  EXPECT_EQ(Rules.Hear("STAGE2_X=2"), Verdict::Answer);
}

TEST_F(WireRulesTest, AKeyThatIsOwedAnAnswerIsNeverAskedForThePlace) {
  Exchange("GET_CALIBRATION A", "A=1");
  Exchange("GET_CALIBRATION B", "B=1");
  Miss("GET_CALIBRATION B");
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION A");
  Rules.TimeOut();
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE1_X");
}

TEST_F(WireRulesTest, WhatIsOwedStaysOwedOverANewConnection) {
  Miss("GET_CALIBRATION STAGE1_X");
  Rules.Connect();
  EXPECT_TRUE(Rules.IsLost());
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE2_X");
}

TEST_F(WireRulesTest, APaidDebtFreesItsKey) {
  Miss("GET_CALIBRATION STAGE1_X");
  Rules.Overhear("STAGE1_X=1");
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE1_X");
}

TEST_F(WireRulesTest, WithEveryKeyOwedTheLateAnswerToTheLastLineShowsThePlace) {
  Miss("GET_CALIBRATION STAGE1_X");
  ASSERT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE2_X");
  Rules.TimeOut();
  EXPECT_FALSE(Rules.HasQuestionForPlace());
  EXPECT_EQ(Rules.AskForPlace(), std::nullopt);
  EXPECT_EQ(Rules.Hear("STAGE1_X=1"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("STAGE2_X=2"), Verdict::Answer);
  EXPECT_FALSE(Rules.IsLost());
}

TEST_F(WireRulesTest, ALateAnswerToAnythingButTheLastLineShowsNothing) {
  Rules.Ask("GET_CALIBRATION STAGE1_X");
  Rules.Disconnect();
  Rules.Ask("GET_CALIBRATION STAGE2_X");
  Rules.Disconnect();
  Miss("STATUS_STAGE");
  EXPECT_EQ(Rules.AskForPlace(), std::nullopt);
  EXPECT_EQ(Rules.Hear("STAGE2_X=2"), Verdict::Skip)
      << "it was asked before the command that is owed its text";
  EXPECT_TRUE(Rules.IsLost());
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE2_X");
}

TEST_F(WireRulesTest, AConnectionThatEndsOwesAnAnswerButLosesNoPlace) {
  Rules.Ask("GET_CALIBRATION STAGE1_X");
  Rules.Disconnect();
  EXPECT_FALSE(Rules.IsLost());
  Rules.Connect();
  Miss("STATUS_STAGE");
  EXPECT_EQ(Rules.AskForPlace(), "GET_CALIBRATION STAGE2_X");
}

// A line that keeps its order: whatever is late, no question ever gets a line that another one is owed.
TEST_F(WireRulesTest, ALateReplyPassesNoLaterOneOff) {
  Exchange("GET_CALIBRATION A", "A=1");
  Miss("SET_CALIBRATION A 1");
  Rules.AskForPlace();
  EXPECT_EQ(Rules.Hear("OK"), Verdict::Skip);
  EXPECT_EQ(Rules.Hear("A=1"), Verdict::Answer);
  Exchange("SET_CALIBRATION A 1", "OK");
}

}  // namespace
}  // namespace zolvane
