// Any bytes as a journal, as an object's name and as a file with checkpoints. What is believed of a journal
// reads the same when it is written again, and an audit of any of them ends.
#include <cstddef>
#include <cstdint>
#include <string>

#include "custody/history/audit.h"
#include "custody/history/journal.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes{data, data + size};
  const auto journal = zolvane::ReadJournal(bytes);
  Require(journal.WholeSize + journal.Torn.size() == size);
  for (const auto& entry : journal.Entries) {
    Require(zolvane::EntryIn(zolvane::LineOf(entry)) == entry);
  }
  if (const auto entry = zolvane::EntryIn(bytes)) {
    Require(zolvane::EntryIn(zolvane::LineOf(*entry)) == entry);
  }
  zolvane::MemoryDisk disk;
  disk.Put("/lab/Zolvane.history/journal.jsonl", bytes);
  const auto audit = zolvane::Audit(disk, "/lab", zolvane::CheckpointsIn(bytes));
  Require(audit.IsIntact == journal.Defects.empty() || !audit.Problems.empty());
  return 0;
}
