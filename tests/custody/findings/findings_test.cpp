// What check says of the sample, and of files without any sense.
#include "custody/findings/findings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "custody/values/sides.h"
#include "files/random_settings.h"
#include "support/golden.h"

namespace zolvane {
namespace {

std::string ListOf(const std::vector<Finding>& findings) {
  std::string list;
  for (const auto& finding : findings) {
    list += finding.File + ":" + std::to_string(finding.Line) + ": " + std::string{NameOf(finding.Grade)} +
            ": " + finding.Code + ": " + finding.Text + "\n";
  }
  return list;
}

TEST(Check, HasOnlyTheKnownNotesOfTheSample) {
  const auto findings = CheckConfiguration(SampleConfiguration(), "Zolvane.ini");
  EXPECT_TRUE(std::ranges::all_of(findings, [](const Finding& f) { return f.Grade == Grade::Note; }));
  ExpectKept(GoldenFile("findings_of_the_sample.txt"), ListOf(findings));
}

TEST(Check, SaysTheSameOfEitherLineEnd) {
  const auto lineFeeds = CheckConfiguration(SampleConfiguration(), "Zolvane.ini");
  const auto both = CheckConfiguration(Replaced(SampleConfiguration(), "\n", "\r\n"), "Zolvane.ini");
  EXPECT_EQ(ListOf(both), ListOf(lineFeeds));
}

TEST(Check, OfAnEmptyFileNamesTheMissingSections) {
  const auto findings = CheckConfiguration("", "Zolvane.ini");
  EXPECT_TRUE(HasError(findings));
  const auto isOfSection = [](const Finding& f) {
    return f.Code == "missing-section" && f.Text.starts_with("[HeadType]");
  };
  EXPECT_EQ(std::ranges::count_if(findings, isOfSection), 1);
}

TEST(Check, EachFindingHasAnAdviceAndOneLine) {
  for (const auto& finding : CheckConfiguration(Replaced(SampleConfiguration(), "4", "x"), "Zolvane.ini")) {
    EXPECT_FALSE(finding.Advice.empty()) << finding.Code;
    EXPECT_EQ(finding.Text.find('\n'), std::string::npos) << finding.Text;
  }
}

// Names and values with escape sequences do not reach the terminal.
TEST(Check, ShowsNothingThatSteersATerminal) {
  const auto hostile = Replaced(SampleConfiguration(), "Zolvane 400", "Zol\x1B[31mvane\x07 400");
  for (const auto& finding : CheckConfiguration(hostile + "[\x1B[2J]\n\x1B]0;x\x07=1\n", "Zolvane.ini")) {
    for (const char character : finding.Text) {
      EXPECT_GE(static_cast<unsigned char>(character), 0x20) << finding.Code;
    }
  }
}

TEST(Check, TakesAnyBytes) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(seed);
    RandomSettings random{seed};
    auto bytes = seed % 2 == 0 ? random.FileBytes() : SampleConfiguration().substr(0, random.Below(14000));
    for (auto count = random.Below(20); count > 0 && !bytes.empty(); --count) {
      bytes[random.Below(bytes.size())] = static_cast<char>(random.Below(256));
    }
    CheckConfiguration(bytes, "Zolvane.ini");
    CheckBackup(bytes, "a.bak", SampleConfiguration());
    WireFaceOfFile(bytes);
    WireFaceOfBackup(SampleConfiguration(), bytes);
    FileFace(bytes);
  }
}

TEST(Check, TakesVeryLongLinesAndNames) {
  const std::string name(200'000, 'x');
  const auto file = "[" + name + "]\n[DeviceType]\nInstalled=1\nItem1=\"" + name +
                    "\",1,\"Z\"\nItem2=" + std::string(200'000, ',') +
                    "\n[Z_Calibration]\nMountHeight=" + std::string(200'000, '9') + "x\n";
  EXPECT_TRUE(HasError(CheckConfiguration(file, "Zolvane.ini")));
}

}  // namespace
}  // namespace zolvane
