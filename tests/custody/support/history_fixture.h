// A history in memory, and entries to put into it.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/disk/disk.h"
#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/support/fake_witness.h"

namespace zolvane {

inline Entry EntryOf(std::string action) {
  Entry entry;
  entry.Action = std::move(action);
  entry.Program = "zolvane";
  entry.Version = "1.0";
  entry.File = "Zolvane.ini";
  return entry;
}

inline Entry EndOf(std::string action, std::string outcome = "done") {
  auto entry = EntryOf(std::move(action));
  entry.Outcome = std::move(outcome);
  return entry;
}

class HistoryFixture : public testing::Test {
 protected:
  static constexpr const char* folder = "/lab";
  static constexpr const char* journalPath = "/lab/Zolvane.history/journal.jsonl";

  HistoryFixture() { Disk.Put("/lab/Zolvane.ini", "[Arm]\r\n"); }

  // An operation from its beginning to its end, with an object on either side.
  std::uint64_t Operate(History& history, const std::string& action = "upload") {
    auto begun = EntryOf(action);
    begun.Found = history.PutObject("found " + action).value_or("");
    begun.Reason = "because";
    const auto number = history.Begin(begun);
    EXPECT_TRUE(number) << history.FailureReason();
    auto ended = EndOf(action);
    ended.Left = history.PutObject("left " + action).value_or("");
    ended.Counts = {{"verified", 178}, {"kept", -1}};
    EXPECT_TRUE(history.End(number.value_or(0), ended).Ok()) << history.FailureReason();
    return number.value_or(0);
  }

  // A history of that many operations.
  void Make(int operations) {
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.OpenForRecording().Ok()) << history.FailureReason();
    for (int number = 0; number < operations; ++number) {
      Operate(history, number % 2 == 0 ? "upload" : "undo");
    }
  }

  std::string JournalBytes() { return Disk.Read(journalPath).Bytes; }

  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    const auto bytes = JournalBytes();
    for (std::string_view rest = bytes; !rest.empty();) {
      lines.emplace_back(rest.substr(0, rest.find('\n')));
      rest.remove_prefix(lines.back().size() + 1);
    }
    return lines;
  }

  void PutLines(const std::vector<std::string>& lines) {
    std::string bytes;
    for (const auto& line : lines) {
      bytes += line + '\n';
    }
    Disk.Put(journalPath, bytes);
  }

  Checkpoint LastCheckpoint() {
    History history{Disk, Witness, folder};
    EXPECT_TRUE(history.Open().Ok());
    return history.LastCheckpoint().value_or(Checkpoint{});
  }

  AuditResult AuditAgainst(const std::vector<Checkpoint>& checkpoints = {}) {
    return Audit(Disk, folder, checkpoints);
  }

  MemoryDisk Disk;
  FakeWitness Witness;
};

}  // namespace zolvane
