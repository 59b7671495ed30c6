#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <system_error>

#include "windows/support/program_folder.h"

namespace zolvane {

// A folder with only a configuration in it, as a user keeps one for the bench.
class BenchFolder {
 public:
  BenchFolder() : path_{ProgramFolder::OfThisRun().Path() / "bench"} {
    std::filesystem::create_directories(path_);
    Reset();
  }
  ~BenchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  BenchFolder(const BenchFolder&) = delete;
  BenchFolder& operator=(const BenchFolder&) = delete;

  void Reset() const {
    Store(path_ / "Zolvane.ini", SampleFileText());
    Store(path_ / "old.bak", SampleFileText());
    std::filesystem::remove(path_ / "new.bak");
  }

  std::string Text() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  std::string Content(const std::string& name) const { return ContentOf(path_ / name); }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator{path_}) {
      files[entry.path().filename().string()] = ContentOf(entry.path());
    }
    return files;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace zolvane
