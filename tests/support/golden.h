// The files in tests/golden: configurations, and the calls that whole operations make on them, one in a line. A line
// break inside a call is written "\r\n" with backslashes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "config/text.h"
#include "support/file_bytes.h"
#include "support/texts.h"

namespace zolvane {

// Compares a made text with the file that keeps it. With ZOLVANE_REWRITE_GOLDEN set the file is written anew, to be
// reviewed like any other change.
inline void ExpectKept(const std::filesystem::path& file, const std::string& text) {
  if (std::getenv("ZOLVANE_REWRITE_GOLDEN") != nullptr) {
    std::ofstream{file, std::ios::binary} << text;
  }
  EXPECT_EQ(BytesOf(file), text) << file;
}

inline std::filesystem::path GoldenFile(const std::string& name) {
  return std::filesystem::path{ZOLVANE_SOURCE_PATH} / "tests" / "golden" / name;
}

// A file with a few records of each table.
inline std::string SmallConfiguration() {
  return BytesOf(GoldenFile("small.ini"));
}

// The sample, with the line ends of the fakes.
inline std::string SampleConfiguration() {
  return Replaced(BytesOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini"), "\r\n", "\n");
}

// How many commands an upload of the sample sends, SAVE the last of them.
inline std::size_t CommandsOfTheSample() {
  const auto calls = LinesOf(BytesOf(GoldenFile("upload_of_the_sample.txt")));
  return static_cast<std::size_t>(
      std::ranges::count_if(calls, [](const auto& call) { return call.starts_with("send "); }));
}

// "2 of 178", as the bench counts them.
inline std::string OfTheCommands(std::size_t some) {
  return std::to_string(some) + " of " + std::to_string(CommandsOfTheSample());
}

enum class Readings { LeftOut, Kept };

// A list of calls as a golden file holds it: without what every command does with the link, and without the splitting
// of texts. Paths are written with slashes.
inline std::string AsGolden(const std::vector<std::string>& calls, Readings readings) {
  std::string lines;
  for (const auto& call : calls) {
    const bool isAroundACommand = call == "get link" || call == "stop=false" || call == "hold=true";
    const bool isReading = call.starts_with("read ") || call == "create settings service";
    const bool isLeftOut = call.starts_with("split ") || (isReading && readings == Readings::LeftOut);
    if (!isAroundACommand && !isLeftOut) {
      lines += Replaced(Replaced(call, "\r\n", "\\r\\n"), "\\Zolvane.ini", "/Zolvane.ini") + "\n";
    }
  }
  return lines;
}

inline void ExpectGolden(const std::string& name, const std::vector<std::string>& calls, Readings readings) {
  ExpectKept(GoldenFile(name), AsGolden(calls, readings));
}

}  // namespace zolvane
