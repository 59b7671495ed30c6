// Running the programs as processes: with pipes, on a terminal, and with a simulated instrument beside them.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "support/temporary_folder.h"

namespace zolvane {

using Arguments = std::vector<std::string>;

// Generous: it only has to end what hangs.
inline constexpr std::chrono::seconds processDeadline{60};

struct ProcessResult {
  int Status = -1;  // the exit status, or minus the signal that ended it
  std::string Output;
  std::string Errors;
};

// A file descriptor with an owner.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_{number} {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : number_{std::exchange(other.number_, -1)} {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    Close();
    number_ = std::exchange(other.number_, -1);
    return *this;
  }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  void Close() {
    if (number_ >= 0) {
      ::close(std::exchange(number_, -1));
    }
  }

 private:
  int number_ = -1;
};

struct Pipe {
  Descriptor ReadEnd;
  Descriptor WriteEnd;
};

inline Pipe OpenPipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    ADD_FAILURE() << "no pipe";
  }
  return {Descriptor{ends[0]}, Descriptor{ends[1]}};
}

// Reads what is there. False at the end.
inline bool ReadSome(const Descriptor& from, std::string& to) {
  std::array<char, 65536> bytes{};
  const auto count = ::read(from.Number(), bytes.data(), bytes.size());
  if (count > 0) {
    to.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return count > 0 || (count < 0 && errno == EINTR);
}

inline bool IsReadableBy(const Descriptor& descriptor, std::chrono::steady_clock::time_point deadline) {
  using namespace std::chrono;
  const auto left = duration_cast<milliseconds>(deadline - steady_clock::now()).count();
  ::pollfd waiting{.fd = descriptor.Number(), .events = POLLIN, .revents = 0};
  return left > 0 && ::poll(&waiting, 1, static_cast<int>(left)) > 0;
}

// A child process. Killed when it is let go of before it has ended. Its number is forgotten as soon as it has
// been waited for, so that a signal can never reach anybody else; 0 and negative numbers, which mean whole
// groups of processes, are never kept at all.
class Process {
 public:
  struct Streams {
    int Input = -1;  // -1: closed
    int Output = -1;
    int Errors = -1;
    bool IsTerminal = false;                  // the input becomes the controlling terminal
    std::function<void()> InChild = nullptr;  // called before the program starts
  };

  Process(const std::string& program, const Arguments& arguments, const Streams& streams) {
    // NOLINTBEGIN(cppcoreguidelines-pro-type-const-cast): the system call takes them so, and changes nothing
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const auto& argument : arguments) {
      words.push_back(const_cast<char*>(argument.c_str()));
    }
    // NOLINTEND(cppcoreguidelines-pro-type-const-cast)
    words.push_back(nullptr);
    const ::pid_t number = ::fork();
    if (number == 0) {
      Become(words, streams);
    }
    if (number > 0) {
      child_ = number;
    } else {
      ADD_FAILURE() << "no process";
    }
  }
  ~Process() {
    if (child_) {
      Signal(SIGKILL);
      Wait();
    }
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  // -1 once it has been waited for.
  ::pid_t Number() const { return child_.value_or(-1); }

  void Signal(int signal) const {
    if (child_ && *child_ > 0) {
      ::kill(*child_, signal);
    }
  }

  // Waits until it has a handler for the signal, which would end it before. The handlers that it has from us, before it
  // becomes its program, do not count.
  bool WaitUntilCatches(int signal) const {
    const auto deadline = std::chrono::steady_clock::now() + processDeadline;
    const auto programOf = [](const std::string& process) {
      std::error_code ignored;
      return std::filesystem::read_symlink("/proc/" + process + "/exe", ignored);
    };
    while (child_ && std::chrono::steady_clock::now() < deadline) {
      if (programOf(std::to_string(*child_)) == programOf("self")) {
        ::usleep(1000);
        continue;
      }
      std::ifstream status{"/proc/" + std::to_string(*child_) + "/status"};
      for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigCgt:") &&
            (std::stoull(line.substr(line.find('\t') + 1), nullptr, 16) >> (signal - 1) & 1) != 0) {
          return true;
        }
      }
      ::usleep(1000);
    }
    return false;
  }

  // The exit status, or minus the signal that ended it.
  int Wait() {
    int status = 0;
    if (!child_) {
      return -1;
    }
    while (::waitpid(*child_, &status, 0) < 0 && errno == EINTR) {
    }
    child_.reset();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  // Waits until the process ends or the deadline is over, when it is killed.
  int WaitUntil(std::chrono::steady_clock::time_point deadline) {
    while (child_ && std::chrono::steady_clock::now() < deadline) {
      ::siginfo_t info{};
      if (::waitid(P_PID, static_cast<::id_t>(*child_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
          info.si_pid != 0) {
        return Wait();
      }
      ::usleep(2000);
    }
    ADD_FAILURE() << "the process does not end";
    Signal(SIGKILL);
    return Wait();
  }

 private:
  [[noreturn]] static void Become(std::vector<char*>& words, const Streams& streams) {
    // Whatever started the tests may ignore these.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
      std::signal(signal, SIG_DFL);
    }
    if (streams.IsTerminal) {
      ::setsid();
      ::ioctl(streams.Input, TIOCSCTTY, 0);
    }
    const std::array<int, 3> given{streams.Input, streams.Output, streams.Errors};
    for (int target = 0; target < 3; ++target) {
      const int source = given[static_cast<std::size_t>(target)];
      source < 0 ? ::close(target) : ::dup2(source, target);
    }
    if (streams.InChild) {
      streams.InChild();
    }
    ::execv(words.front(), words.data());
    ::_exit(127);
  }

  std::optional<::pid_t> child_;
};

struct RunSetup {
  std::string Input{};
  std::function<void()> InChild{};
  std::chrono::seconds Deadline = processDeadline;
};

// Runs a program to its end.
inline ProcessResult RunProgram(const std::string& program, const Arguments& arguments,
                                const RunSetup& setup = {}) {
  auto input = OpenPipe();
  auto output = OpenPipe();
  auto errors = OpenPipe();
  Process process{program,
                  arguments,
                  {.Input = input.ReadEnd.Number(),
                   .Output = output.WriteEnd.Number(),
                   .Errors = errors.WriteEnd.Number(),
                   .InChild = setup.InChild}};
  input.ReadEnd.Close();
  output.WriteEnd.Close();
  errors.WriteEnd.Close();
  std::signal(SIGPIPE, SIG_IGN);
  EXPECT_LE(setup.Input.size(), 60000U) << "would not fit into the pipe";
  if (::write(input.WriteEnd.Number(), setup.Input.data(), setup.Input.size()) < 0) {
    EXPECT_EQ(errno, EPIPE);
  }
  input.WriteEnd.Close();

  ProcessResult result;
  const auto deadline = std::chrono::steady_clock::now() + setup.Deadline;
  while (output.ReadEnd.IsOpen() || errors.ReadEnd.IsOpen()) {
    std::array<::pollfd, 2> waiting{::pollfd{.fd = output.ReadEnd.Number(), .events = POLLIN, .revents = 0},
                                    ::pollfd{.fd = errors.ReadEnd.Number(), .events = POLLIN, .revents = 0}};
    if (std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "the program does not end";
      process.Signal(SIGKILL);
      break;
    }
    ::poll(waiting.data(), waiting.size(), 1000);
    if (waiting[0].revents != 0 && !ReadSome(output.ReadEnd, result.Output)) {
      output.ReadEnd.Close();
    }
    if (waiting[1].revents != 0 && !ReadSome(errors.ReadEnd, result.Errors)) {
      errors.ReadEnd.Close();
    }
  }
  result.Status = process.WaitUntil(deadline);
  return result;
}

// The user's end of a pseudo-terminal.
class PseudoTerminal {
 public:
  PseudoTerminal() : master_{::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)} {
    ::grantpt(master_.Number());
    ::unlockpt(master_.Number());
    std::array<char, 128> name{};
    ::ptsname_r(master_.Number(), name.data(), name.size());
    slave_ = Descriptor{::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC)};
    ::winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    ::ioctl(master_.Number(), TIOCSWINSZ, &size);
  }

  int Slave() const { return slave_.Number(); }

  // To be called when the process has been started: waits until the terminal is its own, and what is typed reaches it.
  void HandOver() {
    const auto deadline = std::chrono::steady_clock::now() + processDeadline;
    while (::tcgetpgrp(master_.Number()) <= 0 && std::chrono::steady_clock::now() < deadline) {
      ::usleep(1000);
    }
    slave_.Close();
  }

  // Hangs up.
  void Close() { master_.Close(); }

  void Type(std::string_view text) const {
    EXPECT_EQ(::write(master_.Number(), text.data(), text.size()), static_cast<::ssize_t>(text.size()));
  }

  // Reads until the text has appeared; false when it does not.
  bool WaitFor(std::string_view text) {
    const auto deadline = std::chrono::steady_clock::now() + processDeadline;
    while (shown_.find(text) == std::string::npos) {
      if (!IsReadableBy(master_, deadline) || !ReadSome(master_, shown_)) {
        return shown_.find(text) != std::string::npos;
      }
    }
    return true;
  }

  // All that was shown until the process let go of the terminal.
  const std::string& ReadToEnd() {
    const auto deadline = std::chrono::steady_clock::now() + processDeadline;
    while (master_.IsOpen() && IsReadableBy(master_, deadline) && ReadSome(master_, shown_)) {
    }
    return shown_;
  }

  const std::string& Shown() const { return shown_; }

 private:
  Descriptor master_;
  Descriptor slave_;
  std::string shown_;
};

