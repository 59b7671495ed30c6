// Whatever is done to a history shows, given one checkpoint that was kept elsewhere.
#include "custody/history/audit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "config/text.h"
#include "custody/disk/sha256.h"
#include "custody/support/history_fixture.h"

namespace zolvane {
namespace {

class AuditOf : public HistoryFixture {
 protected:
  // The history is no more what the checkpoint saw.
  void ExpectDetected(const std::string& what) {
    EXPECT_FALSE(AuditAgainst({Checkpoint_}).IsAnchored) << what;
    EXPECT_FALSE(AuditAgainst({Checkpoint_}).Problems.empty()) << what;
  }

  // So many operations, a checkpoint, and one operation behind it.
  void Start(int operations) {
    Make(operations);
    CheckpointedSize_ = JournalBytes().size();
    Checkpoint_ = LastCheckpoint();
    Make(1);
    Whole_ = JournalBytes();
  }

  void SetUp() override { Start(3); }

  // The journal with one bit of that byte flipped, another one for each byte.
  std::string Flipped(std::size_t at) const {
    auto bytes = Whole_;
    bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1U << (at % 8)));
    return bytes;
  }

  static constexpr std::size_t CheckpointedLines_ = 7;
  Checkpoint Checkpoint_;
  std::string Whole_;
  std::size_t CheckpointedSize_ = 0;
};

// With fewer lines, for what is done to each byte.
class AuditOfAFew : public AuditOf {
 protected:
  void SetUp() override { Start(1); }
};

TEST_F(AuditOf, AnUntouchedHistoryFindsNothing) {
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_TRUE(audit.Exists && audit.IsIntact && audit.IsComplete && audit.IsAnchored);
  EXPECT_EQ(audit.AnchoredUpTo, 7U);
  EXPECT_EQ(audit.LastEntry, 9U);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{});
}

TEST_F(AuditOf, AHistoryWithoutCheckpointsIsAnchoredNowhere) {
  const auto audit = AuditAgainst();
  EXPECT_TRUE(audit.IsIntact && audit.IsComplete);
  EXPECT_FALSE(audit.IsAnchored);
  EXPECT_EQ(audit.AnchoredUpTo, 0U);
}

TEST_F(AuditOf, EveryCheckpointHasToAgree) {
  auto other = Checkpoint_;
  other.Identity[0] = 'e';
  const auto audit = AuditAgainst({Checkpoint_, other});
  EXPECT_FALSE(audit.IsAnchored);
  EXPECT_EQ(audit.AnchoredUpTo, 7U);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{"checkpoint of 6 entries: it is of another history"});
}

// ---- Single bytes ----

TEST_F(AuditOfAFew, EveryFlippedBitUpToTheCheckpointShows) {
  for (std::size_t at = 0; at < CheckpointedSize_; ++at) {
    Disk.Put(journalPath, Flipped(at));
    ASSERT_FALSE(AuditAgainst({Checkpoint_}).IsAnchored) << at;
  }
}

TEST_F(AuditOfAFew, EveryCutBeforeTheCheckpointShowsAndWhatIsBehindItIsBelieved) {
  const auto whole = ReadJournal(Whole_);
  for (std::size_t size = 0; size < Whole_.size(); ++size) {
    Disk.Put(journalPath, Whole_.substr(0, size));
    const auto audit = AuditAgainst({Checkpoint_});
    ASSERT_EQ(audit.IsAnchored, size >= CheckpointedSize_) << size;
    History history{Disk, Witness, folder};
    ASSERT_TRUE(history.Open().Ok());
    const auto ends = static_cast<std::size_t>(std::ranges::count(Whole_.substr(0, size), '\n'));
    ASSERT_EQ(history.Entries().size(), ends == 0 ? 0 : ends - 1) << size;
    for (std::size_t entry = 0; entry < history.Entries().size(); ++entry) {
      ASSERT_EQ(history.Entries()[entry], whole.Entries[entry]);
    }
  }
}

