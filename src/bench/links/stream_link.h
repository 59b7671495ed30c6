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
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "bench/links/bench_link.h"
#include "bench/settings/text_encoding.h"

namespace zolvane {

using LinkTimeout = std::chrono::duration<double>;

// Without its line end. An instrument that sends longer lines is out of order.
inline constexpr std::size_t longestReply = std::size_t{1} << 20;

template <class Stream>
class StreamLink : public BenchLink {
 public:
  // NOLINTNEXTLINE(bugprone-exception-escape): closing throws for lack of memory alone
  ~StreamLink() override { Close(); }

 protected:
  using Clock = std::chrono::steady_clock;

  // A reply that has not come in time may still come, and must never be taken for the answer to the next
  // command. Either it ends with its connection, and the next command opens another one; or, where all
  // commands share one line, that line has to be quiet before the next command: for `shortestQuiet`, but at
  // least as long as a reply may take.
  StreamLink(LinkTimeout timeout, std::optional<LinkTimeout> shortestQuiet, const InterruptFlag& interrupt)
      : BenchLink{interrupt}, timeout_{std::min(timeout, longestTimeout)}, shortestQuiet_{shortestQuiet} {}

  // Opens `Port`; false, with `Port` empty, when that is not done by the deadline.
  virtual bool Open(Clock::time_point deadline) = 0;

  // Writes as much as the stream takes without waiting; the number of bytes. The rest is written later.
  virtual std::size_t WriteAtOnce(std::string_view /*bytes*/) { return 0; }

  // Lets pending work run until `isDone`; false when the deadline comes first.
  template <class IsDone>
  bool RunUntil(Clock::time_point deadline, IsDone isDone) {
    Io.restart();
    while (!isDone() && Io.run_one_until(deadline) > 0) {
    }
    return isDone();
  }

  asio::io_context Io{ASIO_CONCURRENCY_HINT_UNSAFE};  // of one thread
  std::optional<Stream> Port;

 private:
  static constexpr LinkTimeout longestTimeout{1e6};
  static constexpr int longestUnrest = 3;  // in times of the quiet that is waited for

  std::optional<std::string> Exchange(const std::string& command) final {
    auto deadline = DeadlineIn(timeout_);
    if (!MakeReady(deadline)) {
      return std::nullopt;
    }
    if (mayComeLate_) {
      if (!WaitForQuiet()) {
        return std::nullopt;
      }
      deadline = DeadlineIn(timeout_);
    }
    std::optional<std::string> reply;
    if (Send(command, deadline)) {
      RunUntil(deadline, [this] { return HasLine() || !isReading_; });
      reply = TakeLine();
    }
    if (!reply) {
      GiveUp();
    }
    return reply;
  }

  static Clock::time_point DeadlineIn(LinkTimeout duration) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(duration);
  }

  // Sees to it that the stream is open and that nothing lies in it: bytes that nobody asked for are no reply.
  bool MakeReady(Clock::time_point deadline) {
    if (Port && !DiscardInput(deadline)) {
      Close();  // the other side has closed it, or talks without end
    }
    if (!Port && Open(deadline)) {
      Read();
      if (!DiscardInput(deadline)) {
        Close();
      }
    }
    return Port.has_value();
  }

  // Does not wait. False when the stream has ended, or has more to discard at the deadline.
  bool DiscardInput(Clock::time_point deadline) {
    Io.restart();
    while (Io.poll_one() > 0) {
      input_.clear();
      if (Clock::now() >= deadline) {
        return false;
      }
    }
    input_.clear();
    return isReading_;
  }

  // False on a line that does not fall silent.
  bool WaitForQuiet() {
    const auto quiet = std::max(timeout_, shortestQuiet_.value_or(timeout_));
    const auto end = DeadlineIn(quiet * longestUnrest);
    while (mayComeLate_ && isReading_ && Clock::now() < end) {
      input_.clear();
      mayComeLate_ = RunUntil(DeadlineIn(quiet), [this] { return !input_.empty() || !isReading_; });
    }
    return !mayComeLate_;
  }

  bool Send(const std::string& command, Clock::time_point deadline) {
    output_ = command + "\r\n";
    const auto rest = asio::buffer(output_) + WriteAtOnce(output_);
    isWriting_ = rest.size() > 0;
    hasWritten_ = !isWriting_;
    if (hasWritten_) {
      return true;
    }
    asio::async_write(*Port, rest, [this](std::error_code error, std::size_t) {
      isWriting_ = false;
      hasWritten_ = !error;
    });
    return RunUntil(deadline, [this] { return !isWriting_ || !isReading_; }) && hasWritten_;
  }

  // Goes on until the stream ends, or until more has come than a reply can be.
  void Read() {
    isReading_ = true;
    Port->async_read_some(asio::buffer(chunk_), [this](std::error_code error, std::size_t size) {
      input_.append(chunk_.data(), size);
      isReading_ = !error && input_.size() <= longestReply + chunk_.size();
      if (isReading_) {
        Read();
      }
    });
  }

  bool HasLine() const { return input_.find('\n') != std::string::npos; }

  // Bytes that are not UTF-8 are the Windows-1252 that older instruments speak.
  std::optional<std::string> TakeLine() const {
    const auto end = input_.find('\n');
    auto line = input_.substr(0, end);
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    if (end == std::string::npos || line.size() > longestReply) {
      return std::nullopt;
    }
    return IsUtf8(line) ? line : Utf8FromWindows1252(line);
  }

  // The command may have arrived, and its reply may still come.
  void GiveUp() {
    mayComeLate_ = shortestQuiet_.has_value();
    if (!mayComeLate_ || !isReading_ || isWriting_) {
      Close();
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
    isReading_ = false;
  }

  LinkTimeout timeout_;
  std::optional<LinkTimeout> shortestQuiet_;
  std::array<char, 4096> chunk_{};
  std::string input_;
  std::string output_;
  bool isReading_ = false;
  bool isWriting_ = false;
  bool hasWritten_ = false;
  bool mayComeLate_ = false;  // a reply to an earlier command
};

}  // namespace zolvane
