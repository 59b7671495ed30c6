#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "program/terminal.h"

namespace zolvane {
namespace {

constexpr std::array interruptSignals{SIGINT, SIGTERM, SIGHUP};

// A longer line is no answer; the rest of it is dropped.
constexpr std::size_t longestAnswer = 4096;

// What a signal handler can reach.
struct SignalState {
  std::atomic<void (*)()> Call{nullptr};
  std::atomic<bool> WasInterrupted{false};
};

SignalState& Signals() {
  static constinit SignalState state;
  return state;
}

extern "C" void OnInterruptSignal(int) {
  Signals().WasInterrupted = true;
  if (auto* const call = Signals().Call.load()) {
    call();
  }
}

// Blocks interrupts, so that none is missed between checking for one and waiting for it.
class HeldInterrupts {
 public:
  HeldInterrupts() {
    ::sigset_t held;
    ::sigemptyset(&held);
    for (const int signal : interruptSignals) {
      ::sigaddset(&held, signal);
    }
    ::sigprocmask(SIG_BLOCK, &held, &before_);
  }
  ~HeldInterrupts() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

  HeldInterrupts(const HeldInterrupts&) = delete;
  HeldInterrupts& operator=(const HeldInterrupts&) = delete;

  // Waits for input with interrupts unblocked. False if one came.
  bool WaitForInput(int file) const {
    ::pollfd waiting{.fd = file, .events = POLLIN, .revents = 0};
    while (!Signals().WasInterrupted) {
      if (::ppoll(&waiting, 1, nullptr, &before_) > 0) {
        return true;
      }
      if (errno != EINTR) {
        return false;
      }
    }
    return false;
  }

 private:
  ::sigset_t before_{};
};

class PosixTerminal final : public Questioner {
 public:
  // Takes the descriptor on which the question is shown.
  explicit PosixTerminal(int output) : output_{output} {}
  ~PosixTerminal() override { ::close(output_); }

  PosixTerminal(const PosixTerminal&) = delete;
  PosixTerminal& operator=(const PosixTerminal&) = delete;

  std::optional<std::string> Ask(std::string_view text) override {
    Show(text);
    std::string line;
    char byte = 0;
    while (ReadByte(byte)) {
      if (byte == '\n') {
        return line;
      }
      if (line.size() < longestAnswer) {
        line += byte;
      }
    }
    Show("\n");
    return std::nullopt;
  }

 private:
  void Show(std::string_view text) const {
    while (!text.empty()) {
      const auto written = ::write(output_, text.data(), text.size());
      if (written <= 0) {
        return;
      }
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  static bool ReadByte(char& byte) {
    const HeldInterrupts held;
    return held.WaitForInput(STDIN_FILENO) && ::read(STDIN_FILENO, &byte, 1) == 1;
  }

  int output_;
};

// Questions go where the user looks: to standard error or, if that is redirected, to the terminal itself.
int OpenQuestionOutput() {
  if (::isatty(STDERR_FILENO) != 0) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
    return ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  }
  std::array<char, 256> name{};
  if (::ttyname_r(STDIN_FILENO, name.data(), name.size()) != 0) {
    return -1;
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return ::open(name.data(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
}

bool IsIgnored(int signal) {
  struct sigaction current{};
  return ::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

}  // namespace

std::unique_ptr<Questioner> OpenTerminal() {
  if (::isatty(STDIN_FILENO) == 0) {
    return nullptr;
  }
  const int output = OpenQuestionOutput();
  return output < 0 ? nullptr : std::make_unique<PosixTerminal>(output);
}

std::optional<std::size_t> ErrorTerminalWidth() {
  constexpr std::size_t usualWidth = 80;
  if (::isatty(STDERR_FILENO) == 0) {
    return std::nullopt;
  }
  ::winsize size{};
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return isKnown ? size.ws_col : usualWidth;
}

std::vector<std::string> ProgramArguments(int count, char** arguments) {
  return {arguments + (count > 0 ? 1 : 0), arguments + count};
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const char* const text = std::getenv(name.c_str());
  return text == nullptr || *text == '\0' ? std::nullopt : std::optional<std::string>{text};
}

void KeepStandardStreams() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
    if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF) {
      // Opened the wrong way round, so that using it fails.
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
      ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

void TakeInterrupts(void (*interrupt)()) {
  Signals().Call = interrupt;
  struct sigaction action{};
  action.sa_handler = OnInterruptSignal;
  ::sigemptyset(&action.sa_mask);
  for (const int signal : interruptSignals) {
    // A program that was started to outlive its terminal still does.
    if (signal != SIGHUP || !IsIgnored(signal)) {
      ::sigaction(signal, &action, nullptr);
    }
  }
}

}  // namespace zolvane
