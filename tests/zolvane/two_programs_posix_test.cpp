// Several programs at one folder, each a process of its own: nothing is lost or mixed up, and who has to wait
// says for whom.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "bench/process_support.h"
#include "custody/disk/disk.h"
#include "custody/disk/sha256.h"
#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/support/fake_witness.h"
#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

class SeveralPrograms : public Zolvane {
 protected:
  // With an instrument of its own, whose memory has this name.
  ProcessResult RunAt(const std::string& memory, Words words) const {
    words.insert(words.begin(), {"--folder", Folder.Path(), "--link", "sim:" + Folder.Path(memory)});
    return RunProgram(ZOLVANE_PATH, words);
  }

  // As long as others have the history for longer than anybody waits.
  ProcessResult RunPatiently(const std::string& memory, const Words& words) const {
    auto result = RunAt(memory, words);
    while (result.Status == 2 && result.Errors.find("is in use by process") != std::string::npos) {
      result = RunAt(memory, words);
    }
    return result;
  }

  std::string HistoryFolder() const { return Folder.Path("Zolvane.history"); }

  SystemDisk Files;
  FakeWitness Witness;
};

// Each of the three does its part three times. The first two change the file, one this way and one that.
TEST_F(SeveralPrograms, WorkAtTheSameTimeAndEachOperationIsWholeInTheHistory) {
  ASSERT_EQ(RunAt("first.json", {"--yes", "upload"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,11612,");
  ASSERT_EQ(RunAt("second.json", {"--yes", "upload"}).Status, 0);
  constexpr int rounds = 3;
  const auto work = [&](const std::string& name, const Words& command) {
    return std::async(std::launch::async, [this, name, command] {
      std::vector<ProcessResult> results;
      for (int round = 0; round < rounds; ++round) {
        auto words = command;
        words.insert(words.begin(), {"--yes", "--by", name});
        results.push_back(RunPatiently(name + ".json", words));
      }
      return results;
    });
  };
  std::vector<std::future<std::vector<ProcessResult>>> workers;
  workers.push_back(work("first", {"download"}));
  workers.push_back(work("second", {"download"}));
  workers.push_back(work("third", {"upload"}));

  std::vector<Checkpoint> printed;
  for (auto& worker : workers) {
    for (const auto& result : worker.get()) {
      EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
      const auto checkpoints = CheckpointsIn(result.Output);
      ASSERT_EQ(checkpoints.size(), 1U) << result.Output;
      printed.push_back(checkpoints.front());
    }
  }
  const auto audit = Audit(Files, Folder.Path(), printed);
  EXPECT_TRUE(audit.IsIntact && audit.IsComplete && audit.IsAnchored)
      << testing::PrintToString(audit.Problems);

  History history{Files, Witness, Folder.Path()};
  ASSERT_TRUE(history.Open().Ok());
  const auto entries = history.Entries();
  ASSERT_EQ(entries.size(), 2U * (2 + 1 + 3 * rounds)) << "with the one that the editor did";
  std::map<std::string, int> operations;
  for (std::size_t line = 0; line < entries.size(); line += 2) {
    const auto& begun = entries[line];
    const auto& ended = entries[line + 1];
    ASSERT_EQ(ended.Of, begun.Sequence) << "nobody else comes in between";
    EXPECT_EQ(ended.Outcome, "done");
    EXPECT_EQ(ended.Person, begun.Person);
    ++operations[begun.Person + " " + begun.Action];
    if (line > 0) {
      EXPECT_EQ(begun.FileBefore, entries[line - 1].FileAfter) << "each finds what the one before left";
    }
  }
  EXPECT_EQ(operations["first download"], rounds);
  EXPECT_EQ(operations["second download"], rounds);
  EXPECT_EQ(operations["third upload"], rounds);
  EXPECT_EQ(entries.back().FileAfter, Sha256Hex(Configuration()));
}

TEST_F(SeveralPrograms, TheSecondWaitsUntilTheFirstIsReady) {
  std::string holder;
  auto lock = Files.Lock(HistoryFolder(), holder);
  ASSERT_TRUE(lock) << holder;
  auto second = std::async(std::launch::async, [this] { return RunAt("memory.json", {"--yes", "upload"}); });
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds{500}), std::future_status::timeout);
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
  lock.reset();
  const auto result = second.get();
  EXPECT_EQ(result.Status, 0) << result.Errors;
}

TEST_F(SeveralPrograms, WhoWaitsInVainIsToldWhoHasTheHistory) {
  std::string holder;
  const auto lock = Files.Lock(HistoryFolder(), holder);
  ASSERT_TRUE(lock) << holder;
  const auto result = RunAt("memory.json", {"--yes", "upload"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find("is in use by process " + std::to_string(::getpid())), std::string::npos)
      << result.Errors;
  EXPECT_EQ(Configuration(), Sample());
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
}

TEST_F(SeveralPrograms, WhoIsTiredOfWaitingStops) {
  std::string holder;
  const auto lock = Files.Lock(HistoryFolder(), holder);
  ASSERT_TRUE(lock) << holder;
  auto errors = OpenPipe();
  Process waiting{ZOLVANE_PATH,
                  {"--folder", Folder.Path(), "--link", Link(), "--yes", "upload"},
                  {.Input = -1, .Output = -1, .Errors = errors.WriteEnd.Number()}};
  errors.WriteEnd.Close();
  ASSERT_TRUE(waiting.WaitUntilCatches(SIGINT));
  waiting.Signal(SIGINT);
  std::string text;
  while (ReadSome(errors.ReadEnd, text)) {
  }
  EXPECT_EQ(waiting.Wait(), 1);
  EXPECT_NE(text.find("stopped by the user; nothing was changed"), std::string::npos) << text;
  EXPECT_EQ(Configuration(), Sample());
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
}

// The instrument keeps silent, and the program waits for it until it is killed.
TEST_F(SeveralPrograms, WhatAKilledOneBeganIsResumedByTheNext) {
  SimulatorProcess instrument{{"--fault", "silent@250"}};
  auto output = OpenPipe();
  Process killed{
      ZOLVANE_PATH,
      {"--folder", Folder.Path(), "--link", instrument.Link(), "--timeout", "60", "--yes", "upload"},
      {.Input = -1, .Output = output.WriteEnd.Number(), .Errors = output.WriteEnd.Number()}};
  output.WriteEnd.Close();
  const auto deadline = std::chrono::steady_clock::now() + processDeadline;
  const auto hasBegun = [&] {
    History history{Files, Witness, Folder.Path()};
    return history.Open().Ok() && !history.Entries().empty();
  };
  while (!hasBegun() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds{5});
  }
  std::this_thread::sleep_for(std::chrono::seconds{5});  // some sixty lines until the instrument is silent
  killed.Signal(SIGKILL);
  EXPECT_EQ(killed.Wait(), -SIGKILL);

  const auto run = [&](Words words) {
    words.insert(words.begin(), {"--folder", Folder.Path(), "--link", instrument.Link()});
    return RunProgram(ZOLVANE_PATH, words);
  };
  const auto again = run({"--yes", "upload"});
  EXPECT_EQ(again.Status, 3);
  EXPECT_NE(again.Errors.find("[unfinished]"), std::string::npos) << again.Errors;
  const auto resume = run({"resume"});
  EXPECT_EQ(resume.Status, 0) << resume.Errors;
  EXPECT_EQ(run({"diff", "file", "instrument"}).Status, 0);
  EXPECT_EQ(run({"history", "audit"}).Status, 0);
}

TEST_F(SeveralPrograms, WhatTheBareHostDidInBetweenShowsAsOutside) {
  ASSERT_EQ(RunAt("memory.json", {"--yes", "upload"}).Status, 0);
  const auto ours = Configuration();
  Replace("STAGE,1612,", "STAGE,11612,");
  ASSERT_EQ(RunAt("other.json", {"--yes", "upload"}).Status, 0);
  Folder.Put("Zolvane.ini", ours);
  ASSERT_EQ(RunAt("memory.json", {"--yes", "upload"}).Status, 0);
  const auto bench = RunProgram(
      ZOLVANE_BENCH_PATH,
      {"--folder", Folder.Path(), "--link", "sim:" + Folder.Path("other.json"), "--yes", "download"});
  ASSERT_EQ(bench.Status, 0) << bench.Errors;
  const auto theirs = Configuration();
  ASSERT_NE(theirs, ours);
  ASSERT_EQ(RunAt("memory.json", {"--yes", "upload"}).Status, 0);

  History history{Files, Witness, Folder.Path()};
  ASSERT_TRUE(history.Open().Ok());
  const auto operations = history.Operations();
  const auto& outside = operations.at(operations.size() - 2);
  EXPECT_EQ(outside.Begun->Action, "outside");
  ASSERT_NE(outside.Ended, nullptr);
  EXPECT_EQ(history.Object(outside.Begun->FileBefore), ours);
  EXPECT_EQ(history.Object(outside.Ended->FileAfter), theirs);
  EXPECT_EQ(operations.back().Begun->FileBefore, outside.Ended->FileAfter);
}

}  // namespace
}  // namespace zolvane