// A simulated instrument in a process of its own, until the end of the scope.
class SimulatorProcess {
 public:
  explicit SimulatorProcess(const Arguments& arguments)
      : output_{OpenPipe()},
        errors_{OpenPipe()},
        process_{ZOLVANE_SIM_PATH,
                 arguments,
                 {.Input = nothing_.Number(),
                  .Output = output_.WriteEnd.Number(),
                  .Errors = errors_.WriteEnd.Number()}} {
    output_.WriteEnd.Close();
    errors_.WriteEnd.Close();
    const auto deadline = std::chrono::steady_clock::now() + processDeadline;
    while (place_.find('\n') == std::string::npos) {
      if (!IsReadableBy(output_.ReadEnd, deadline) || !ReadSome(output_.ReadEnd, place_)) {
        End(SIGKILL);
        ADD_FAILURE() << "the simulator does not say where it listens: " << Errors();
        return;
      }
    }
    place_.erase(place_.find('\n'));
  }

  // For --link.
  const std::string& Link() const { return place_; }

  ::pid_t Number() const { return process_.Number(); }

  // Its exit status, or minus the signal that ended it.
  int End(int signal = SIGTERM) {
    process_.Signal(signal);
    return process_.WaitUntil(std::chrono::steady_clock::now() + processDeadline);
  }

  // Until its end, which has to be near.
  std::string Errors() const {
    std::string errors;
    while (ReadSome(errors_.ReadEnd, errors)) {
    }
    return errors;
  }

 private:
  Descriptor nothing_{::open("/dev/null", O_RDONLY | O_CLOEXEC)};
  Pipe output_;
  Pipe errors_;
  std::string place_;
  Process process_;
};

}  // namespace zolvane
