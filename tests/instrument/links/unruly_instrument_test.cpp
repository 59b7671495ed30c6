// The links against instruments and lines that are out of order. Whatever they do, a send ends within its
// time and never gives a reply that belongs to another command.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <latch>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "instrument/links/running_instrument.h"
#include "instrument/links/sent_command.h"
#include "instrument/links/stream_link.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using asio::ip::tcp;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

milliseconds TimeOf(const std::function<void()>& action) {
  const auto start = Clock::now();
  action();
  return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

bool ReadLine(tcp::socket& client, std::string& input) {
  std::error_code error;
  const auto size = asio::read_until(client, asio::dynamic_buffer(input), '\n', error);
  input.erase(0, size);
  return !error;
}

// Answers each line of one client with what `answer` gives for its number, counted from 1.
HandmadeServer::Conversation Answering(std::function<std::string(int number)> answer) {
  return [answer = std::move(answer)](tcp::acceptor& acceptor) {
    auto client = acceptor.accept();
    std::string input;
    std::error_code error;
    for (int number = 1; !error && ReadLine(client, input); ++number) {
      asio::write(client, asio::buffer(answer(number)), error);
    }
  };
}

// ---- TCP

TEST(UnrulyTcp, TheLateReplyGoesToTheOldConnectionAndTheNextCommandHasAnotherOne) {
  const HandmadeServer server{[](tcp::acceptor& acceptor) {
    auto first = acceptor.accept();
    std::string input;
    ReadLine(first, input);
    auto second = acceptor.accept();  // the link has given the first one up
    ReadLine(second, input);
    asio::write(second, asio::buffer(std::string_view{"STAGE1_X=1\r\n"}));
    ReadLine(second, input);
    std::error_code ignored;
    asio::write(first, asio::buffer(std::string_view{"late\r\n"}), ignored);
    asio::write(second, asio::buffer(std::string_view{"in time\r\n"}));
  }};
  const auto link = CreateLink(server.Link(), 0.3, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  EXPECT_EQ(Send(*link, "B"), "in time");
}

TEST(UnrulyTcp, ALineMayBeAsLongAsTheLimitAndNoLonger) {
  const HandmadeServer server{
      Answering([](int number) { return std::string(longestReply + (number == 1 ? 0 : 1), 'x') + "\r\n"; })};
  const auto link = CreateLink(server.Link(), 20.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "A").size(), std::size_t{1'048'576});
  EXPECT_EQ(Send(*link, "B"), "failed");
}

TEST(UnrulyTcp, ALineWithoutEndFailsLongBeforeTheTimeout) {
  const HandmadeServer server{Answering([](int) { return std::string(std::size_t{2} << 20, 'x'); })};
  const auto link = CreateLink(server.Link(), 60.0, quietInterrupt);
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "A"), "failed"); }), milliseconds{30'000});
}

TEST(UnrulyTcp, AnInstrumentThatTalksWithoutEndDoesNotHoldASendBeyondItsTimeout) {
  std::atomic<bool> isDone = false;
  const HandmadeServer server{[&isDone](tcp::acceptor& acceptor) {
    const std::string talk(65536, '\n');
    acceptor.non_blocking(true);
    while (!isDone) {
      std::error_code error;
      auto client = acceptor.accept(error);
      if (error) {
        std::this_thread::sleep_for(milliseconds{5});
      }
      while (!error && !isDone) {
        asio::write(client, asio::buffer(talk), error);
      }
    }
  }};
  const auto link = CreateLink(server.Link(), 0.2, quietInterrupt);
  for (int count = 0; count < 3; ++count) {
    EXPECT_LT(TimeOf([&] { Send(*link, "A"); }), milliseconds{5'000});
  }
  isDone = true;
}

TEST(UnrulyTcp, AnInstrumentThatReadsNothingFailsALongCommandInTime) {
  std::latch isOver{1};
  const HandmadeServer server{[&isOver](tcp::acceptor& acceptor) {
    auto client = acceptor.accept();
    isOver.wait();
  }};
  const auto link = CreateLink(server.Link(), 0.2, quietInterrupt);
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, std::string(std::size_t{32} << 20, 'x')), "failed"); }),
            milliseconds{60'000});
  isOver.count_down();
}

TEST(UnrulyTcp, NulAndOtherControlCharactersPassInBothDirections) {
  using namespace std::string_literals;
  std::string received;
  {
    const HandmadeServer server{[&received](tcp::acceptor& acceptor) {
      auto client = acceptor.accept();
      asio::read_until(client, asio::dynamic_buffer(received), '\n');
      asio::write(client, asio::buffer("\0\x1B[2J\tu\xCC\x88\r\r\n"s));
    }};
    EXPECT_EQ(Send(*CreateLink(server.Link(), 5.0, quietInterrupt), "a\0b\x07"s), "\0\x1B[2J\tu\xCC\x88\r"s);
  }
  EXPECT_EQ(received, "a\0b\x07\r\n"s);
}

