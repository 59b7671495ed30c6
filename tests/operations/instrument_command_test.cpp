#include "operations/instrument_command.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

constexpr auto communicationError =
    "message 0 \"Communication Error\" \"Getting Zolvane Type\r\n\r\nPlease ensure that the Zolvane is "
    "switched on\r\nand in 'Remote Mode'\"";
constexpr auto errorWithoutStep =
    "message 0 \"Communication Error\" \"\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in "
    "'Remote Mode'\"";

struct CommandFixture : OperationFixture {
  CommandFixture() { Window->Panel->Shown = "Getting Zolvane Type"; }

  std::string Reply;
  bool Ok = false;

  void Send(const std::string& command = "STATUS_STAGE") {
    SendInstrumentCommand(Context, command, Reply, Ok);
  }

  void ExpectCommunicationError() const {
    EXPECT_FALSE(Ok);
    EXPECT_EQ(Calls.Of({"message"}), Texts{communicationError});
  }
};

TEST(InstrumentCommand, ClearsTheStopFlagSetsTheHoldFlagAndSendsThroughAFreshLinkEachTime) {
  CommandFixture fixture;
  fixture.Link().Replies["STATUS_STAGE"] = {Answer("ZV200\r\n")};
  fixture.Send();
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"get link", "stop=false", "get link", "hold=true", "get link", "send STATUS_STAGE"}));
  EXPECT_TRUE(fixture.Ok);
  EXPECT_EQ(fixture.Reply, "ZV200\r\n");
}

TEST(InstrumentCommand, LeavesTheStatusTextAloneWhenItIsAnswered) {
  CommandFixture fixture;
  fixture.Send();
  EXPECT_EQ(fixture.Window->Panel->Shown, "Getting Zolvane Type");
  EXPECT_EQ(fixture.Calls.Of({"message", "status"}), Texts{});
}

TEST(InstrumentCommand, ShowsOneBoxThatNamesTheStepWhenTheInstrumentIsSilent) {
  CommandFixture fixture;
  fixture.Ok = true;
  fixture.Link().DefaultReply = NoAnswer();
  fixture.Send();
  fixture.ExpectCommunicationError();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "stop=false", "get link", "hold=true", "get link",
                                         "send STATUS_STAGE", "status?", communicationError}));
}

TEST(InstrumentCommand, IsNotRepeatedAfterAFailure) {
  CommandFixture fixture;
  fixture.Link().Replies["STATUS_STAGE"] = {NoAnswer(), Answer("late")};
  fixture.Send();
  EXPECT_FALSE(fixture.Ok);
  EXPECT_EQ(fixture.Sent(), Texts{"send STATUS_STAGE"});
}

TEST(InstrumentCommand, LeavesTheReplyOfAFailureAsTheLinkLeftIt) {
  CommandFixture fixture;
  fixture.Reply = "before";
  fixture.Link().Replies["A"] = {NoAnswer()};
  fixture.Send("A");
  EXPECT_EQ(fixture.Reply, "before");
  fixture.Link().Replies["B"] = {{.Text = "half a rep", .Answered = false}};
  fixture.Send("B");
  EXPECT_EQ(fixture.Reply, "half a rep");
}

TEST(InstrumentCommand, StartsTheMessageWithTheLineBreaksWhenTheStatusLineIsEmpty) {
  CommandFixture fixture;
  fixture.Window->Panel->Shown = "";
  fixture.Link().DefaultReply = NoAnswer();
  fixture.Send();
  EXPECT_EQ(fixture.Calls.Of({"message"}), Texts{errorWithoutStep});
}

TEST(InstrumentCommand, ShowsTheMessageAlsoWhenThereIsNoStatusTextToRead) {
  CommandFixture withoutPanel;
  withoutPanel.Attachment.Panel = nullptr;
  withoutPanel.Link().DefaultReply = NoAnswer();
  withoutPanel.Send();
  EXPECT_EQ(withoutPanel.Calls.Of({"message"}), Texts{errorWithoutStep});

  CommandFixture withFailingPanel;
  withFailingPanel.Link().DefaultReply = NoAnswer();
  withFailingPanel.Calls.FailEverythingThatStartsWith("status?");
  withFailingPanel.Send();
  EXPECT_EQ(withFailingPanel.Calls.Of({"message"}), Texts{errorWithoutStep});
}

TEST(InstrumentCommand, TakesAFailingSendForASilentInstrument) {
  CommandFixture fixture;
  fixture.Ok = true;
  fixture.Calls.FailEverythingThatStartsWith("send");
  fixture.Send();
  fixture.ExpectCommunicationError();
}

TEST(InstrumentCommand, TakesAMissingHostObjectForASilentInstrument) {
  CommandFixture fixture;
  fixture.Ok = true;
  fixture.Attachment.ObjectParent = nullptr;
  fixture.Send();
  fixture.ExpectCommunicationError();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"status?", communicationError}));
}

TEST(InstrumentCommand, TakesAMissingLinkForASilentInstrument) {
  CommandFixture fixture;
  fixture.Object->TheLink = nullptr;
  fixture.Send();
  fixture.ExpectCommunicationError();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "get link", "get link", "status?", communicationError}));
}

