// The files in tests/golden: configurations, and the calls that whole operations make on them, one in a line. A line
// break inside a call is written "\r\n" with backslashes.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "config/text.h"

namespace zolvane {

inline std::string TextOfFile(const std::filesystem::path& file) {
  std::ifstream stream{file, std::ios::binary};
  return {std::istreambuf_iterator<char>{stream}, {}};
}

// Compares a made text with the file that keeps it. With ZOLVANE_REWRITE_GOLDEN set the file is written anew, to be
// reviewed like any other change.
inline void ExpectKept(const std::filesystem::path& file, const std::string& text) {
  if (std::getenv("ZOLVANE_REWRITE_GOLDEN") != nullptr) {
    std::ofstream{file, std::ios::binary} << text;
  }
  EXPECT_EQ(TextOfFile(file), text) << file;
}

inline std::string GoldenText(const std::string& name) {
  return TextOfFile(std::filesystem::path{ZOLVANE_SOURCE_PATH} / "tests" / "golden" / name);
}

// A file with a few records of each table.
inline std::string SmallConfiguration() {
  return GoldenText("small.ini");
}

// The sample, with the line ends of the fakes.
inline std::string SampleConfiguration() {
  return Replaced(TextOfFile(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini"), "\r\n", "\n");
}

inline std::vector<std::string> GoldenLines(const std::string& name) {
  std::vector<std::string> lines;
  std::string text = GoldenText(name);
  for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
    lines.push_back(text.substr(0, end));
    text.erase(0, end + 1);
  }
  return lines;
}

// A list of calls as a golden file holds it: without what every command does with the link, without the splitting of
// texts, and without the readings unless they are wanted. Paths are written with slashes.
inline std::vector<std::string> AsGolden(const std::vector<std::string>& calls, bool withReadings) {
  std::vector<std::string> lines;
  for (const auto& call : calls) {
    const bool isAroundACommand = call == "get link" || call == "stop=false" || call == "hold=true";
    const bool isReading = call.starts_with("read ") || call == "create settings service";
    if (!isAroundACommand && !call.starts_with("split ") && (withReadings || !isReading)) {
      lines.push_back(Replaced(Replaced(call, "\r\n", "\\r\\n"), "\\Zolvane.ini", "/Zolvane.ini"));
    }
  }
  return lines;
}

}  // namespace zolvane
