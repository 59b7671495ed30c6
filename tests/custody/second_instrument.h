// The second instrument as a process of its own; see second_instrument.py.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace zolvane {

class SecondInstrument {
 public:
  explicit SecondInstrument(std::vector<std::string> arguments) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    EXPECT_EQ(::pipe2(input.data(), O_CLOEXEC) + ::pipe2(output.data(), O_CLOEXEC), 0);
    arguments.insert(arguments.begin(),
                     {"python3", ZOLVANE_SOURCE_PATH "/tests/custody/second_instrument.py"});
    process_ = ::fork();
    if (process_ == 0) {
      ::alarm(60);  // should the test itself be killed
      ::dup2(input[0], STDIN_FILENO);
      ::dup2(output[1], STDOUT_FILENO);
      std::vector<char*> words(arguments.size() + 1);
      std::ranges::transform(arguments, words.begin(), [](std::string& word) { return word.data(); });
      ::execvp(words.front(), words.data());
      ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
    link_ = Line();
  }
  ~SecondInstrument() {
    if (input_ >= 0) {
      Report();
    }
  }
  SecondInstrument(const SecondInstrument&) = delete;
  SecondInstrument& operator=(const SecondInstrument&) = delete;

  // The text for --link.
  const std::string& Link() const { return link_; }

  // Ends it; what it says in the end, as JSON.
  std::string Report() {
    ::close(std::exchange(input_, -1));
    auto report = Line();
    ::close(output_);
    ::waitpid(process_, nullptr, 0);
    return report;
  }

 private:
  std::string Line() const {
    std::string line;
    char byte = 0;
    while (::read(output_, &byte, 1) == 1 && byte != '\n') {
      line += byte;
    }
    return line;
  }

  ::pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string link_;
};

}  // namespace zolvane
