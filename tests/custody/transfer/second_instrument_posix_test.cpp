// Custody against an instrument that shares nothing with the simulated one.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "custody/second_instrument.h"
#include "custody/support/transfer_room.h"
#include "instrument/links/link_factory.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using nlohmann::json;

const Settings secondHolds{{"A", "1"}, {"B", "2.5"}, {"C", "-3"}, {"D", "0"}, {"E", "text"}};
const Settings secondScript{{"A", "1612"}, {"B", "2.50"}, {"C", "0.125"}, {"D", "-0"}, {"E", "other text"}};

std::string LinesOf(const Settings& settings) {
  std::string lines;
  for (const auto& [key, text] : settings) {
    lines.append(key).append(" ").append(text).append("\n");
  }
  return lines;
}

struct Outcome {
  bool IsSaved = false;
  std::vector<Verdict> Verdicts;
  json Report;
};

Outcome UploadTo(std::vector<std::string> options) {
  const TemporaryFolder folder;
  options.insert(options.end(), {"--values", folder.Put("secondHolds", LinesOf(secondHolds)), "--expect",
                                 folder.Put("expected", LinesOf(secondScript))});
  SecondInstrument instrument{options};
  Outcome outcome;
  {
    std::vector<std::string> keys;
    for (const auto& [key, text] : secondScript) {
      keys.push_back(key);
    }
    const auto link = CreateLink(instrument.Link(), 5.0, noInterrupt);
    const auto found = WireFaceOfInstrument(*link, keys);
    ProvingLink proving{link, {.Found = found}, noInterrupt};
    Upload(proving, secondScript);
    outcome.IsSaved = proving.Tally().IsSaved;
    outcome.Verdicts = proving.Verdicts();
  }
  outcome.Report = json::parse(instrument.Report());
  return outcome;
}

TEST(SecondInstrument, WhateverItsSpellingAnUploadIsProvenAndItAgrees) {
  for (const auto* style : {"plain", "padded", "signed", "wide"}) {
    const auto outcome = UploadTo({"--spell", style});
    EXPECT_TRUE(outcome.IsSaved) << style;
    EXPECT_EQ(outcome.Report["differs"], json::array()) << style;
    EXPECT_EQ(outcome.Report["lines"], 3 * secondScript.size() + 2)
        << "a question before, the line, a question after";
  }
}

TEST(SecondInstrument, WhatItDoesNotTakeIsNamedAndNothingIsSaved) {
  const auto outcome = UploadTo({"--deaf", "C", "--lose", "A", "--spell", "signed"});
  EXPECT_FALSE(outcome.IsSaved);
  ASSERT_EQ(outcome.Verdicts.size(), secondScript.size());
  EXPECT_EQ(outcome.Verdicts[0].Is, Proof::Differs);
  EXPECT_EQ(outcome.Verdicts[0].Left, std::nullopt);
  EXPECT_EQ(outcome.Verdicts[2].Why, Cause::Kept);
  for (const std::size_t place : {1U, 3U, 4U}) {
    EXPECT_EQ(outcome.Verdicts.at(place).Is, Proof::Verified) << place;
  }
  EXPECT_EQ(outcome.Report["kept"]["A"], "+1") << "nothing was saved";
}

TEST(SecondInstrument, WhatItNeverTellsIsUnreadable) {
  const auto outcome = UploadTo({"--write-only", "B"});
  EXPECT_FALSE(outcome.IsSaved);
  EXPECT_EQ(outcome.Verdicts.at(1).Is, Proof::Unreadable);
}

}  // namespace
}  // namespace zolvane
