// A folder for a benchmark's files, removed in the end.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace zolvane {

class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "settings-benchmark-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }

  const std::string& Path() const { return path_; }

  std::string Put(std::string_view name, std::string_view bytes) const {
    const std::string path = path_ + '/' + std::string{name};
    std::filesystem::remove(path);
    std::ofstream{path, std::ios::binary} << bytes;
    return path;
  }

 private:
  std::string path_;
};

}  // namespace zolvane