TEST(UnrulyTcp, AnInterruptWhileACommandWaitsLetsItFinish) {
  InterruptFlag interrupt;
  const HandmadeServer server{Answering([&interrupt](int) {
    interrupt.Raise();
    return std::string{"OK\r\n"};
  })};
  const auto link = CreateLink(server.Link(), 5.0, interrupt);
  EXPECT_EQ(link->Stop(), false);
  EXPECT_EQ(Send(*link, "A"), "OK");
  EXPECT_EQ(link->Stop(), true);
  PassOver(link->SetStop(false));
  EXPECT_EQ(link->Stop(), true);
}

TEST(UnrulyTcp, AfterAnInterruptAQuestionIsNotRepeatedButItsAnswerIsWaitedFor) {
  InterruptFlag interrupt;
  const HandmadeServer server{Answering([&interrupt](int) {
    interrupt.Raise();
    return std::string{"17\r\nSTAGE1_X=5\r\n"};
  })};
  const auto link = CreateLink(server.Link(), 5.0, interrupt);
  EXPECT_EQ(Send(*link, "GET_CALIBRATION STAGE1_X"), "STAGE1_X=5");
}

TEST(UnrulyTcp, AfterAnInterruptNoCommandLeavesWhateverIsTried) {
  for (const auto* place : {"sim", "none", "tcp:127.0.0.1:1", "serial:/dev/no-such-port"}) {
    InterruptFlag interrupt;
    const auto link = CreateLink(place, 5.0, interrupt);
    interrupt.Raise();
    PassOver(link->SetStop(false));
    EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed") << place;
    EXPECT_FALSE(link->LastDelivery().HasLeft) << place;
    EXPECT_EQ(link->LastDelivery().Problem, "") << place;
  }
}

// Far beyond what any of these tests takes.
constexpr double longTimeout = 600.0;

TEST(UnrulyTcp, ASecondInterruptEndsTheWait) {
  InterruptFlag interrupt;
  const HandmadeServer server{Answering([&interrupt](int) {
    interrupt.Raise();
    interrupt.Raise();
    return std::string{};
  })};
  const auto link = CreateLink(server.Link(), longTimeout, interrupt);
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "A"), "failed"); }), milliseconds{30'000});
  EXPECT_TRUE(link->LastDelivery().HasLeft);
}

// What has not left will not leave any more, so nothing is worth waiting for.
TEST(UnrulyTcp, AnInterruptEndsTheSearchForThePlaceAndTheCommandDoesNotLeave) {
  InterruptFlag interrupt;
  std::string second;
  {
    const HandmadeServer server{[&](tcp::acceptor& acceptor) {
      auto client = acceptor.accept();
      std::string input;
      ReadLine(client, input);
      std::error_code error;
      asio::write(client, asio::buffer(std::string(std::size_t{2} << 20, 'x')),
                  error);  // not the way a reply looks
      client = acceptor.accept();
      asio::read_until(client, asio::dynamic_buffer(second), '\n', error);
      interrupt.Raise();
      asio::read_until(client, asio::dynamic_buffer(second), "no more", error);
    }};
    const auto link = CreateLink(server.Link(), longTimeout, interrupt);
    EXPECT_EQ(Send(*link, "A"), "failed");
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "B"), "failed"); }), milliseconds{30'000});
    EXPECT_FALSE(link->LastDelivery().HasLeft);
  }
  EXPECT_EQ(second, "GET_CALIBRATION STAGE1_X\r\n");
}

// Completes no connection beyond the few that the system completes by itself.
class DeafServer {
 public:
  DeafServer() : acceptor_{io_} {
    acceptor_.open(tcp::v4());
    acceptor_.bind({asio::ip::address_v4::loopback(), 0});
    acceptor_.listen(0);
    for (auto& client : clients_) {
      client.async_connect(acceptor_.local_endpoint(), [](std::error_code) {});  // begins at once
    }
  }

  std::string Link() const { return "tcp:127.0.0.1:" + std::to_string(Port()); }

  // How many connections to it have begun and are not taken up.
  std::ptrdiff_t WaitingConnections() const {
    std::array<char, 32> remote{};
    std::snprintf(remote.data(), remote.size(), ":%04X 02 ", Port());  // 02: waits for an answer
    std::ifstream connections{"/proc/net/tcp"};
    std::ptrdiff_t count = 0;
    for (std::string line; std::getline(connections, line);) {
      count += line.find(remote.data()) == std::string::npos ? 0 : 1;
    }
    return count;
  }

