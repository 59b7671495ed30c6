// The links over TCP and over a serial line, against instruments that behave and instruments that do not.
#include "instrument/links/stream_link.h"

#include <gtest/gtest.h>

#include <latch>

#include "instrument/links/running_instrument.h"
#include "instrument/links/sent_command.h"

namespace zolvane {
namespace {

using asio::ip::tcp;
using std::chrono::milliseconds;

std::string ReadLine(tcp::socket& client) {
  std::string input;
  const auto size = asio::read_until(client, asio::dynamic_buffer(input), '\n');
  return input.substr(0, size);
}

void Write(tcp::socket& client, std::string_view text) {
  asio::write(client, asio::buffer(text));
}

class StreamLinkTest : public testing::TestWithParam<RunningInstrument::Place> {
 protected:
  void Start(FaultPlan faults = {}, milliseconds latency = {}) {
    instrument_.emplace(
        InstrumentServer::Setup{
            .Latency = latency, .Faults = std::move(faults), .Lateness = milliseconds{400}},
        GetParam());
  }

  std::shared_ptr<BenchLink> Link(double timeout = 5.0) const {
    return CreateLink(instrument_->Link(), timeout, quietInterrupt);
  }

 private:
  std::optional<RunningInstrument> instrument_;
};

INSTANTIATE_TEST_SUITE_P(Places, StreamLinkTest,
                         testing::Values(RunningInstrument::Place::Tcp,
                                         RunningInstrument::Place::PseudoTerminal),
                         [](const auto& place) {
                           return place.param == RunningInstrument::Place::Tcp ? "Tcp" : "PseudoTerminal";
                         });

TEST_P(StreamLinkTest, ACommandGetsItsReplyWithoutTheLineEnd) {
  Start();
  const auto link = Link();
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION KEY a b "), "OK");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION KEY"), "KEY=a b ");
}

TEST_P(StreamLinkTest, ALateReplyIsNeverTakenForTheNextAnswer) {
  Start({"late@1"});
  const auto link = Link(0.3);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  int answered = 0;
  for (int attempt = 0; attempt < 6; ++attempt) {
    const auto reply = Send(*link, "STATUS PUMPS");
    EXPECT_TRUE(reply == "PUMPS CLOSED" || reply == "failed") << reply;
    answered += reply == "failed" ? 0 : 1;
  }
  EXPECT_GT(answered, 0);
}

TEST_P(StreamLinkTest, ASilentInstrumentFailsTheSendAndTheNextOneWorks) {
  Start({"silent@2"});
  const auto link = Link(0.3);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "SD");
}

TEST_P(StreamLinkTest, AnEmptyLineIsAnEmptyReply) {
  Start({"empty@1"});
  EXPECT_EQ(Send(*Link(), "STATUS_STAGE"), "");
}

TEST_P(StreamLinkTest, AReplyInTwoHalvesIsOne) {
  Start({"split@1"});
  EXPECT_EQ(Send(*Link(), "STATUS PUMPS"), "PUMPS CLOSED");
}

TEST_P(StreamLinkTest, ALineThatIsTooLongFailsTheSend) {
  Start({"overlong@1"});
  EXPECT_EQ(Send(*Link(), "STATUS_STAGE"), "failed");
}

TEST_P(StreamLinkTest, AReplyWithoutItsLineEndIsNoReply) {
  Start({"no-newline@1"});
  EXPECT_EQ(Send(*Link(0.2), "STATUS_STAGE"), "failed");
}

TEST_P(StreamLinkTest, BytesThatAreNotUtf8AreReadAsWindows1252) {
  Start({"garbage@1"});
  using namespace std::string_literals;
  EXPECT_EQ(Send(*Link(), "STATUS_STAGE"), "\0\xC3\xBF\xC3\xBE=\xE2\x82\xAC\x01"s);
}

TEST_P(StreamLinkTest, AReplyMayTakeAsLongAsTheTimeout) {
  Start({}, milliseconds{150});
  EXPECT_EQ(Send(*Link(), "STATUS_MECH"), "SD");
}

