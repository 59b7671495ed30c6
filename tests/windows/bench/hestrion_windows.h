// HestrionBench at work as a program of its own, its windows seen and used from outside.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <semaphore>
#include <sstream>
#include <string>

#include "bench/windows/window/main_window.h"
#include "instrument/links/running_instrument.h"
#include "shell/windows/page/page_layout.h"
#include "shell/windows/page/window_class.h"
#include "windows/bench/bench_folder.h"
#include "windows/support/child_process.h"

namespace zolvane {

// A visible window of a process, by its class; null if there is none.
HWND WindowOf(DWORD process, const std::wstring& className);

std::string ShownText(HWND window);

// The text of the box that the process shows, which is then answered. With a title: of the box that bears it.
std::string AnswerBoxOf(DWORD process, int button, const std::wstring& title = {});

// Answers a command with OK when it has been let.
class HeldInstrument {
 public:
  HeldInstrument() : server_{[this](asio::ip::tcp::acceptor& acceptor) { Serve(acceptor.accept()); }} {}
  // Whoever is connected has left before.
  // NOLINTNEXTLINE(bugprone-exception-escape): there are sockets on the machine
  ~HeldInstrument() {
    Let(enough);
    asio::io_context io;
    asio::ip::tcp::socket last{io};  // for a server that nobody came to
    asio::error_code ignored;
    last.connect({asio::ip::address_v4::loopback(), server_.Port()}, ignored);
  }
  HeldInstrument(const HeldInstrument&) = delete;
  HeldInstrument& operator=(const HeldInstrument&) = delete;

  static constexpr int enough = 1000;

  std::string Link() const { return server_.Link(); }
  void Let(int answers) { answers_.release(answers); }
  int Received() const { return received_; }
  bool Receives(int commands) const {
    return Eventually([this, commands] { return received_ == commands; });
  }

 private:
  void Serve(asio::ip::tcp::socket socket) {
    std::string input;
    asio::error_code error;
    while (true) {
      const auto length = asio::read_until(socket, asio::dynamic_buffer(input), "\r\n", error);
      if (error) {
        return;
      }
      input.erase(0, length);
      ++received_;
      answers_.acquire();
      asio::write(socket, asio::buffer(std::string{"OK\r\n"}), error);
    }
  }

  std::counting_semaphore<std::ptrdiff_t{3} * enough> answers_{0};
  std::atomic<int> received_ = 0;
  HandmadeServer server_;
};

class HestrionWindows : public testing::Test {
 protected:
  // With the page open unless the arguments are to do that.
  void Start(const Arguments& more, bool opensPage = true) {
    Arguments arguments{"--folder", folder_.Text(), "--trace", folder_.File("trace.jsonl")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    process_.emplace(HestrionBenchPath(), arguments);
    ASSERT_TRUE(Eventually([this] { return Main() != nullptr || !process_->IsRunning(); }));
    if (opensPage) {
      Order(openPageId);
      ASSERT_TRUE(Eventually([this] { return Frame() != nullptr; })) << process_->Errors();
    }
  }

  HWND TopLevel(const std::wstring& className) const { return WindowOf(process_->Id(), className); }

  HWND Main() const { return TopLevel(mainWindowClass); }
  HWND Frame() const { return FindWindowExW(Main(), nullptr, frameClassName, nullptr); }
  HWND Box() const { return TopLevel(L"#32770"); }
  HWND Control(int id) const { return GetDlgItem(Frame(), id); }
  void Order(int command) const { PostMessageW(Main(), WM_COMMAND, static_cast<WPARAM>(command), 0); }

  // As the mouse does: the program must not be waited for, as the operation may show a box.
  void Press(HWND button) const {
    constexpr LPARAM inside = MAKELPARAM(5, 5);
    PostMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, inside);
    PostMessageW(button, WM_LBUTTONUP, 0, inside);
  }

  std::string StatusText() const { return ShownText(GetDlgItem(Main(), statusBarId)); }
  std::string Progress() const { return ShownText(GetDlgItem(Main(), progressId)); }
  std::string Log() const { return ShownText(GetDlgItem(Main(), logId)); }
  bool Logs(const std::string& text) const {
    return Eventually([&] { return Log().find(text) != std::string::npos; });
  }
  bool CanStop() const { return IsWindowEnabled(GetDlgItem(Main(), stopId)) != FALSE; }
  bool IsAtRest() const {
    return Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; });
  }

  // The text of the box that is open, which is then answered.
  std::string AnswerBox(int button) const { return AnswerBoxOf(process_->Id(), button); }

  // The instrument has the first command of an upload and has not answered it.
  void StartUpload() {
    Start({"--link", instrument_.Link(), "--timeout", "60"});
    Press(Control(IdOfButton(uploadButton)));
    AnswerBox(IDOK);
    ASSERT_TRUE(instrument_.Receives(1));
  }

  void CloseWindow() const { PostMessageW(Main(), WM_CLOSE, 0, 0); }

  int EventsOf(const std::string& part) const {
    std::istringstream trace{folder_.Content("trace.jsonl")};
    int count = 0;
    for (std::string line; std::getline(trace, line);) {
      count += line.find(part) != std::string::npos ? 1 : 0;
    }
    return count;
  }

  BenchFolder folder_;
  HeldInstrument instrument_;
  std::optional<ChildProcess> process_;
};

}  // namespace zolvane
