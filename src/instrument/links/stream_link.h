// An instrument behind a stream of bytes: a command is its text and CR LF, a reply one line. The derived
// class opens the stream, wire_rules.h says which line answers which command, and this class sends and waits.
// A read is always pending while the stream is open, so a connection that the other side has closed is
// noticed before the next command.
#pragma once

#include <algorithm>
#include <array>
#include <asio.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "instrument/links/bench_link.h"
#include "instrument/links/line_reader.h"
#include "instrument/links/wire_rules.h"
#include "text/joined.h"
#include "text/text_encoding.h"

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

  // What to do with the stream after a missing reply: a connection may be dead without anybody having been
  // told, and is opened anew; a line is the same however often it is opened.
  enum class AfterTimeout : std::uint8_t { OpenAnew, Keep };

  // `name` is the user's name for the place.
  StreamLink(std::string name, LinkTimeout timeout, AfterTimeout afterTimeout, const InterruptFlag& interrupt)
      : BenchLink{interrupt},
        name_{std::move(name)},
        timeout_{std::min(timeout, longestTimeout)},
        afterTimeout_{afterTimeout} {}

  // Opens `Port`. When that is not done by the deadline: the reason for people, with `Port` closed.
  virtual std::optional<std::string> Open(Clock::time_point deadline) = 0;

  // Writes as much as the stream takes without waiting; the number of bytes. The rest is written later.
  virtual std::size_t WriteAtOnce(std::string_view /*bytes*/) { return 0; }

  // The user waits no longer: for a command that has left after the second interrupt, for
  // anything else after the first.
  bool IsCutShort() const { return isCommandOut_ ? Interrupt().IsUrgent() : Interrupt().IsRaised(); }

  // Calls `wait` with moments to wait until, one after the other, until `isDone`; false when the deadline
  // comes or the user cuts it short before that. A signal does not end a wait by itself, so each is short.
  template <class IsDone, class Wait>
  bool WaitUntil(Clock::time_point deadline, IsDone isDone, Wait wait) const {
    constexpr std::chrono::milliseconds glance{20};
    while (!isDone()) {
      const auto now = Clock::now();
      if (now >= deadline || IsCutShort()) {
        return false;
      }
      wait(std::min(deadline, now + glance));
    }
    return true;
  }

  // Lets pending work run until `isDone`, which it has to be when no work is left.
  template <class IsDone>
  bool RunUntil(Clock::time_point deadline, IsDone isDone) {
    Io.restart();
    return WaitUntil(deadline, isDone, [this](Clock::time_point moment) { Io.run_one_until(moment); });
  }

  asio::io_context Io{ASIO_CONCURRENCY_HINT_UNSAFE};  // of one thread
  Stream Port{Io};

 private:
  static constexpr LinkTimeout longestTimeout{1e6};

  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) final {
    const bool knowsPlace = !rules_.IsLost() || FindPlace(delivery);
    const auto deadline = DeadlineIn(timeout_);
    delivery.HasLeft = knowsPlace && MakeReady(deadline, delivery) && !IsCutShort();
    if (!delivery.HasLeft) {
      if (IsCutShort()) {
        delivery.Problem.clear();
      }
      return std::nullopt;
    }
    isCommandOut_ = true;
    rules_.Ask(command);
    auto reply = Converse(command, deadline, delivery);
    isCommandOut_ = false;
    if (!reply) {
      delivery.SkippedLine = rules_.SkippedLine();
    }
    return reply;
  }

  static Clock::time_point DeadlineIn(LinkTimeout duration) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(duration);
  }

  // After a missing reply. It has a timeout of its own, so the command behind it may take twice as long.
  bool FindPlace(Delivery& delivery) {
    const auto deadline = DeadlineIn(timeout_);
    if (afterTimeout_ == AfterTimeout::OpenAnew && rules_.HasQuestionForPlace()) {
      Close();
    }
    if (!MakeReady(deadline, delivery) || IsCutShort()) {
      return false;
    }
    const auto question = rules_.AskForPlace();
    if (Converse(question, deadline, delivery)) {
      return true;
    }
    delivery.Problem = Joined("a reply did not come in time; until the instrument answers ",
                              question.value_or("what it was asked last"), ", no other command is sent");
    return false;
  }

  // Sends what there is to send, and waits for the line that answers the command in hand.
  std::optional<std::string> Converse(const std::optional<std::string>& line, Clock::time_point deadline,
                                      Delivery& delivery) {
    bool goesOn = !line || Send(*line, deadline);
    while (goesOn && RunUntil(deadline, [this] { return input_.HasLine() || !isReading_; })) {
      auto heard = TakeLine();
      if (!heard) {
        break;
      }
      const auto verdict = rules_.Hear(*heard);
      if (verdict == WireRules::Verdict::Answer) {
        return heard;
      }
      if (verdict == WireRules::Verdict::AskAgain && !Interrupt().IsRaised()) {
        goesOn = DropInput(deadline) && Send(*line, deadline);
      }
    }
    GiveUp(delivery);
    return std::nullopt;
  }

  // Makes sure that the stream is open and empty.
  bool MakeReady(Clock::time_point deadline, Delivery& delivery) {
    if (Port.is_open() && !DropInput(deadline)) {
      Close();  // the other side has closed it, or never stops sending
    }
    if (!Port.is_open()) {
      if (const auto reason = Open(deadline)) {
        delivery.Problem = Joined(name_, " cannot be opened: ", *reason);
        return false;
      }
      rules_.Connect();
      Read();
      if (!DropInput(deadline)) {
        Close();
        delivery.Problem = Joined(name_, " was closed by the other side, or talks without end");
      }
    }
    return Port.is_open();
  }

  // Bytes that lie there before a command is sent are no reply to it. Does not wait. False when the stream
  // has ended, or has more to drop at the deadline.
  bool DropInput(Clock::time_point deadline) {
    Io.restart();
    do {
      while (input_.HasLine()) {
        rules_.Overhear(TakeLine().value_or(""));
      }
      input_.DropBegunLine();
    } while (Clock::now() < deadline && Io.poll_one() > 0);
    return isReading_ && Clock::now() < deadline;
  }

  bool Send(const std::string& command, Clock::time_point deadline) {
    output_ = command + "\r\n";
    const auto rest = asio::buffer(output_) + WriteAtOnce(output_);
    isWriting_ = rest.size() > 0;
    hasWritten_ = !isWriting_;
    if (hasWritten_) {
      return true;
    }
    asio::async_write(Port, rest, [this](std::error_code error, std::size_t) {
      isWriting_ = false;
      hasWritten_ = !error;
    });
    return RunUntil(deadline, [this] { return !isWriting_ || !isReading_; }) && hasWritten_;
  }

  // Goes on until the stream ends, or until more has come than a line can hold.
  void Read() {
    isReading_ = true;
    hasEnded_ = false;
    Port.async_read_some(asio::buffer(chunk_), [this](std::error_code error, std::size_t size) {
      input_.Append({chunk_.data(), size});
      hasEnded_ = static_cast<bool>(error);
      isReading_ = !hasEnded_ && input_.Begun() <= longestReply + chunk_.size();
      if (isReading_) {
        Read();
      }
    });
  }

  // Bytes that are not UTF-8 are the Windows-1252 that older instruments speak.
  std::optional<std::string> TakeLine() {
    auto line = input_.Take();
    if (!line || line->size() > longestReply) {
      return std::nullopt;
    }
    return IsUtf8(*line) ? *std::move(line) : Utf8FromWindows1252(*line);
  }

  // The command in hand may have arrived, and its reply may still come.
  void GiveUp(Delivery& delivery) {
    if (hasEnded_) {
      rules_.Disconnect();
      delivery.Problem = Joined(name_, " was closed by the other side");
    } else {
      rules_.TimeOut();
    }
    if (!isReading_ || isWriting_) {
      Close();
    }
  }

  void Close() {
    if (Port.is_open()) {
      std::error_code ignored;
      Port.close(ignored);
      Io.restart();
      Io.run();  // the pending handlers end with the stream
    }
    input_.Clear();
    isReading_ = false;
  }

  std::string name_;
  LinkTimeout timeout_;
  AfterTimeout afterTimeout_;
  WireRules rules_;
  std::array<char, 4096> chunk_{};
  LineReader input_;
  std::string output_;
  bool isCommandOut_ = false;
  bool isReading_ = false;
  bool isWriting_ = false;
  bool hasWritten_ = false;
  bool hasEnded_ = false;  // by the other side
};

}  // namespace zolvane