TEST_F(AuditOfAFew, WithAFlippedBitTheLinesBeforeItAreReadAndNoneThatWasChanged) {
  const auto whole = ReadJournal(Whole_);
  for (std::size_t at = 0; at < Whole_.size(); ++at) {
    const auto journal = ReadJournal(Flipped(at));
    const auto line = static_cast<std::size_t>(std::ranges::count(Whole_.substr(0, at), '\n'));
    // The hash that would show a change of the last line stands in no line yet: in a checkpoint only.
    const auto mostBelieved = line == whole.Entries.size() ? line : std::max<std::size_t>(line, 1) - 1;
    ASSERT_LE(journal.Entries.size(), mostBelieved) << at;
    ASSERT_GE(journal.Entries.size() + 2, line) << at;
    for (std::size_t entry = 0; entry + 1 < line && entry < journal.Entries.size(); ++entry) {
      ASSERT_EQ(journal.Entries[entry], whole.Entries[entry]) << at;
    }
  }
}

// ---- Whole lines ----

TEST_F(AuditOf, EveryEditOfALineShowsAlsoIfItIsStillAnEntry) {
  for (std::size_t line = 1; line < CheckpointedLines_; ++line) {
    auto lines = Lines();
    auto entry = EntryIn(lines[line]);
    ASSERT_TRUE(entry);
    entry->Person = "eve";
    lines[line] = LineOf(*entry);
    PutLines(lines);
    ExpectDetected("edit of line " + std::to_string(line + 1));
    Disk.Put(journalPath, Whole_);
  }
}

TEST_F(AuditOf, EveryInsertedLineShows) {
  for (std::size_t line = 0; line < CheckpointedLines_; ++line) {
    auto lines = Lines();
    const auto inserted = lines.back();
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(line), inserted);
    PutLines(lines);
    ExpectDetected("insertion at line " + std::to_string(line + 1));
    Disk.Put(journalPath, Whole_);
  }
}

TEST_F(AuditOf, EveryRemovedLineShowsAndIsMissed) {
  for (std::size_t line = 0; line < CheckpointedLines_; ++line) {
    auto lines = Lines();
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line));
    PutLines(lines);
    ExpectDetected("removal of line " + std::to_string(line + 1));
    EXPECT_FALSE(AuditAgainst().IsComplete) << line;
    EXPECT_FALSE(AuditAgainst().IsIntact) << line;
    Disk.Put(journalPath, Whole_);
  }
}

TEST_F(AuditOf, EveryExchangeOfTwoLinesShows) {
  for (std::size_t first = 0; first < CheckpointedLines_; ++first) {
    for (std::size_t second = first + 1; second < Lines().size(); ++second) {
      auto lines = Lines();
      std::swap(lines[first], lines[second]);
      PutLines(lines);
      ExpectDetected(std::to_string(first) + " and " + std::to_string(second));
      Disk.Put(journalPath, Whole_);
    }
  }
}

TEST_F(AuditOf, ACutTailShowsByTheCheckpointAlone) {
  auto lines = Lines();
  lines.resize(CheckpointedLines_ - 1);
  PutLines(lines);
  EXPECT_TRUE(AuditAgainst().IsIntact && AuditAgainst().IsComplete);
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_FALSE(audit.IsAnchored);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{"checkpoint of 6 entries: the history has only 5"});
}

// ---- The whole history ----

TEST_F(AuditOf, ARemovedHistoryShows) {
  ASSERT_TRUE(Disk.Remove(journalPath).Ok());
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_FALSE(audit.Exists || audit.IsIntact || audit.IsComplete || audit.IsAnchored);
  ExpectDetected("removal");
}

TEST_F(AuditOf, ARollbackThatWentOnDifferentlyShows) {
  auto lines = Lines();
  lines.resize(3);
  PutLines(lines);
  Make(3);
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_TRUE(audit.IsIntact && audit.IsComplete);
  EXPECT_FALSE(audit.IsAnchored);
  EXPECT_EQ(audit.Problems,
            std::vector<std::string>{"checkpoint of 6 entries: the last of them is not the one it was"});
}

