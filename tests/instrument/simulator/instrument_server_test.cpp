#include "instrument/simulator/instrument_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "instrument/links/running_instrument.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using asio::ip::tcp;

class Client {
 public:
  explicit Client(const RunningInstrument& instrument) {
    const auto port = instrument.Link().substr(instrument.Link().rfind(':') + 1);
    socket_.connect({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(std::stoi(port))});
  }

  Client& Send(std::string_view bytes) {
    asio::write(socket_, asio::buffer(bytes));
    return *this;
  }

  // With its line end; "closed" when the connection ends first.
  std::string Line() {
    std::error_code error;
    const auto size = asio::read_until(socket_, asio::dynamic_buffer(input_), '\n', error);
    const auto line = error ? "closed" : input_.substr(0, size);
    input_.erase(0, size);
    return line;
  }

 private:
  asio::io_context io_;
  tcp::socket socket_{io_};
  std::string input_;
};

std::string Refusal(const std::string& place) {
  SimulatedInstrument instrument{{}};
  InstrumentServer server{instrument, {}};
  asio::io_context io;
  try {
    server.ServeTcp(io, place);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(InstrumentServer, AReplyIsOneLineEndedByCarriageReturnAndLineFeed) {
  const RunningInstrument instrument;
  EXPECT_EQ(Client{instrument}.Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
}

TEST(InstrumentServer, ACommandMayEndWithALineFeedAlone) {
  const RunningInstrument instrument;
  EXPECT_EQ(Client{instrument}.Send("STATUS_MECH\n").Line(), "SD\r\n");
}

TEST(InstrumentServer, ACommandMayComeInPiecesAndManyAtOnce) {
  const RunningInstrument instrument;
  Client client{instrument};
  client.Send("STATUS_").Send("STAGE\r").Send("\nSTATUS_MECH\r\nSTATUS PUMPS\r\nRFID O").Send("N\r\n");
  EXPECT_EQ(client.Line(), "ZV400\r\n");
  EXPECT_EQ(client.Line(), "SD\r\n");
  EXPECT_EQ(client.Line(), "PUMPS CLOSED\r\n");
  EXPECT_EQ(client.Line(), "OK\r\n");
}

TEST(InstrumentServer, TheNextClientFindsTheMemoryOfTheLastOne) {
  const RunningInstrument instrument;
  EXPECT_EQ(Client{instrument}.Send("SET_CALIBRATION STAGE1_X 1612\r\n").Line(), "OK\r\n");
  EXPECT_EQ(Client{instrument}.Send("GET_CALIBRATION STAGE1_X\r\n").Line(), "STAGE1_X=1612\r\n");
}

TEST(InstrumentServer, ASecondClientIsServedWhenTheFirstHasGone) {
  const RunningInstrument instrument;
  std::optional<Client> first{std::in_place, instrument};
  EXPECT_EQ(first->Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
  Client second{instrument};
  second.Send("STATUS_MECH\r\n");
  EXPECT_EQ(first->Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
  first.reset();
  EXPECT_EQ(second.Line(), "SD\r\n");
}

TEST(InstrumentServer, ASilentClientIsLetGoOfWhenAnotherWaits) {
  using std::chrono::milliseconds;
  const RunningInstrument instrument{{.Patience = milliseconds{100}}};
  Client silent{instrument};
  EXPECT_EQ(silent.Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
  Client dribbling{instrument};
  dribbling.Send("STATUS");
  Client third{instrument};
  EXPECT_EQ(third.Send("STATUS_MECH\r\n").Line(), "SD\r\n");
  EXPECT_EQ(silent.Line(), "closed");
  EXPECT_EQ(dribbling.Line(), "closed");
}

TEST(InstrumentServer, AClientThatTakesNoRepliesIsLetGoOfToo) {
  const RunningInstrument instrument{{.Patience = std::chrono::milliseconds{100}}};
  Client greedy{instrument};
  greedy.Send("SET_CALIBRATION A " + std::string(1'000'000, 'x') + "\r\n");
  EXPECT_EQ(greedy.Line(), "OK\r\n");
  for (int line = 0; line < 100; ++line) {
    greedy.Send("GET_CALIBRATION A\r\n");
  }
  EXPECT_EQ(Client{instrument}.Send("STATUS_MECH\r\n").Line(), "SD\r\n");
}

TEST(InstrumentServer, AClientThatIsAloneMayBeSilentForLong) {
  const RunningInstrument instrument{{.Patience = std::chrono::milliseconds{0}}};  // every silence is longer
  Client client{instrument};
  for (int count = 0; count < 20; ++count) {
    EXPECT_EQ(client.Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
  }
}

TEST(InstrumentServer, AClientThatWaitsForASlowReplyIsNotSilent) {
  using std::chrono::milliseconds;
  const RunningInstrument instrument{{.Latency = milliseconds{150}, .Patience = milliseconds{50}}};
  Client first{instrument};
  first.Send("STATUS_STAGE\r\n");
  Client second{instrument};
  second.Send("STATUS_MECH\r\n");
  EXPECT_EQ(first.Line(), "ZV400\r\n");
  EXPECT_EQ(second.Line(), "SD\r\n");
}

TEST(InstrumentServer, AClientThatLeavesInTheMiddleDoesNotEndTheService) {
  const RunningInstrument instrument;
  {
    Client{instrument}.Send("SET_CALIBRATION HALF_SENT 16");
  }
  {
    Client{instrument}.Send("STATUS_STAGE\r\nSTATUS_STAGE\r\nSTATUS_STAGE\r\n");
  }
  Client last{instrument};
  EXPECT_EQ(last.Send("GET_CALIBRATION HALF_SENT\r\n").Line(), "SYNTAX_ERROR\r\n");
}

TEST(InstrumentServer, AClientThatSendsALineWithoutEndIsSentAway) {
  const RunningInstrument instrument;
  {
    Client endless{instrument};
    EXPECT_THROW(
        for (int count = 0; count < 1000; ++count) { endless.Send(std::string(65536, 'x')); },
        std::system_error);
  }
  EXPECT_EQ(Client{instrument}.Send("STATUS_STAGE\r\n").Line(), "ZV400\r\n");
}

TEST(InstrumentServer, AnyBytesGetALineForEachLine) {
  const RunningInstrument instrument;
  Client client{instrument};
  for (int byte = 0; byte < 256; ++byte) {
    const auto isLineEnd = byte == '\n';
    client.Send(std::string{"STATUS"} + static_cast<char>(byte) + "PUMPS\r\n");
    EXPECT_EQ(client.Line(), byte == ' ' ? "PUMPS CLOSED\r\n" : "SYNTAX_ERROR\r\n") << byte;
    if (isLineEnd) {
      EXPECT_EQ(client.Line(), "SYNTAX_ERROR\r\n");
    }
  }
}

TEST(InstrumentServer, ListensOnAnyAddressOfTheMachine) {
  SimulatedInstrument instrument{{}};
  InstrumentServer server{instrument, {}};
  asio::io_context io;
  EXPECT_TRUE(server.ServeTcp(io, "127.0.0.1:0").starts_with("tcp:127.0.0.1:"));
  EXPECT_TRUE(server.ServeTcp(io, "0.0.0.0:0").starts_with("tcp:0.0.0.0:"));
  EXPECT_TRUE(server.ServeTcp(io, "localhost:0").starts_with("tcp:"));
}

TEST(InstrumentServer, APlaceThatIsNoneIsRefused) {
  for (const auto* place : {"", "4000", "127.0.0.1:", ":4000", "127.0.0.1:65536", "127.0.0.1:x"}) {
    EXPECT_EQ(Refusal(place), Joined("--listen takes HOST:PORT, not ", Quoted(place)));
  }
}

TEST(InstrumentServer, APlaceThatIsTakenIsRefused) {
  const RunningInstrument instrument;
  const auto place = instrument.Link().substr(4);
  EXPECT_EQ(Refusal(place), "cannot listen on " + place + ": Address already in use");
}

}  // namespace
}  // namespace zolvane
