// A program folder for the tests, with the module and a configuration in it, as an installation leaves them.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "bench/windows/com/add_in_class.h"

namespace zolvane {

std::string ContentOf(const std::filesystem::path& file);
void Store(const std::filesystem::path& file, const std::string& content);

// The configuration that comes with the program, to the byte.
std::string SampleFileText();

// One record of a kind, and all operations permitted.
std::string SmallFileText();

// One for the whole test program, since a module is loaded once in the life of a host. COM is
// in use meanwhile.
class ProgramFolder {
 public:
  static ProgramFolder& OfThisRun();

  ~ProgramFolder();
  ProgramFolder(const ProgramFolder&) = delete;
  ProgramFolder& operator=(const ProgramFolder&) = delete;

  const AddInFile& Module() const { return *module_; }
  std::filesystem::path Path() const { return path_; }
  std::string Text() const { return path_.string(); }
  std::string FileText(const std::string& name) const { return (path_ / name).string(); }
  std::filesystem::path Configuration() const { return path_ / "Zolvane.ini"; }

 private:
  ProgramFolder();

  std::filesystem::path path_;
  std::unique_ptr<AddInFile> module_;
};

// The component in that folder.
inline const AddInFile& Module() {
  return ProgramFolder::OfThisRun().Module();
}

}  // namespace zolvane
