// HestrionBench playing a run file, against the bench without windows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "windows/bench/bench_folder.h"
#include "windows/support/child_process.h"
#include "windows/support/played_session.h"

namespace zolvane {
namespace {

struct Plan {
  const char* Name;
  Arguments Commands;
  Arguments Options;
  int Status;
};

std::ostream& operator<<(std::ostream& out, const Plan& plan) {
  return out << plan.Name;
}

class HestrionPlays : public testing::TestWithParam<Plan> {
 protected:
  struct Played {
    ProgramResult Result;
    std::vector<std::string> Calls;
    std::string Configuration;
    std::string Backup;
  };

  std::string InFolder(std::string text) const {
    if (const auto at = text.find("FOLDER"); at != std::string::npos) {
      text.replace(at, std::strlen("FOLDER"), folder_.Text());
    }
    return text;
  }

  void StoreCommands() const {
    std::string text;
    for (const auto& command : GetParam().Commands) {
      text += InFolder(command) + "\n";
    }
    Store(folder_.File("commands.txt"), text);
    Store(folder_.File("stop.json"), R"({"default": "OK", "stop_after": ["STATUS_MECH"]})");
  }

  Played Play(const std::filesystem::path& program, const Arguments& how) const {
    folder_.Reset();
    StoreCommands();
    Arguments arguments{"--folder", folder_.Text(), "--trace-reads", "--trace", folder_.File("trace.jsonl")};
    for (const auto& option : GetParam().Options) {
      arguments.push_back(InFolder(option));
    }
    arguments.insert(arguments.end(), how.begin(), how.end());
    Played played{.Result = RunToItsEnd(program, arguments), .Calls = {}, .Configuration = {}, .Backup = {}};
    std::istringstream trace{folder_.Content("trace.jsonl")};
    played.Calls = HostCalls(trace);
    played.Configuration = folder_.Content("Zolvane.ini");
    played.Backup = folder_.Content("new.bak");
    return played;
  }

  BenchFolder folder_;
};

TEST_P(HestrionPlays, TheSameTraceFilesAndStatusAsTheBench) {
  const auto bench = Play(ZolvaneBenchPath(), {"--quiet", "run", folder_.File("commands.txt")});
  const auto host = Play(HestrionBenchPath(), {"--play", folder_.File("commands.txt"), "--quit"});
  EXPECT_EQ(host.Result.Status, GetParam().Status) << host.Result.Errors;
  EXPECT_EQ(bench.Result.Status, GetParam().Status) << bench.Result.Errors;
  ASSERT_FALSE(bench.Calls.empty());
  for (std::size_t call = 0; call < std::min(host.Calls.size(), bench.Calls.size()); ++call) {
    ASSERT_EQ(host.Calls[call], bench.Calls[call]) << "call " << call;
  }
  EXPECT_EQ(host.Calls.size(), bench.Calls.size());
  EXPECT_EQ(host.Configuration, bench.Configuration);
  EXPECT_EQ(host.Backup, bench.Backup);
  EXPECT_FALSE(folder_.Files().contains("HZOCalibrateDevice.dll")) << "put there for the run only";
}

INSTANTIATE_TEST_SUITE_P(
    HestrionBench, HestrionPlays,
    testing::Values(Plan{"EveryOperation",
                         {"query", "upload", "download", "export FOLDER/new.bak", "import FOLDER/old.bak",
                          "select cboTipType #1", "tick chkRFID 2", "page"},
                         {"--yes"},
                         0},
                    Plan{"WithoutAnInstrument", {"query", "upload"}, {"--link", "none", "--yes"}, 1},
                    Plan{"WithTheHostsOwnDialogue", {"query"}, {"--link", "none", "--host-dialog"}, 1},
                    Plan{"AnUploadThatIsCancelled", {"upload", "query"}, {"--answer", "cancel"}, 1},
                    Plan{"AnImportThatIsDeclined", {"import FOLDER/old.bak"}, {"--answer", "no"}, 1},
                    Plan{"NobodyToAnswer", {"download"}, {}, 1},
                    Plan{"AnAnswerWithoutItsButton", {"upload"}, {"--answer", "yes"}, 2},
                    Plan{"AnEntryThatIsNotThere", {"select cboTipType Nothing"}, {}, 2},
                    Plan{"AnExportOntoTheConfiguration", {"export FOLDER/Zolvane.ini"}, {"--yes"}, 1},
                    Plan{"ADialogueThatIsCancelled", {"export"}, {}, 1},
                    Plan{"GoingOnBehindWhatFailed",
                         {"query", "tick chkRFID 2", "page"},
                         {"--link", "none", "--yes", "--keep-going"},
                         1},
                    Plan{"AnInstrumentThatIsStopped",
                         {"query", "tick chkRFID 2"},
                         {"--link", "script:FOLDER/stop.json", "--yes"},
                         1},
                    Plan{"NoSuchButton", {"press 9", "press -1"}, {}, 0}),
    [](const auto& plan) { return std::string{plan.param.Name}; });

}  // namespace
}  // namespace zolvane