TEST(TcpLink, AConnectionThatIsClosedFailsTheSendAndIsOpenedAgainByTheNext) {
  const RunningInstrument instrument{{.Latency = {}, .Faults = {"close@2"}}};
  const auto link = CreateLink(instrument.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
}

TEST(TcpLink, AConnectionThatWasClosedBetweenTwoCommandsIsOpenedAgain) {
  std::latch hasClosed{1};
  const HandmadeServer server{[&hasClosed](tcp::acceptor& acceptor) {
    auto client = acceptor.accept();
    ReadLine(client);
    Write(client, "one\r\n");
    client.close();
    hasClosed.count_down();
    client = acceptor.accept();
    ReadLine(client);
    Write(client, "two\r\n");
  }};
  const auto link = CreateLink(server.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "one");
  hasClosed.wait();
  EXPECT_EQ(Send(*link, "B"), "two");
}

TEST(TcpLink, TheCommandIsOneLineEndedByCarriageReturnAndLineFeed) {
  std::string received;
  {
    const HandmadeServer server{[&received](tcp::acceptor& acceptor) {
      auto client = acceptor.accept();
      received = ReadLine(client);
      Write(client, "OK\n");
    }};
    EXPECT_EQ(Send(*CreateLink(server.Link(), 5.0, quietInterrupt), "SET_CALIBRATION A 1"), "OK");
  }
  EXPECT_EQ(received, "SET_CALIBRATION A 1\r\n");
}

TEST(TcpLink, BytesThatNobodyAskedForAreNoReply) {
  const HandmadeServer server{[](tcp::acceptor& acceptor) {
    auto client = acceptor.accept();
    ReadLine(client);
    Write(client, "first\r\nunasked\r\n");
    ReadLine(client);
    Write(client, "second\r\n");
  }};
  const auto link = CreateLink(server.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "first");
  EXPECT_EQ(Send(*link, "B"), "second");
}

TEST(TcpLink, HalfALineAndThenTheEndIsNoReply) {
  const HandmadeServer server{[](tcp::acceptor& acceptor) {
    auto client = acceptor.accept();
    ReadLine(client);
    Write(client, "half a li");
  }};
  EXPECT_EQ(Send(*CreateLink(server.Link(), 5.0, quietInterrupt), "A"), "failed");
}

TEST(TcpLink, APortThatNobodyListensOnFailsTheSend) {
  unsigned short port = 0;
  {
    asio::io_context io;
    const tcp::acceptor acceptor{io, {asio::ip::address_v4::loopback(), 0}};
    port = acceptor.local_endpoint().port();
  }
  const auto link = CreateLink("tcp:127.0.0.1:" + std::to_string(port), 1.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  EXPECT_EQ(Send(*link, "A"), "failed");
}

TEST(TcpLink, AHostWithoutAnAddressFailsTheSend) {
  EXPECT_EQ(Send(*CreateLink("tcp:no-such-host.invalid:4000", 1.0, quietInterrupt), "A"), "failed");
}

TEST(SerialLink, ADeviceThatIsNotThereFailsTheSend) {
  EXPECT_EQ(Send(*CreateLink("serial:/dev/no-such-port", 1.0, quietInterrupt), "A"), "failed");
}

TEST(SerialLink, AFileThatIsNoPortFailsTheSend) {
  EXPECT_EQ(Send(*CreateLink("serial:/dev/null", 1.0, quietInterrupt), "A"), "failed");
}

TEST_P(StreamLinkTest, OneLateReplyBehindAnotherIsNoAnswerEither) {
  Start({"late@1", "late@2"});
  const auto link = Link(0.2);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  std::string reply = "failed";
  for (int attempt = 0; attempt < 50 && reply == "failed"; ++attempt) {
    reply = Send(*link, "STATUS PUMPS");
  }
  EXPECT_EQ(reply, "PUMPS CLOSED");
}

}  // namespace
}  // namespace zolvane