 private:
  unsigned short Port() const { return acceptor_.local_endpoint().port(); }

  asio::io_context io_;
  tcp::acceptor acceptor_;
  std::array<tcp::socket, 4> clients_{tcp::socket{io_}, tcp::socket{io_}, tcp::socket{io_}, tcp::socket{io_}};
};

TEST(UnrulyTcp, AConnectionThatIsNeverTakenUpFailsInTime) {
  const DeafServer server;
  const auto link = CreateLink(server.Link(), 0.1, quietInterrupt);
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "A"), "failed"); }), milliseconds{5'000});
}

TEST(UnrulyTcp, AnInterruptEndsAConnectionThatIsNotTakenUp) {
  const DeafServer server;
  InterruptFlag interrupt;
  const auto link = CreateLink(server.Link(), longTimeout, interrupt);
  const auto before = server.WaitingConnections();
  std::thread user{[&] {
    const auto deadline = Clock::now() + milliseconds{30'000};
    while (server.WaitingConnections() == before && Clock::now() < deadline) {
      std::this_thread::yield();
    }
    interrupt.Raise();
  }};
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "A"), "failed"); }), milliseconds{30'000});
  user.join();
}

// ---- Why a link does not open

std::string ProblemOf(const std::string& place) {
  const auto link = CreateLink(place, 0.2, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  EXPECT_FALSE(link->LastDelivery().HasLeft);
  return link->LastDelivery().Problem;
}

TEST(LinkProblem, SaysWhyThePortDoesNotOpen) {
  EXPECT_EQ(ProblemOf("tcp:127.0.0.1:1"),
            "tcp:127.0.0.1:1 cannot be opened: the connection was refused; nobody listens there");
  EXPECT_EQ(ProblemOf("tcp:[::1]:1").substr(0, 11), "tcp:[::1]:1");
  EXPECT_EQ(ProblemOf("serial:/dev/no-such-port"),
            "serial:/dev/no-such-port cannot be opened: there is no such device");
  EXPECT_EQ(ProblemOf("serial:/dev/null"), "serial:/dev/null cannot be opened: it is no serial port");
  const DeafServer deaf;
  EXPECT_EQ(ProblemOf(deaf.Link()), deaf.Link() + " cannot be opened: it timed out");
}

TEST(LinkProblem, IsForgottenWhenACommandIsAnswered) {
  const RunningInstrument instrument{{.Latency = {}, .Faults = {"close@1"}}};
  const auto link = CreateLink(instrument.Link(), 5.0, quietInterrupt);
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "failed");
  EXPECT_TRUE(link->LastDelivery().HasLeft);
  EXPECT_EQ(link->LastDelivery().Problem, instrument.Link() + " was closed by the other side");
  EXPECT_EQ(Send(*link, "STATUS_STAGE"), "ZV400");
  EXPECT_EQ(link->LastDelivery().Problem, "");
}

TEST(LinkProblem, QuotesTheBareLineThatAnsweredNothing) {
  const HandmadeServer server{Answering([](int) { return std::string{"HELLO\r\n"}; })};
  const auto link = CreateLink(server.Link(), 0.2, quietInterrupt);
  EXPECT_EQ(Send(*link, "GET_CALIBRATION A"), "failed");
  EXPECT_EQ(link->LastDelivery().SkippedLine, "HELLO");
}

TEST(UnrulyTcp, AnyBytesAsCommandGetTheirOwnReplyOrAreNotSent) {
  const RunningInstrument instrument;
  const auto link = CreateLink(instrument.Link(), 5.0, quietInterrupt);
  std::mt19937 random{99};
  for (int round = 0; round < 300; ++round) {
    std::string value;
    for (auto length = 1 + random() % 20; length > 0; --length) {
      value += static_cast<char>(random() % 256);
    }
    const bool isLine = value.find_first_of("\r\n") == std::string::npos;
    const auto key = "KEY" + std::to_string(round);
    EXPECT_EQ(Send(*link, "SET_CALIBRATION " + key + " " + value), isLine ? "OK" : "failed");
    const auto expected =
        isLine ? key + "=" + (IsUtf8(value) ? value : Utf8FromWindows1252(value)) : "SYNTAX_ERROR";
    EXPECT_EQ(Send(*link, "GET_CALIBRATION " + key), expected);
  }
}

// ---- Serial lines

