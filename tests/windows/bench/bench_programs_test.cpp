// The programs without windows, as processes on Windows: what they print and trace is what the same code does
// in the test's own process, and the wire carries it.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "bench/program/bench_program.h"
#include "support/golden.h"
#include "windows/support/child_process.h"
#include "windows/support/played_session.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

class BenchPrograms : public testing::Test {
 protected:
  struct Played {
    std::optional<int> Status;
    std::string Output;
    std::string Trace;
    std::string Configuration;
    std::string Backup;
    bool operator==(const Played&) const = default;
  };

  void Prepare() const {
    Store(folder_.Configuration(), SampleFileText());
    std::filesystem::remove(folder_.Path() / "backup.bak");
    Store(folder_.Path() / "job.txt",
          "page\nquery\nupload\ndownload\nexport " + folder_.FileText("backup.bak") + "\n");
  }

  Arguments MainJob(const std::string& link) const {
    return {"--folder", folder_.Text(),
            "--link",   link,
            "--yes",    "--trace-reads",
            "--trace",  folder_.FileText("trace.jsonl"),
            "run",      folder_.FileText("job.txt")};
  }

  Played Taken(std::optional<int> status, std::string output) const {
    return {.Status = status,
            .Output = std::move(output),
            .Trace = ContentOf(folder_.Path() / "trace.jsonl"),
            .Configuration = ContentOf(folder_.Configuration()),
            .Backup = ContentOf(folder_.Path() / "backup.bak")};
  }

  Played PlayInThisProcess() const {
    Prepare();
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    const int status = RunBench(MainJob("sim"), input, output, errors);
    return Taken(status, output.str());
  }

  Played PlayAsProcess(const std::string& link) const {
    Prepare();
    const auto result = RunToItsEnd(ZolvaneBenchPath(), MainJob(link));
    return Taken(result.Status, result.Output);
  }

  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();
};

TEST_F(BenchPrograms, TheMainJobDoesAndPrintsWhatTheDocumentsSay) {
  const auto played = PlayAsProcess("sim");
  EXPECT_EQ(played.Status, 0);
  const auto commands = std::to_string(CommandsOfTheSample());
  for (const auto& line : std::vector<std::string>{
           "query: done (5 of 5 commands sent; 5 accepted; 7 values written, 3 changed)",
           "upload: done (" + commands + " of " + commands + " commands sent; " + commands +
               " accepted; SAVE accepted)",
           "download: done (174 of 174 commands sent; 170 accepted; 4 refused, first PickUp_1CHSHORT_Z with "
           "\"SYNTAX_ERROR\"; 62 values written, 26 changed)",
           ": done (149 values written, 104 changed)"}) {
    EXPECT_NE(played.Output.find(line), std::string::npos) << line << "\n" << played.Output;
  }
}

TEST_F(BenchPrograms, TheProgramDoesWhatItsPartsDo) {
  const auto inProcess = PlayInThisProcess();
  const auto program = PlayAsProcess("sim");
  ASSERT_FALSE(program.Trace.empty());
  EXPECT_EQ(program, inProcess);
}

TEST_F(BenchPrograms, TheSimulatedInstrumentOverTcpIsTheOneInside) {
  const ChildProcess instrument{ZolvaneSimPath(), {}};
  ASSERT_TRUE(Eventually([&] { return instrument.Output().find('\n') != std::string::npos; }))
      << instrument.Errors();
  auto link = instrument.Output();
  link.resize(link.find_first_of("\r\n"));
  ASSERT_EQ(link.substr(0, 14), "tcp:127.0.0.1:");
  const auto overTcp = PlayAsProcess(link);
  const auto inside = PlayAsProcess("sim");
  EXPECT_EQ(overTcp, inside);
}

TEST_F(BenchPrograms, TheSimulatorKeepsItsMemoryWhenItIsSaved) {
  const auto state = folder_.FileText("instrument.json");
  std::filesystem::remove(state);
  {
    const ChildProcess instrument{ZolvaneSimPath(), {"--state", state}};
    ASSERT_TRUE(Eventually([&] { return instrument.Output().find('\n') != std::string::npos; }));
    auto link = instrument.Output();
    link.resize(link.find_first_of("\r\n"));
    EXPECT_EQ(PlayAsProcess(link).Status, 0);
  }
  EXPECT_NE(ContentOf(state).find("VOL_FILTER_125_2"), std::string::npos);
}

TEST_F(BenchPrograms, AFolderWithoutAConfigurationEndsWithStatusTwo) {
  const auto result = RunToItsEnd(ZolvaneBenchPath(), {"--folder", folder_.FileText("nowhere"), "page"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find("Zolvane.ini"), std::string::npos);
}

}  // namespace
}  // namespace zolvane
