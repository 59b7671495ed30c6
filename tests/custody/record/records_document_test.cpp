// docs/records.md says which test shows what.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "support/file_bytes.h"

namespace zolvane {
namespace {

// "Suite.Name" of all tests of custody, and "Suite" of those that run over a list.
std::set<std::string> TestsOfCustody() {
  static const std::regex test{R"(\nTEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\s*\))"};
  std::set<std::string> names;
  const auto folder = std::filesystem::path{ZOLVANE_SOURCE_PATH} / "tests" / "custody";
  for (const auto& entry : std::filesystem::recursive_directory_iterator{folder}) {
    const auto text = entry.path().extension() == ".cpp" ? BytesOf(entry.path()) : "";
    for (std::sregex_iterator found{text.begin(), text.end(), test}, end; found != end; ++found) {
      names.insert((*found)[1].str() + "." + (*found)[2].str());
    }
  }
  return names;
}

TEST(RecordsDocument, NamesTestsThatExist) {
  static const std::regex named{R"(`([A-Z]\w+\.[A-Z]\w+)`)"};
  const auto tests = TestsOfCustody();
  const auto document = BytesOf(std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs" / "records.md");
  std::size_t count = 0;
  for (std::sregex_iterator found{document.begin(), document.end(), named}, end; found != end;
       ++found, ++count) {
    EXPECT_TRUE(tests.contains((*found)[1])) << (*found)[1];
  }
  EXPECT_GE(count, 12U);
}

// Only a laboratory can be that.
TEST(RecordsDocument, CallsNothingCompliant) {
  const auto document = BytesOf(std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs" / "records.md");
  for (const std::string_view word : {"compliant", "complies", "certified", "validated"}) {
    EXPECT_EQ(document.find(word), std::string::npos) << word;
  }
}

}  // namespace
}  // namespace zolvane
