#include "program_folder.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zolvane {

std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream{file, std::ios::binary};
  return {std::istreambuf_iterator<char>{stream}, {}};
}

void Store(const std::filesystem::path& file, const std::string& content) {
  std::ofstream stream{file, std::ios::binary | std::ios::trunc};
  stream << content;
  if (!stream.flush()) {
    throw std::runtime_error{"cannot write " + file.string()};
  }
}

std::string SampleConfiguration() {
  const auto sample = ContentOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini");
  return !sample.empty() ? sample : throw std::runtime_error{"the sample configuration is missing"};
}

ProgramFolder& ProgramFolder::OfThisRun() {
  static ProgramFolder folder;
  return folder;
}

ProgramFolder::ProgramFolder()
    : path_{std::filesystem::temp_directory_path() / ("zolvane-" + std::to_string(GetCurrentProcessId()))} {
  OleInitialize(nullptr);
  std::filesystem::create_directories(path_);
  std::filesystem::copy_file(std::filesystem::absolute(ZOLVANE_MODULE_PATH), path_ / "HZOCalibrateDevice.dll",
                             std::filesystem::copy_options::overwrite_existing);
  module_ = std::make_unique<AddInFile>((path_ / "HZOCalibrateDevice.dll").wstring());
}

ProgramFolder::~ProgramFolder() {
  module_ = nullptr;
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace zolvane
