// An instrument behind a stream of bytes: a command is its text and CR LF, the reply one line.
//
// The derived class opens the stream; what came over it and when it counts is decided here. A read is always
// pending while the stream is open, so a connection that the other side has closed is noticed before the next
// command.
#pragma once

#include <algorithm>
#include <array>
#include <asio.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "bench/links/bench_link.h"
#include "bench/settings/text_encoding.h"

namespace zolvane {

using LinkTimeout = std::chrono::duration<double>;

template <class Stream>
class StreamLink : public BenchLink {
 public:
  ~StreamLink() override { Close(); }

 protected:
  using Clock = std::chrono::steady_clock;

  // What to do before the next command when a reply has not come in time: it may still come, and must never
  // be taken for the answer to the next command.
  enum class AfterTimeout : std::uint8_t {
    Reconnect,  // the late reply ends with its connection
    WaitForQuiet
  };

  StreamLink(LinkTimeout timeout, AfterTimeout afterTimeout, const InterruptFlag& interrupt)
      : BenchLink{interrupt}, timeout_{std::min(timeout, longestTimeout)}, afterTimeout_{afterTimeout} {}

  // Opens `Port`; false when that is not done by the deadline.
  virtual bool Open(Clock::time_point deadline) = 0;

  // Lets pending work run until `isDone` or the deadline.
  template <class IsDone>
  bool RunUntil(Clock::time_point deadline, IsDone isDone) {
    while (!isDone()) {
      Io.restart();
      if (Io.run_one_until(deadline) == 0 && Clock::now() >= deadline) {
        return isDone();
      }
    }
    return true;
  }

  asio::io_context Io;
  std::optional<Stream> Port;

 private:
  static constexpr std::size_t longestReply = 1U << 20;
  static constexpr LinkTimeout longestTimeout{1e6};
  static constexpr LinkTimeout shortestQuiet{1};
  static constexpr int longestUnrest = 5;  // in times of the quiet that is waited for

  std::optional<std::string> Exchange(const std::string& command) final {
    if (!DiscardInput()) {
      return std::nullopt;
    }
    const auto deadline = DeadlineIn(timeout_);
    if (!EnsureOpen(deadline) || !Send(command, deadline)) {
      Close();
      return std::nullopt;
    }
    const bool isEnded = RunUntil(deadline, [this] { return !isReading_ || HasLine() || IsOverlong(); });
    if (!HasLine()) {
      GiveUp(isEnded);
      return std::nullopt;
    }
    return TakeLine();
  }

  static Clock::time_point DeadlineIn(LinkTimeout duration) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(duration);
  }

  // Bytes that nobody asked for are no reply. False on a line that does not fall silent after a reply that
  // was late.
  bool DiscardInput() {
    if (mayComeLate_ && !WaitForQuiet()) {
      return false;
    }
    Io.restart();
    Io.poll();
    input_.clear();
    if (Port && !isReading_) {
      Close();  // the other side has closed it
    }
    return true;
  }

  // Silence has to last at least as long as a reply may take.
  bool WaitForQuiet() {
    const auto quiet = std::max(timeout_, shortestQuiet);
    const auto end = DeadlineIn(quiet * longestUnrest);
    do {
      input_.clear();
      mayComeLate_ =
          RunUntil(DeadlineIn(quiet), [this] { return !isReading_ || !input_.empty(); }) && isReading_;
    } while (mayComeLate_ && Clock::now() < end);
    return !mayComeLate_;
  }

  bool EnsureOpen(Clock::time_point deadline) {
    if (!Port && Open(deadline)) {
      Read();
    }
    return Port.has_value();
  }

  bool Send(const std::string& command, Clock::time_point deadline) {
    output_ = command + "\r\n";
    isWriting_ = true;
    hasWritten_ = false;
    asio::async_write(*Port, asio::buffer(output_), [this](std::error_code error, std::size_t) {
      isWriting_ = false;
      hasWritten_ = !error;
    });
    return RunUntil(deadline, [this] { return !isWriting_; }) && hasWritten_;
  }

  void Read() {
    isReading_ = true;
    Port->async_read_some(asio::buffer(chunk_), [this](std::error_code error, std::size_t size) {
      isReading_ = !error;
      if (isReading_) {
        input_.append(chunk_.data(), size);
        Read();
      }
    });
  }

  bool HasLine() const { return input_.find('\n') != std::string::npos; }
  bool IsOverlong() const { return input_.size() > longestReply; }

  // Bytes that are not UTF-8 are the Windows-1252 that older instruments speak.
  std::string TakeLine() {
    auto line = input_.substr(0, input_.find('\n'));
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    return IsUtf8(line) ? line : Utf8FromWindows1252(line);
  }

  // `isBroken`: the reply can never become a whole one. Otherwise it may still come.
  void GiveUp(bool isBroken) {
    if (isBroken || afterTimeout_ == AfterTimeout::Reconnect) {
      Close();
    } else {
      mayComeLate_ = true;
    }
  }

  void Close() {
    if (Port) {
      std::error_code ignored;
      Port->close(ignored);
      Io.restart();
      Io.run();  // the pending handlers end with the stream
      Port.reset();
    }
    input_.clear();
    mayComeLate_ = false;
  }

  LinkTimeout timeout_;
  AfterTimeout afterTimeout_;
  std::array<char, 4096> chunk_{};
  std::string input_;
  std::string output_;
  bool isReading_ = false;
  bool isWriting_ = false;
  bool hasWritten_ = false;
  bool mayComeLate_ = false;
};

}  // namespace zolvane
