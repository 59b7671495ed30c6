// Programs run as a user runs them, in a folder with a copy of the sample.
#pragma once

#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <string>
#include <vector>

#include "folder.h"

namespace zolvane {

class SampleFolder {
 public:
  SampleFolder() { std::filesystem::copy_file(ZOLVANE_SAMPLES_PATH "/Zolvane.ini", Path() + "/Zolvane.ini"); }

  const std::string& Path() const { return folder_.Path(); }

 private:
  Folder folder_;
};

// Waits for its end. True if the exit status is 0.
inline bool RunsWell(const char* program, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), program);
  std::vector<char*> words;
  for (auto& argument : arguments) {
    words.push_back(argument.data());
  }
  words.push_back(nullptr);
  pid_t process = 0;
  int status = 0;
  return ::posix_spawn(&process, program, nullptr, nullptr, words.data(), environ) == 0 &&
         ::waitpid(process, &status, 0) == process && status == 0;
}

}  // namespace zolvane
