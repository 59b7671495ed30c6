// The operations of generated sessions, each run by zolvane-bench and by zolvane in one and the same folder: what
// passes between the add-in and its host is the same with custody around it.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "bench/program/bench_program.h"
#include "custody/support/custody_room.h"
#include "support/generated_sessions.h"
#include "support/golden.h"
#include "support/long_tests.h"
#include "support/temporary_folder.h"
#include "support/texts.h"

namespace zolvane {
namespace {

struct TracedRun {
  int Status = 0;
  std::string Trace;
  std::string Printed;
};

class SessionOnBothPrograms {
 public:
  explicit SessionOnBothPrograms(SessionGenerator& random) {
    const auto whole = random.Configuration(SampleConfiguration(), SmallConfiguration());
    folder_.Put("Zolvane.ini", random.Damaged(whole));
    folder_.Put("old.bak", random.Damaged(whole));
    for (int count = random.Below(7) + 3; count > 0; --count) {
      commands_.push_back(random.Command(folder_.Path("old.bak"), folder_.Path("new.bak")));
    }
    for (int answer = random.Below(4); answer > 0; --answer) {
      options_.insert(options_.end(), {"--answer", random.Pick({"ok", "cancel", "yes", "no"})});
    }
    if (random.Below(3) != 0) {
      options_.emplace_back("--yes");
    }
  }

  // What zolvane has, too, and with a file where it asks for one.
  std::vector<Words> Operations() const {
    std::vector<Words> operations;
    for (const auto& command : commands_) {
      const auto blank = command.find(' ');
      const auto name = command.substr(0, blank);
      if (name == "import" || name == "export") {
        const auto* const file = name == "import" ? "old.bak" : "new.bak";
        operations.push_back({name, folder_.Path(file)});
      } else if (name == "query" || name == "upload" || name == "download") {
        operations.push_back({name});
      }
    }
    return operations;
  }

  // Zolvane goes on from what the operation found; the bench's work is taken back before. False where the files could not
  // be used, so that there is nothing to compare.
  bool ExpectSameTrace(const Words& operation, const std::string& where) {
    std::filesystem::remove(folder_.Path("new.bak"));
    const auto found = Files();
    const auto bare = RunTraced(operation, [](const Words& words, std::ostream& output) {
      std::istringstream nobody;
      return RunBench(words, nobody, output, output);
    });
    PutBack(found);
    const auto inCustody = RunTraced(
        CustodyRoom::LettingPass(operation),
        [](const Words& words, std::ostream& output) { return RunZolvane(words, output, output, nullptr); });
    if (inCustody.Status == exit_status::unusable) {
      EXPECT_NE(bare.Status, 0) << where << "\n" << inCustody.Printed;
      return false;
    }
    EXPECT_EQ(LinesOf(inCustody.Trace), LinesOf(bare.Trace)) << where << "\n" << inCustody.Printed;
    return true;
  }

 private:
  template <class Program>
  TracedRun RunTraced(const Words& operation, Program program) {
    Words words{"--folder", folder_.Path(),       "--link", "sim:" + folder_.Path("memory.json"),
                "--trace",  folder_.Path("trace")};
    words.insert(words.end(), options_.begin(), options_.end());
    words.insert(words.end(), operation.begin(), operation.end());
    std::ostringstream output;
    TracedRun run;
    run.Status = program(words, output);
    run.Printed = output.str();
    run.Trace = folder_.Read("trace");
    return run;
  }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& name : folder_.Names()) {
      if (!std::filesystem::is_directory(folder_.Path(name))) {
        files[name] = folder_.Read(name);
      }
    }
    return files;
  }

  void PutBack(const std::map<std::string, std::string>& files) const {
    for (const auto& [name, bytes] : Files()) {
      if (!files.contains(name)) {
        std::filesystem::remove(folder_.Path(name));
      }
    }
    for (const auto& [name, bytes] : files) {
      folder_.Put(name, bytes);
    }
  }

  TemporaryFolder folder_;
  std::vector<std::string> commands_;
  Words options_;
};

class SessionInCustody : public testing::TestWithParam<unsigned> {
 protected:
  static void TearDownTestSuite() { EXPECT_GT(compared_, 0); }

  static void Count(bool isCompared) { compared_ += isCompared ? 1 : 0; }

 private:
  inline static int compared_ = 0;  // operations
};
INSTANTIATE_TEST_SUITE_P(Seed, SessionInCustody, Seeds(5, 1000));

TEST_P(SessionInCustody, TracesTheSameAsTheBench) {
  SessionGenerator random{GetParam()};
  SessionOnBothPrograms session{random};
  for (const auto& operation : session.Operations()) {
    Count(
        session.ExpectSameTrace(operation, "seed " + std::to_string(GetParam()) + ", " + operation.front()));
  }
}

}  // namespace
}  // namespace zolvane
