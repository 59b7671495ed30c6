// The bench on a terminal, where it asks, counts and is interrupted.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <asio.hpp>
#include <chrono>
#include <csignal>
#include <optional>
#include <string>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(OnTerminal, ABoxAsksTheUser) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  EXPECT_NE(Terminal.Shown().find("\r\nUpload Calibration Data to Zolvane\r\n"
                                  "  The calibration data stored on this computer will be transferred\r\n"
                                  "  to the Zolvane overwriting any existing data.\r\n"
                                  "\r\n"
                                  "  Click [OK] to upload this information.\r\n"
                                  "OK / Cancel? "),
            std::string::npos)
      << Terminal.Shown();
  Terminal.Type("ok\n");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Terminal.Shown().find("upload: done (36 of 36 commands sent; 36 accepted; SAVE accepted)\r\n"),
            std::string::npos);
}

TEST_F(OnTerminal, AnAnswerThatIsNoneIsAskedForAgain) {
  Folder.Put("backup.bak", otherModules);
  Start({"import", Folder.Path("backup.bak")});
  ASSERT_TRUE(Terminal.WaitFor("Yes / No / Cancel? "));
  Terminal.Type("ok\n\n  Y \n");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Configuration().find("Item1=\"Other\",MICROTITER"), std::string::npos);
}

TEST_F(OnTerminal, NoIsAnAnswer) {
  Folder.Put("backup.bak", otherModules);
  Start({"import", Folder.Path("backup.bak")});
  ASSERT_TRUE(Terminal.WaitFor("Yes / No / Cancel? "));
  Terminal.Type("n\n");
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(OnTerminal, TheEndOfTheInputCancels) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Type("\x04");
  EXPECT_EQ(End(), 1);
}

TEST_F(OnTerminal, AHangUpCancels) {
  Start({"upload"});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Close();
  EXPECT_EQ(End(), 1);
}

TEST_F(OnTerminal, ListedAnswersAndYesAskNobody) {
  Start({"--answer", "ok", "--yes", "upload"});
  EXPECT_EQ(End(), 0);
  EXPECT_EQ(Terminal.Shown().find("OK / Cancel?"), std::string::npos);
}

TEST_F(OnTerminal, AnUploadCountsItsCommandsInOneLine) {
  SimulatorProcess simulator{{"--latency", "20"}};
  Start({"--yes", "--link", simulator.Link(), "run", "-"});
  Terminal.Type("upload\ndownload\n\x04");
  EXPECT_EQ(End(), 0);
  EXPECT_NE(Terminal.Shown().find("\r\x1b[KUploading Data to Zolvane  "), std::string::npos);
  EXPECT_NE(Terminal.Shown().find(" of 36\r"), std::string::npos) << Terminal.Shown();
  EXPECT_NE(Terminal.Shown().find("\r\x1b[KDownloading Data from Zolvane...Stage XY  "), std::string::npos)
      << Terminal.Shown();
  EXPECT_NE(Terminal.Shown().find(" of 35\r"), std::string::npos) << Terminal.Shown();
}

// ---- Interrupts ----

