#include "custody/transfer/proving_link.h"

#include <gtest/gtest.h>

#include "custody/support/transfer_room.h"
#include "instrument/links/scripted_link.h"

namespace zolvane {
namespace {

const Settings heldAtFirst{{"A", "1"}, {"B", "2"}, {"C", "3.5"}};
const Settings wholeScript{{"A", "10"}, {"B", "20"}, {"C", "3.75"}};

// The instrument with its faults, and the proving link in front of it.
struct Room {
  explicit Room(FaultPlan faults = {}, ProvingLink::Setup setup = {.Found = ValuesOf(heldAtFirst)})
      : Instrument{InstrumentWith(heldAtFirst, std::move(faults))},
        Link{Instrument, std::move(setup), Interrupt} {}

  // Each key with what became of it, "A verified, B differs kept".
  std::string Verdicts() const {
    std::string text;
    for (const auto& verdict : Link.Verdicts()) {
      text.append(text.empty() ? "" : ", ").append(verdict.Key).append(" ").append(NameOf(verdict.Is));
      text.append(verdict.Why == Cause::None ? "" : " ").append(NameOf(verdict.Why));
    }
    return text;
  }

  InterruptFlag Interrupt;
  std::shared_ptr<BenchLink> Instrument;
  ProvingLink Link;
};

TEST(ProvingLink, AfterAProofOfEveryValueSaveGoesOn) {
  Room room;
  EXPECT_TRUE(Upload(room.Link, wholeScript));
  EXPECT_EQ(room.Verdicts(), "A verified, B verified, C verified");
  EXPECT_TRUE(room.Link.Tally().IsSaved);
  EXPECT_EQ(room.Link.Tally().Accepted, 3U);
  EXPECT_EQ(room.Link.Problem(), "");
}

TEST(ProvingLink, AValueThatDidNotArriveHoldsSaveBack) {
  Room room{{"drop@B"}};
  EXPECT_FALSE(Upload(room.Link, wholeScript));
  EXPECT_EQ(room.Verdicts(), "A verified, B differs kept, C verified");
  EXPECT_FALSE(room.Link.Tally().SaveWasSent);
  EXPECT_FALSE(room.Link.LastDelivery().HasLeft);
  EXPECT_EQ(
      room.Link.Problem(),
      "SAVE was not sent, as 1 of 3 values did not arrive; the first: B holds \"2\" and not \"20\" (kept)");
}

TEST(ProvingLink, ARespelledValueIsProven) {
  Room room{{"respell@A", "respell@C"}};
  EXPECT_TRUE(Upload(room.Link, wholeScript));
  EXPECT_EQ(room.Verdicts(), "A verified, B verified, C verified");
}

TEST(ProvingLink, ARoundedValueIsProvenIfThatIsLetPass) {
  Room strict{{"round@C"}};
  EXPECT_FALSE(Upload(strict.Link, wholeScript));
  EXPECT_EQ(strict.Verdicts(), "A verified, B verified, C differs rounded");
  Room lenient{{"round@C"}, {.Found = ValuesOf(heldAtFirst), .LetsRoundedPass = true}};
  EXPECT_TRUE(Upload(lenient.Link, wholeScript));
  EXPECT_EQ(lenient.Verdicts(), "A verified, B verified, C differs rounded");
  EXPECT_TRUE(lenient.Link.Tally().IsSaved);
}

// What it was rounded to before is what it is rounded to again.
TEST(ProvingLink, ARoundedValueThatWasHeldBeforeIsProvenIfThatIsLetPass) {
  Room room{{"round@C"}, {.Found = ValuesOf(heldAtFirst), .LetsRoundedPass = true}};
  ASSERT_TRUE(Upload(room.Link, wholeScript));
  const auto found = WireFaceOfInstrument(*room.Instrument, NamesOf(ValuesOf(wholeScript)));
  for (const bool mayRound : {true, false}) {
    ProvingLink again{room.Instrument, {.Found = found, .LetsRoundedPass = mayRound}, room.Interrupt};
    EXPECT_EQ(Upload(again, wholeScript), mayRound);
  }
}

TEST(ProvingLink, AnUnreadableValueIsProvenIfThatIsLetPassAndARefusedOneNever) {
  const Settings unknown{{"A", "10"}, {"NEW", "5"}};
  for (const auto* fault : {"drop@NEW", "refuse@NEW"}) {
    Room strict{{fault}};
    EXPECT_FALSE(Upload(strict.Link, unknown));
    Room lenient{{fault}, {.Found = ValuesOf(heldAtFirst), .LetsUnreadablePass = true}};
    EXPECT_EQ(Upload(lenient.Link, unknown), fault == std::string{"drop@NEW"});
  }
}

TEST(ProvingLink, AfterALineWithoutAnswerNothingIsAsked) {
  Room room{{"silent@2"}};
  EXPECT_FALSE(Upload(room.Link, wholeScript));
  EXPECT_EQ(room.Link.Tally().UnknownSince, 2U);
  EXPECT_EQ(room.Link.Tally().Answered, 1U);
  EXPECT_FALSE(SendLine(room.Link, "SET_CALIBRATION SAVE"));
  EXPECT_EQ(room.Verdicts(), "A unknown, B unknown");
  EXPECT_EQ(HeldBy(*room.Instrument, "B"), "20") << "the third line on the wire is this question";
}

TEST(ProvingLink, AQuestionWithoutAnswerEndsTheProof) {
  Room room{{"silent@5"}};
  EXPECT_FALSE(Upload(room.Link, wholeScript));
  EXPECT_EQ(room.Verdicts(), "A verified, B unknown, C unknown");
  EXPECT_EQ(room.Link.Tally().UnknownSince, 2U);
  EXPECT_EQ(room.Link.Problem(), "the instrument did not answer for B, so SAVE was not sent");
}

TEST(ProvingLink, WhatIsUnknownIsCountedFromTheFirstLineSent) {
  const ProvingLink::Setup setup{.Found = ValuesOf(heldAtFirst), .Arrived = {{"A", "1", {}}}};
  Room cut{{"silent@2"}, setup};
  EXPECT_FALSE(Upload(cut.Link, {{"B", "20"}, {"C", "3.75"}}));
  EXPECT_EQ(cut.Link.Tally().UnknownSince, 2U);
  Room asked{{"silent@5"}, setup};
  EXPECT_FALSE(Upload(asked.Link, {{"B", "20"}, {"C", "3.75"}}));
  EXPECT_EQ(asked.Verdicts(), "A verified, B verified, C unknown");
  EXPECT_EQ(asked.Link.Tally().UnknownSince, 2U);
}

TEST(ProvingLink, AnInterruptEndsTheProof) {
  Room room;
  for (const auto& [key, text] : wholeScript) {
    SendLine(room.Link, "SET_CALIBRATION " + key + " " + text);
  }
  room.Interrupt.Raise();
  EXPECT_FALSE(SendLine(room.Link, "SET_CALIBRATION SAVE"));
  EXPECT_FALSE(room.Link.Tally().SaveWasSent);
  EXPECT_EQ(room.Verdicts(), "A unknown, B unknown, C unknown");
}

// An earlier operation sent the same values, and did not come to its SAVE.
TEST(ProvingLink, ARestartShowsInWhatHadChangedBeforeThisTransfer) {
  const Settings kept{{"A", "1"}, {"B", "20"}, {"C", "3.75"}};
  for (const auto* fault : {"power@9", "power@10"}) {
    const auto instrument = InstrumentWith(kept, FaultPlan{fault});
    for (const auto& [key, text] : wholeScript) {
      SendLine(*instrument, "SET_CALIBRATION " + key + " " + text);
    }
    const InterruptFlag interrupt;
    ProvingLink again{instrument, {.Found = ValuesOf(wholeScript), .Kept = ValuesOf(kept)}, interrupt};
    EXPECT_FALSE(Upload(again, wholeScript)) << fault;
    EXPECT_FALSE(again.Tally().IsSaved) << fault;
  }
}

// This one puts a value back to what was kept, so that a restart changes nothing of it.
TEST(ProvingLink, ARestartIsLookedForInAValueThatItChanges) {
  const Settings kept{{"A", "1"}, {"B", "2"}};
  const Settings unsaved{{"A", "10"}, {"B", "20"}};
  const auto instrument = InstrumentWith(kept, FaultPlan{"power@7"});
  for (const auto& [key, text] : unsaved) {
    SendLine(*instrument, "SET_CALIBRATION " + key + " " + text);
  }
  const InterruptFlag interrupt;
  ProvingLink link{instrument, {.Found = ValuesOf(unsaved), .Kept = ValuesOf(kept)}, interrupt};
  EXPECT_FALSE(Upload(link, {{"A", "1"}, {"B", "20"}}));
  EXPECT_NE(link.Problem().find("asked for B"), std::string::npos) << link.Problem();
}

// What the history knows of the values that were kept may be of some of them, or stale.
TEST(ProvingLink, ARestartIsFoundAlsoBesideOlderValuesThatWereNotSaved) {
  const Settings kept{{"A", "1"}, {"B", "2"}, {"C", "3"}};
  for (const Settings& known : {Settings{{"B", "2"}}, Settings{{"A", "7"}, {"B", "2"}, {"C", "3"}}}) {
    for (const auto* fault : {"power@6", "power@7"}) {
      const auto instrument = InstrumentWith(kept, FaultPlan{fault});
      const InterruptFlag interrupt;
      ProvingLink link{instrument, {.Found = ValuesOf(kept), .Kept = ValuesOf(known)}, interrupt};
      EXPECT_FALSE(Upload(link, {{"A", "1"}, {"B", "2"}, {"C", "30"}})) << fault;
      EXPECT_FALSE(link.Tally().IsSaved) << fault;
    }
  }
}

// The last value is the one that the instrument holds already: what it answers says nothing about a restart.
TEST(ProvingLink, ARestartAtAnyQuestionHoldsSaveBack) {
  for (const auto* last : {"3.5", "3.75"}) {
    for (const auto* fault : {"power@4", "power@5", "power@6"}) {
      Room room{{fault}};
      EXPECT_FALSE(Upload(room.Link, {{"A", "10"}, {"B", "20"}, {"C", last}})) << fault;
      EXPECT_FALSE(room.Link.Tally().SaveWasSent) << fault << " " << last;
    }
  }
}

// A rounded value that is let pass may be what it was before.
TEST(ProvingLink, ARestartHoldsSaveBackAlsoBehindARoundedValue) {
  const Settings script{{"B", "20"}, {"A", "1.4"}};
  for (const auto* fault : {"power@4", "power@5"}) {
    Room room{{"round@A", fault}, {.Found = ValuesOf(heldAtFirst), .LetsRoundedPass = true}};
    EXPECT_FALSE(Upload(room.Link, script)) << fault;
    EXPECT_FALSE(room.Link.Tally().SaveWasSent) << fault;
  }
}

TEST(ProvingLink, WhatWasNotAnsweredIsNamedWhereverItIsAsked) {
  Room room{{"silent@5"}};
  EXPECT_FALSE(Upload(room.Link, {{"A", "10"}, {"B", "20"}, {"C", "3.5"}}));
  EXPECT_EQ(room.Verdicts(), "A verified, B unknown, C unknown");
  EXPECT_EQ(room.Link.Tally().UnknownSince, 2U);
  EXPECT_EQ(room.Link.Problem(), "the instrument did not answer for C, so SAVE was not sent");
}

TEST(ProvingLink, ARestartBetweenProofAndSaveIsNoticed) {
  for (const auto* fault : {"power@6", "power@7"}) {
    Room room{{fault}};
    EXPECT_FALSE(Upload(room.Link, wholeScript)) << fault;
    EXPECT_FALSE(room.Link.Tally().IsSaved) << fault;
  }
  Room room{{"power@7"}};
  EXPECT_FALSE(Upload(room.Link, wholeScript));
  EXPECT_TRUE(room.Link.Tally().SaveWasSent);
  EXPECT_EQ(
      room.Link.Problem(),
      "SAVE was answered, but the instrument no longer holds what was sent: it may have restarted; asked "
      "for C");
}

TEST(ProvingLink, ASaveThatIsRefusedIsHandedBackAndIsNoSaving) {
  Room room{{"refuse@SAVE"}};
  EXPECT_TRUE(Upload(room.Link, wholeScript));
  EXPECT_TRUE(room.Link.Tally().SaveWasSent);
  EXPECT_FALSE(room.Link.Tally().IsSaved);
}

TEST(ProvingLink, WhatArrivedEarlierIsProvenWithTheRest) {
  const Settings rest{{"C", "3.75"}};
  Room room{{}, {.Found = ValuesOf(heldAtFirst), .Arrived = {{"A", "1", {}}, {"B", "20", {}}}}};
  EXPECT_FALSE(Upload(room.Link, rest));
  EXPECT_EQ(room.Verdicts(), "A verified, B differs kept, C verified");
}

TEST(ProvingLink, OneQuestionForEachKeyAndOneBehindSave) {
  Room room{{"silent@9"}};
  EXPECT_TRUE(Upload(room.Link, {{"A", "10"}, {"B", "20"}, {"A", "11"}}))
      << "3 lines, 2 questions, SAVE, one more";
  EXPECT_EQ(HeldBy(*room.Instrument, "A"), "11") << "the eighth line";
  EXPECT_FALSE(SendLine(*room.Instrument, "GET_CALIBRATION A")) << "the ninth";
}

TEST(ProvingLink, EverythingElseIsPassedOnAsItIs) {
  Room room;
  EXPECT_EQ(SendLine(room.Link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(SendLine(room.Link, "GET_CALIBRATION C"), "C=3.5");
  EXPECT_EQ(SendLine(room.Link, "NONSENSE"), "SYNTAX_ERROR");
  EXPECT_TRUE(room.Link.Verdicts().empty());
}

TEST(ProvingLink, AReplyThatNamesAnotherKeyIsNoAnswer) {
  LinkScript replies{.Default = "OK", .Replies = {}, .StopAfter = {}};
  for (const bool isRight : {false, true}) {
    replies.Replies["GET_CALIBRATION A"] = {isRight ? "A=10" : "B=10"};
    ProvingLink link{std::make_shared<ScriptedLink>(replies, noInterrupt), {}, noInterrupt};
    EXPECT_EQ(Upload(link, {{"A", "10"}}), isRight);
    EXPECT_EQ(link.Verdicts().front().Is, isRight ? Proof::Verified : Proof::Unknown);
  }
}

TEST(ProvingLink, TheStopFlagOfTheLinkBehindIsItsOwn) {
  const LinkScript stopping{.Default = "OK", .Replies = {}, .StopAfter = {"STATUS_MECH"}};
  ProvingLink link{std::make_shared<ScriptedLink>(stopping, noInterrupt), {}, noInterrupt};
  SendLine(link, "STATUS_STAGE");
  EXPECT_EQ(link.Stop(), false);
  SendLine(link, "STATUS_MECH");
  EXPECT_EQ(link.Stop(), true);
  PassOver(link.SetStop(false));
  EXPECT_EQ(link.Stop(), false);
}

}  // namespace
}  // namespace zolvane