TEST(InstrumentCommand, SendsAlsoWhenTheFlagsCannotBeSet) {
  CommandFixture fixture;
  fixture.Calls.FailsIf = [](auto event) { return event == "stop=false" || event == "hold=true"; };
  fixture.Send();
  EXPECT_TRUE(fixture.Ok);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"get link", "stop=false", "get link", "hold=true", "get link", "send STATUS_STAGE"}));
}

TEST(InstrumentCommand, SkipsOnlyTheStatementWhoseLinkIsMissing) {
  const Texts withoutStop{"get link", "get link", "hold=true", "get link", "send STATUS_STAGE"};
  CommandFixture first;
  first.Calls.FailingCall = 1;
  first.Send();
  EXPECT_EQ(first.Calls.Events, withoutStop);
  EXPECT_TRUE(first.Ok);

  const Texts withoutHold{"get link", "stop=false", "get link", "get link", "send STATUS_STAGE"};
  CommandFixture second;
  second.Calls.FailingCall = 3;
  second.Send();
  EXPECT_EQ(second.Calls.Events, withoutHold);
  EXPECT_TRUE(second.Ok);

  CommandFixture third;
  third.Calls.FailingCall = 5;
  third.Send();
  EXPECT_EQ(third.Sent(), Texts{});
  third.ExpectCommunicationError();
}

TEST(InstrumentCommand, ClearsAStopFlagThatWasRaisedBefore) {
  CommandFixture fixture;
  fixture.Link().StopFlag = true;
  fixture.Send();
  EXPECT_FALSE(fixture.Link().StopFlag);
  EXPECT_TRUE(fixture.Ok);
}

TEST(InstrumentCommand, LeavesAStopFlagThatTheLinkRaisesMeanwhile) {
  CommandFixture fixture;
  fixture.Link().DefaultReply = {.Text = "OK", .RaisesStop = true};
  fixture.Send();
  EXPECT_TRUE(fixture.Link().StopFlag);
}

TEST(InstrumentCommand, LeavesTheHoldFlagSet) {
  CommandFixture fixture;
  fixture.Send();
  EXPECT_TRUE(fixture.Link().HoldFlag);
  fixture.Link().DefaultReply = NoAnswer();
  fixture.Send();
  EXPECT_TRUE(fixture.Link().HoldFlag);
}

// A link that writes into the command it is given, and remembers the number.
class ScribblingLink final : public InstrumentLink {
 public:
  std::int32_t Number = -1;

  std::optional<bool> Stop() override { return false; }
  Status SetStop(bool) override { return Status::Success(); }
  Status SetHold(bool) override { return Status::Success(); }
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    reply = "reply to " + command;
    command = "scribble";
    Number = number;
    return true;
  }
};

class ScribblingHost final : public HostObject {
 public:
  std::shared_ptr<ScribblingLink> TheLink = std::make_shared<ScribblingLink>();

  std::shared_ptr<InstrumentLink> Link() override { return TheLink; }
  Status WriteLogLine(const std::string&) override { return Status::Success(); }
  std::optional<bool> HostDialogAvailable() override { return false; }
  std::shared_ptr<HostDialog> MessageDialog() override { return nullptr; }
};

TEST(InstrumentCommand, GivesTheLinkACopyOfTheCommandAndTheNumberZero) {
  CommandFixture fixture;
  const auto host = std::make_shared<ScribblingHost>();
  fixture.Attachment.ObjectParent = host;
  std::string command = "STATUS_MECH";
  SendInstrumentCommand(fixture.Context, command, fixture.Reply, fixture.Ok);
  EXPECT_EQ(command, "STATUS_MECH");
  EXPECT_EQ(fixture.Reply, "reply to STATUS_MECH");
  EXPECT_EQ(host->TheLink->Number, 0);
}

TEST(StrippedReply, LosesEveryPairOfCarriageReturnAndLineFeed) {
  EXPECT_EQ(StrippedReply("96/384\r\n"), "96/384");
  EXPECT_EQ(StrippedReply("\r\nA\r\n\r\nB\r\n"), "AB");
  EXPECT_EQ(StrippedReply("plain"), "plain");
  EXPECT_EQ(StrippedReply(""), "");
}

TEST(JudgedReply, LosesBlanksAndLineEndsAtEitherEnd) {
  EXPECT_EQ(JudgedReply(" OK\n"), "OK");
  EXPECT_EQ(JudgedReply("\r\n\tA \r B\r"), "A \r B");
  EXPECT_EQ(JudgedReply(" \n"), "");
}

TEST(IsAcceptance, IsOkAlone) {
  for (const auto* reply : {"OK", "OK\r\n", " OK", "OK\n", "OK\t\r"}) {
    EXPECT_TRUE(IsAcceptance(reply)) << reply;
  }
  for (const auto* reply : {"", "ok", "OKAY", "O K", "OK A", "\"OK\"", "SYNTAX_ERROR"}) {
    EXPECT_FALSE(IsAcceptance(reply)) << reply;
  }
}

TEST(StrippedReply, KeepsLoneCarriageReturnsAndLineFeeds) {
  EXPECT_EQ(StrippedReply("A\rB\nC\n\rD"), "A\rB\nC\n\rD");
}

}  // namespace
}  // namespace zolvane
