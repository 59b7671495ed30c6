// How many lines the sample's upload has, in what the documents show of a session with it.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "support/golden.h"

namespace zolvane {
namespace {

// What stands in a document, and how: with the numbers of today in place of those that are there.
struct ShownNumbers {
  std::string Pattern;
  std::string Shown;
};

std::vector<ShownNumbers> NumbersOfTheUpload() {
  const auto commands = CommandsOfTheSample();
  const auto shown = [commands](std::size_t fewer) { return std::to_string(commands - fewer); };
  const auto all = shown(0);
  const auto values = shown(1);  // SAVE has none
  return {
      {"[0-9]+ of [0-9]+ commands not sent", all + " of " + all + " commands not sent"},
      {"5 of [0-9]+( commands sent; [^\n]*;) [0-9]+ not sent",
       "5 of " + all + "$1 " + shown(5) + " not sent"},
      {"\"17 of [0-9]+\"", "\"17 of " + all + "\""},
      {"(instrument: [0-9]+ values? of) [0-9]+ to change", "$1 " + values + " to change"},
      {"(done|not proven); [0-9]{2,} lines sent, [0-9]+ answered",
       "$1; " + values + " lines sent, " + values + " answered"},
      {"(done; [^;\n]*), [0-9]+ of [0-9]+ values verified",
       "$1, " + values + " of " + values + " values verified"},
      {"(not proven; [^;\n]*), [0-9]+ of [0-9]+ values verified",
       "$1, " + shown(2) + " of " + values + " values verified"},
      {"[0-9]+ values did not arrive", values + " values did not arrive"},
      {"[0-9]+ same, 1 different", shown(2) + " same, 1 different"},
      {"[0-9]+ same, 2 different", shown(3) + " same, 2 different"},
  };
}

TEST(SampleNumbers, AreThoseOfTheUploadOfToday) {
  const std::filesystem::path root{ZOLVANE_SOURCE_PATH};
  auto missing = NumbersOfTheUpload();
  for (const auto& document :
       {root / "README.md", root / "docs" / "zolvane.md", root / "docs" / "bench.md"}) {
    auto text = BytesOf(document);
    for (const auto& numbers : NumbersOfTheUpload()) {
      const std::regex pattern{numbers.Pattern};
      if (std::regex_search(text, pattern)) {
        std::erase_if(missing, [&](const auto& other) { return other.Pattern == numbers.Pattern; });
      }
      text = std::regex_replace(text, pattern, numbers.Shown);
    }
    ExpectKept(document, text);
  }
  for (const auto& numbers : missing) {
    ADD_FAILURE() << "no document shows \"" << numbers.Pattern << "\" any more";
  }
}

}  // namespace
}  // namespace zolvane
