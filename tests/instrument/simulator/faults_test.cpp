#include "instrument/simulator/faults.h"

#include <gtest/gtest.h>

#include "support/file_bytes.h"
#include "text/joined.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

std::vector<std::string> NamesOf(const std::vector<const FaultRow*>& faults) {
  std::vector<std::string> names;
  for (const auto* fault : faults) {
    names.emplace_back(fault->Name);
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(Faults, AKindAndANumberMeetOneLine) {
  const FaultPlan plan{"late@3", "no-newline@12"};
  EXPECT_EQ(NamesOf(plan.FaultsOf(3, "")), Names{"late"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(12, "STAGE1_X")), Names{"no-newline"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(4, "")), Names{});
}

TEST(Faults, AKindAndAKeyMeetEachSettingOfThisKey) {
  const FaultPlan plan{"drop@STAGE1_X", "forget@SAVE", "limit@12Ch"};
  EXPECT_EQ(NamesOf(plan.FaultsOf(1, "STAGE1_X")), Names{"drop"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(9, "STAGE1_X")), Names{"drop"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(9, "SAVE")), Names{"forget"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(9, "12Ch")), Names{"limit"});
  EXPECT_EQ(NamesOf(plan.FaultsOf(9, "stage1_x")), Names{});
}

TEST(Faults, SeveralMayMeetOneLineInTheOrderOfTheTableHoweverTheyAreNamed) {
  const Names inOrder{"echo", "limit", "cut", "negate"};
  EXPECT_EQ(NamesOf(FaultPlan{"limit@KEY", "echo@2", "negate@2", "cut@KEY"}.FaultsOf(2, "KEY")), inOrder);
  EXPECT_EQ(NamesOf(FaultPlan{"cut@2", "negate@KEY", "limit@2", "echo@2"}.FaultsOf(2, "KEY")), inOrder);
}

TEST(Faults, EveryKindHasItsName) {
  Names names;
  for (const auto& row : FaultRows()) {
    names.emplace_back(row.Name);
  }
  EXPECT_EQ(names,
            (Names{"late",   "silent", "close",    "garbage", "overlong", "empty", "split",     "no-newline",
                   "double", "echo",   "shift",    "refuse",  "drop",     "limit", "neighbour", "cut",
                   "round",  "negate", "times100", "respell", "forget",   "power"}));
}

TEST(Faults, AnythingElseIsRefused) {
  FaultPlan plan;
  for (const auto* text : {"", "late", "@1", "late@", "late@0", "late@A KEY", "late@99999999999999999999",
                           "Late@1", "delay@KEY"}) {
    EXPECT_THROW(plan.Add(text), UsageError) << text;
  }
  EXPECT_TRUE(plan.IsEmpty());
}

TEST(Faults, TheDocumentDescribesThemAsTheHelpDoes) {
  const auto document = BytesOf(ZOLVANE_SOURCE_PATH "/docs/bench.md");
  std::string table = "| kind | what happens |\n|---|---|\n";
  for (const auto& row : FaultRows()) {
    table += Joined("| `", row.Name, "` | ", row.Description, " |\n");
  }
  EXPECT_NE(document.find(table + "\n"), std::string::npos) << table;
}

}  // namespace
}  // namespace zolvane