TEST_F(AuditOf, ARebuiltChainShows) {
  auto lines = Lines();
  std::string previous = Sha256Hex(lines[0]);
  for (std::size_t line = 1; line < lines.size(); ++line) {
    auto entry = EntryIn(lines[line]).value_or(Entry{});
    entry.Person = "eve";
    entry.Previous = previous;
    lines[line] = LineOf(entry);
    previous = Sha256Hex(lines[line]);
  }
  PutLines(lines);
  EXPECT_TRUE(AuditAgainst().IsIntact && AuditAgainst().IsComplete);
  ExpectDetected("rebuild");
}

TEST_F(AuditOf, AHistoryMadeAnewShows) {
  ASSERT_TRUE(Disk.Rename("/lab/Zolvane.history", "/lab/elsewhere").Ok());
  Make(4);
  EXPECT_TRUE(AuditAgainst().IsIntact && AuditAgainst().IsComplete);
  ExpectDetected("a new one");
}

TEST_F(AuditOf, AnEmptiedJournalIsNotComplete) {
  Disk.Put(journalPath, "");
  const auto audit = AuditAgainst();
  EXPECT_TRUE(audit.Exists);
  EXPECT_FALSE(audit.IsIntact);
  EXPECT_FALSE(audit.IsComplete);
}

// ---- Objects, forms, notes ----

TEST_F(AuditOf, AChangedAndAMissingObjectShow) {
  const auto name = Sha256Hex("found upload");
  const auto path = "/lab/Zolvane.history/objects/" + name;
  Disk.Put(path, "found uploaded");
  auto audit = AuditAgainst({Checkpoint_});
  EXPECT_FALSE(audit.IsIntact);
  EXPECT_TRUE(audit.IsComplete && audit.IsAnchored);
  EXPECT_EQ(audit.Problems,
            std::vector<std::string>{"object " + name + " of entry 2 does not hold what its name says"});
  ASSERT_TRUE(Disk.Remove(path).Ok());
  audit = AuditAgainst();
  EXPECT_FALSE(audit.IsIntact);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{"object " + name + " of entry 2 does not exist"});
}

TEST_F(AuditOf, AnObjectThatNobodyNamesIsNoProblem) {
  Disk.Put("/lab/Zolvane.history/objects/" + Sha256Hex("x"), "x");
  EXPECT_EQ(AuditAgainst().Problems, std::vector<std::string>{});
}

TEST_F(AuditOf, AnotherSpellingOfALineShows) {
  auto lines = Lines();
  lines.back() = Replaced(lines.back(), "\"action\":", "\"action\": ");
  PutLines(lines);
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_FALSE(audit.IsIntact);
  EXPECT_EQ(audit.Problems, std::vector<std::string>{"line 9: it is not in the canonical form"});
}

TEST_F(AuditOf, ATornLineAndAnOperationWithoutEndAreNoted) {
  History history{Disk, Witness, folder};
  ASSERT_TRUE(history.OpenForRecording().Ok());
  ASSERT_TRUE(history.Begin(EntryOf("upload")));
  Disk.Put(journalPath, JournalBytes() + "{");
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_TRUE(audit.IsIntact && audit.IsComplete && audit.IsAnchored);
  EXPECT_EQ(audit.Notes,
            (std::vector<std::string>{"behind the last entry stands a line that was not written to its end",
                                      "operation 10 was begun and has not ended"}));
}

TEST_F(AuditOf, AJournalFullOfDefectsIsNotReadToItsEnd) {
  Disk.Put(journalPath, std::string(1'000'000, '\n'));
  const auto audit = AuditAgainst({Checkpoint_});
  EXPECT_FALSE(audit.IsIntact || audit.IsAnchored);
  EXPECT_LE(audit.Problems.size(), 101U);
}

}  // namespace
}  // namespace zolvane
