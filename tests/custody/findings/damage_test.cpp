// Single damaged bytes of the sample: none that changes what the instrument would receive goes unseen.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <random>
#include <string>
#include <string_view>

#include "config/conversions.h"
#include "custody/findings/findings.h"
#include "custody/values/sides.h"
#include "custody/values/values.h"
#include "support/golden.h"
#include "support/long_tests.h"

namespace zolvane {
namespace {

struct Damage {
  std::size_t Place = 0;
  char Byte = 0;
};

bool Differ(const Values& a, const Values& b) {
  return !Compare(a, b).Differences.empty();
}

// The piece of a value that the place lies in; empty outside of values.
std::string_view PieceAt(std::string_view text, std::size_t place) {
  const auto line = text.rfind('\n', place == 0 ? 0 : place - 1) + 1;
  const auto end = std::min(text.find('\n', place), text.size());
  const auto equals = text.find('=', line);
  if (equals >= place || text[line] == ';') {
    return {};
  }
  const auto begin = text.find_last_of("=,", place - 1) + 1;
  return text.substr(begin, std::min(text.find(',', place), end) - begin);
}

// There was a number, and now there is none.
bool LeavesNoNumber(const std::string& before, const std::string& after, const Damage& damage) {
  const bool isSeparator = damage.Byte == ',' || damage.Byte == '\n' || damage.Byte == '=';
  return before[damage.Place] != ',' && !isSeparator && StrictNumber(PieceAt(before, damage.Place)) &&
         !StrictNumber(PieceAt(after, damage.Place));
}

std::size_t LineOf(std::string_view text, std::size_t place) {
  return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, place), '\n'));
}

// Each seed by itself, so that they run side by side.
class DamagedBytes : public testing::TestWithParam<unsigned> {
 protected:
  // A damage that changes what the instrument would receive.
  Damage Next() {
    while (true) {
      const Damage damage{.Place = random_() % sample_.size(), .Byte = static_cast<char>(random_() % 256)};
      Apply(damage);
      if (damage.Byte != sample_[damage.Place] && sample_[damage.Place] != '\n' &&
          Differ(face_.Lines, WireFaceOfFile(damaged_).Lines)) {
        return damage;
      }
    }
  }

  void Apply(const Damage& damage) {
    damaged_ = sample_;
    damaged_[damage.Place] = damage.Byte;
  }

  std::string Seen(const Damage& damage) const {
    return "seed " + std::to_string(seed_) + ", line " + std::to_string(LineOf(sample_, damage.Place)) +
           ", byte " + std::to_string(damage.Place) + " is " + testing::PrintToString(damage.Byte);
  }

  unsigned seed_ = GetParam();
  std::mt19937 random_{seed_};
  std::string sample_ = SampleConfiguration();
  std::string damaged_;
  WireFace face_ = WireFaceOfFile(sample_);
  Values fileFace_ = FileFace(sample_);
};

TEST_P(DamagedBytes, ShowInTheComparisonAndThoseOfNumbersInTheFindings) {
  constexpr int damages = 50;
  int numbersLost = 0;
  int found = 0;
  for (int count = 0; count < damages; ++count) {
    const auto damage = Next();
    ASSERT_TRUE(Differ(fileFace_, FileFace(damaged_))) << Seen(damage);
    if (LeavesNoNumber(sample_, damaged_, damage)) {
      const auto findings = CheckConfiguration(damaged_, "Zolvane.ini");
      const auto line = LineOf(sample_, damage.Place);
      const bool isFound = std::ranges::any_of(findings, [line](const Finding& finding) {
        return finding.Line == line && finding.Grade != Grade::Note;
      });
      ++numbersLost;
      found += isFound ? 1 : 0;
      if (!isFound) {
        std::cout << "no finding: " << Seen(damage) << '\n';
      }
    }
  }
  EXPECT_GT(numbersLost, 0) << "seed " << seed_;
  EXPECT_GE(found * 10, numbersLost * 9) << found << " of " << numbersLost << ", seed " << seed_;
}

// All of them are a thousand damages, which take ten minutes under the sanitizers.
INSTANTIATE_TEST_SUITE_P(Seed, DamagedBytes, Seeds(2, 20));

}  // namespace
}  // namespace zolvane