// A line whose other end is in the test's hands.
class HandmadeLine {
 public:
  HandmadeLine() : master_{::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)} {
    std::array<char, 256> path{};
    EXPECT_EQ(::grantpt(master_) + ::unlockpt(master_) + ::ptsname_r(master_, path.data(), path.size()), 0);
    path_ = path.data();
    holder_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ::termios settings{};
    ::tcgetattr(holder_, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(holder_, TCSANOW, &settings);
  }
  ~HandmadeLine() { Vanish(); }
  HandmadeLine(const HandmadeLine&) = delete;
  HandmadeLine& operator=(const HandmadeLine&) = delete;

  const std::string& Path() const { return path_; }

  void Write(std::string_view text) const {
    EXPECT_EQ(::write(master_, text.data(), text.size()), static_cast<::ssize_t>(text.size()));
  }

  void ReadLine() const {
    char byte = 0;
    while (byte != '\n' && ::read(master_, &byte, 1) == 1) {
    }
  }

  // As when the cable is pulled out.
  void Vanish() {
    for (auto* end : {&master_, &holder_}) {
      if (*end >= 0) {
        ::close(std::exchange(*end, -1));
      }
    }
  }

 private:
  int master_;
  int holder_ = -1;
  std::string path_;
};

TEST(UnrulySerial, WhatLayOnTheLineBeforeItWasOpenedIsNoReply) {
  const HandmadeLine line;
  line.Write("left behind\r\n");
  const auto link = CreateLink("serial:" + line.Path(), 5.0, quietInterrupt);
  std::thread instrument{[&line] {
    line.ReadLine();
    line.Write("answer\r\n");
  }};
  EXPECT_EQ(Send(*link, "A"), "answer");
  instrument.join();
}

TEST(UnrulySerial, ALineThatBeganBeforeTheCommandIsNoReply) {
  const HandmadeLine line;
  const auto link = CreateLink("serial:" + line.Path(), 5.0, quietInterrupt);
  std::thread instrument{[&line] {
    line.ReadLine();
    line.Write("RACK_STAGE1_X=1\r\nRACK_");  // as bytes trickle in
    line.ReadLine();
    line.Write("STAGE1_X=77\r\nSTAGE1_X=5\r\n");
  }};
  EXPECT_EQ(Send(*link, "GET_CALIBRATION RACK_STAGE1_X"), "RACK_STAGE1_X=1");
  EXPECT_EQ(Send(*link, "GET_CALIBRATION STAGE1_X"), "STAGE1_X=5");
  instrument.join();
}

TEST(UnrulySerial, APortServesOneProgramAtATime) {
  const HandmadeLine line;
  const auto place = "serial:" + line.Path();
  const auto link = CreateLink(place, 0.2, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  EXPECT_TRUE(link->LastDelivery().HasLeft);
  EXPECT_EQ(ProblemOf(place), place + " cannot be opened: it is busy: another program has it open");
}

TEST(UnrulySerial, TheRestOfALineThatIsTooLongIsNoReplyToTheNextCommand) {
  const HandmadeLine line;
  const auto link = CreateLink("serial:" + line.Path(), 5.0, quietInterrupt);
  std::thread instrument{[&line] {
    line.ReadLine();
    for (int part = 0; part < 40; ++part) {
      line.Write(std::string(32768, 'x'));
    }
    line.Write("the rest\r\n");
    line.ReadLine();
    line.Write("STAGE1_X=1\r\n");
    line.ReadLine();
    line.Write("answer\r\n");
  }};
  EXPECT_EQ(Send(*link, "A"), "failed");
  EXPECT_EQ(Send(*link, "B"), "answer");
  instrument.join();
}

TEST(UnrulySerial, APortThatVanishesFailsTheSendAndWorksAgainWhenItIsBack) {
  const TemporaryFolder folder;
  const auto port = folder.Path("port");
  const auto link = CreateLink("serial:" + port, 0.3, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  for (const auto* reply : {"one", "two"}) {
    HandmadeLine line;
    std::filesystem::create_symlink(line.Path(), port);
    std::thread instrument{[&line, reply] {
      line.ReadLine();
      line.Write(std::string{reply} + "\r\n");
      line.ReadLine();
      line.Vanish();
    }};
    EXPECT_EQ(Send(*link, "A"), reply);
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "B"), "failed"); }), milliseconds{5'000});
    instrument.join();
    std::filesystem::remove(port);
    EXPECT_EQ(Send(*link, "C"), "failed");
  }
}

TEST(UnrulySerial, ALineThatTalksAfterATimeoutWithoutNamingAKeyFailsTheNextSendInTime) {
  const HandmadeLine line;
  const auto link = CreateLink("serial:" + line.Path() + ",115200", 0.1, quietInterrupt);
  EXPECT_EQ(Send(*link, "A"), "failed");
  std::atomic<bool> isDone = false;
  std::thread instrument{[&] {
    while (!isDone) {
      line.Write("noise\r\n");
      std::this_thread::sleep_for(milliseconds{50});
    }
  }};
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(Send(*link, "B"), "failed"); }), milliseconds{10'000});
  isDone = true;
  instrument.join();
}

}  // namespace
}  // namespace zolvane