// An instrument that takes one client's lines and answers when the test says so.
class ToldInstrument {
 public:
  std::string Link() const { return "tcp:127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port()); }

  // The next line that comes; empty when the client has gone.
  std::string NextLine() {
    if (!client_.is_open()) {
      client_ = acceptor_.accept();
    }
    std::error_code ended;
    const auto size = asio::read_until(client_, asio::dynamic_buffer(input_), '\n', ended);
    const auto line = input_.substr(0, size);
    input_.erase(0, size);
    return line;
  }

  void Answer(std::string_view reply) { asio::write(client_, asio::buffer(reply)); }

 private:
  asio::io_context io_;
  asio::ip::tcp::acceptor acceptor_{io_, {asio::ip::address_v4::loopback(), 0}};
  asio::ip::tcp::socket client_{io_};
  std::string input_;
};

TEST_F(OnTerminal, AnInterruptAtAQuestionCancelsAndEndsTheRun) {
  Folder.Put("job.txt", "upload\ntick chkRFID 1\n");
  Start({"--trace", Folder.Path("trace.jsonl"), "run", Folder.Path("job.txt")});
  ASSERT_TRUE(Terminal.WaitFor("OK / Cancel? "));
  Terminal.Type("\x03");
  EXPECT_EQ(End(), 1);
  EXPECT_NE(Terminal.Shown().find("interrupted: 1 of 2 commands not begun: tick chkRFID 1"),
            std::string::npos)
      << Terminal.Shown();
  EXPECT_EQ(Configuration(), configText);
  const auto last = EventsOf(Folder.Read("trace.jsonl"), {"changed", "link"});
  ASSERT_EQ(last.size(), 2U);
  EXPECT_EQ(last[1].dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

TEST_F(OnTerminal, AnInterruptBeforeTheSessionEndsTheProgram) {
  Start({"run", "-"});
  Terminal.Type("tick chkRFID 1\n\x03");
  EXPECT_EQ(End(), -SIGINT);
  EXPECT_EQ(Configuration(), configText);
}

// The terminal shows ^C when the signal is on its way, so the interrupt comes before the reply.
TEST_F(OnTerminal, CtrlCFinishesTheCommandInHandAndEndsTheSessionInOrder) {
  ToldInstrument instrument;
  Start({"--yes", "--trace", Folder.Path("trace.jsonl"), "--link", instrument.Link(), "upload"});
  ASSERT_NE(instrument.NextLine(), "");
  instrument.Answer("OK\r\n");
  ASSERT_NE(instrument.NextLine(), "");
  Terminal.Type("\x03");
  ASSERT_TRUE(Terminal.WaitFor("^C"));
  instrument.Answer("OK\r\n");
  EXPECT_EQ(instrument.NextLine(), "");
  EXPECT_EQ(End(), 1);
  const auto trace = Folder.Read("trace.jsonl");
  const auto sends = EventsOf(trace, {"send"});
  ASSERT_GE(sends.size(), 2U);
  EXPECT_EQ(sends[0]["ok"], true);
  EXPECT_EQ(sends[1]["ok"], true);
  const auto lines = LinesOf(trace);
  EXPECT_EQ(lines[lines.size() - 2], R"({"event":"changed","value":false})");
  EXPECT_EQ(lines.back(), R"({"event":"link","flag":"hold","op":"set","value":false})");
  EXPECT_NE(Terminal.Shown().find("upload: stopped ("), std::string::npos) << Terminal.Shown();
}

class Interrupted : public Bench {
 protected:
  // A download that waits for the answer to its first command, for `timeout` seconds.
  void StartDownload(const std::string& timeout) {
    program_.emplace(
        ZOLVANE_BENCH_PATH,
        Arguments{"--folder", Folder.Path(), "--yes", "--quiet", "--timeout", timeout, "--trace",
                  Folder.Path("trace.jsonl"), "--link", Instrument.Link(), "download"},
        Process::Streams{
            .Input = nothing_.Number(), .Output = nothing_.Number(), .Errors = nothing_.Number()});
    ASSERT_EQ(Instrument.NextLine(), "GET_CALIBRATION STAGE1_X\r\n");
  }

  void Signal(int signal) const { program_->Signal(signal); }
  int End() { return program_->WaitUntil(std::chrono::steady_clock::now() + processDeadline); }

  ToldInstrument Instrument;

 private:
  Descriptor nothing_{::open("/dev/null", O_RDWR | O_CLOEXEC)};
  std::optional<Process> program_;
};

TEST_F(Interrupted, NoFurtherCommandLeavesWhateverTheAddInTries) {
  StartDownload("0.5");
  Signal(SIGINT);
  EXPECT_EQ(Instrument.NextLine(), "");
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(EventsOf(Folder.Read("trace.jsonl"), {"send"}).front()["ok"], false);
}

TEST_F(Interrupted, ASecondTimeTheWaitEndsAtOnce) {
  StartDownload("100000");
  Signal(SIGTERM);
  Signal(SIGINT);
  EXPECT_EQ(End(), 1);
  EXPECT_EQ(Instrument.NextLine(), "");
  const auto last = EventsOf(Folder.Read("trace.jsonl"), {"changed", "link"});
  ASSERT_FALSE(last.empty());
  EXPECT_EQ(last.back().dump(), R"({"event":"link","flag":"hold","op":"set","value":false})");
}

}  // namespace
}  // namespace zolvane
