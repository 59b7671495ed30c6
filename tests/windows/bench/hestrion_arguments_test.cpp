// What HestrionBench makes of its arguments.
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "windows/bench/bench_folder.h"
#include "windows/support/child_process.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

struct Misuse {
  const char* Name;
  Arguments Given;
  const char* Complaint;  // a part of it
};

std::ostream& operator<<(std::ostream& out, const Misuse& misuse) {
  return out << misuse.Name;
}

class HestrionRefuses : public testing::TestWithParam<Misuse> {};

TEST_P(HestrionRefuses, MisuseWithStatusTwoBeforeAnythingIsChanged) {
  const BenchFolder folder;
  Store(folder.File("job.txt"), "tick chkRFID 0\nimport " + folder.File("missing.bak") + "\n");
  Store(folder.File("nonsense.txt"), "dance\n");
  const auto before = folder.Files();
  Arguments arguments;
  for (auto argument : GetParam().Given) {
    if (const auto at = argument.find("FOLDER"); at != std::string::npos) {
      argument.replace(at, std::strlen("FOLDER"), folder.Text());
    }
    arguments.push_back(argument);
  }
  const auto result = RunToItsEnd(HestrionBenchPath(), arguments);
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find(GetParam().Complaint), std::string::npos) << result.Errors;
  EXPECT_EQ(folder.Files(), before);
}

INSTANTIATE_TEST_SUITE_P(
    HestrionBench, HestrionRefuses,
    testing::Values(
        Misuse{"AnUnknownOption", {"--dance"}, "--dance"},
        Misuse{"AFolderThatIsNotThere", {"--folder", "FOLDER/nowhere", "--quit"}, "Zolvane.ini"},
        Misuse{
            "ARunFileThatIsNotThere", {"--folder", "FOLDER", "--play", "FOLDER/no.txt", "--quit"}, "no.txt"},
        Misuse{
            "AnUnknownCommand", {"--folder", "FOLDER", "--play", "FOLDER/nonsense.txt", "--quit"}, "dance"},
        Misuse{"AnImportOfNothing",
               {"--folder", "FOLDER", "--play", "FOLDER/job.txt", "--trace", "FOLDER/t", "--quit"},
               "missing.bak"},
        Misuse{"AnUnknownLink", {"--folder", "FOLDER", "--link", "pigeon", "--quit"}, "pigeon"},
        Misuse{"AnUnknownAnswer",
               {"--folder", "FOLDER", "--play", "FOLDER/old.bak", "--answer", "perhaps", "--quit"},
               "HestrionBench:"},
        Misuse{"ATraceThatCannotBeWritten",
               {"--folder", "FOLDER", "--trace", "FOLDER/nowhere/t", "--quit"},
               "nowhere"},
        Misuse{"APictureThatCannotBeWritten",
               {"--folder", "FOLDER", "--screenshot", "FOLDER/nowhere/p.png", "--quit"},
               "nowhere"}),
    [](const auto& misuse) { return std::string{misuse.param.Name}; });

TEST(HestrionBench, PrintsItsHelp) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--help"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_NE(result.Output.find("--screenshot"), std::string::npos);
}

TEST(HestrionBench, PrintsItsNameAndVersion) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--version"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Output, "HestrionBench 1.00.0135\n");
}

}  // namespace
}  // namespace zolvane
