// A folder of its own for a test, gone after it, and what other programs do to files in it.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "support/file_bytes.h"

namespace zolvane {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path_ = (std::filesystem::temp_directory_path() / ("settings-" + std::to_string(random()))).string();
    } while (!std::filesystem::create_directory(path_));
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string Path(std::string_view name = "") const {
    return name.empty() ? path_ : path_ + '/' + std::string{name};
  }

  std::string Read(std::string_view name) const { return BytesOf(Path(name)); }

  bool Has(std::string_view name) const { return std::filesystem::exists(Path(name)); }

  // In place, as most editors and scripts do.
  std::string Put(std::string_view name, std::string_view bytes) const {
    const std::string path = Path(name);
    std::ofstream{path, std::ios::binary | std::ios::trunc} << bytes;
    return path;
  }

  // By a new file that takes the name of the old one.
  std::string PutByRename(std::string_view name, std::string_view bytes) const {
    std::filesystem::rename(Put("other program's new file", bytes), Path(name));
    return Path(name);
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator{path_}) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

 private:
  std::string path_;
};

}  // namespace zolvane
