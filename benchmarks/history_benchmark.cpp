// How long it takes to open a history of many entries, and to prove all of it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "folder.h"

namespace zolvane {
namespace {

// What an upload of the sample leaves, again and again.
std::string JournalOf(std::int64_t entries) {
  MemoryDisk disk;
  SystemWitness witness;
  History history{disk, witness, "/lab"};
  PassOver(history.OpenForRecording());
  const std::string object(64, 'a');
  for (std::int64_t entry = 0; entry < entries; entry += 2) {
    Entry begun;
    begun.Action = "upload";
    begun.Reason = "New head after the yearly service";
    begun.Program = "zolvane";
    begun.Version = "1.0.0.135";
    begun.Link = "tcp:192.168.17.4:4711";
    begun.Instrument = "ZOLVANE STAGE 2";
    begun.File = "Zolvane.ini";
    begun.FileBefore = begun.FileAfter = begun.Found = begun.Intended = object;
    const auto number = history.Begin(begun);
    begun.Outcome = "done";
    begun.Left = begun.Details = object;
    begun.Counts = {{"verified", 178}, {"same", 170}, {"different", 8}};
    PassOver(history.End(number.value_or(0), begun));
  }
  return disk.Read("/lab/Zolvane.history/journal.jsonl").Bytes;
}

class KeptHistory {
 public:
  explicit KeptHistory(std::int64_t entries) : journal_{JournalOf(entries)} {
    std::filesystem::create_directory(Path() + "/Zolvane.history");
    folder_.Put("Zolvane.history/journal.jsonl", journal_);
  }

  std::string Path() const {
    return std::filesystem::path{folder_.Put("Zolvane.ini", "")}.parent_path().string();
  }
  std::size_t Size() const { return journal_.size(); }

 private:
  std::string journal_;
  Folder folder_;
};

void OpenHistory(benchmark::State& state) {
  const KeptHistory kept{state.range()};
  const auto folder = kept.Path();
  SystemDisk disk;
  SystemWitness witness;
  while (state.KeepRunning()) {
    History history{disk, witness, folder};
    if (!history.Open().Ok() || static_cast<std::int64_t>(history.Entries().size()) != state.range()) {
      state.SkipWithError("the history cannot be read");
    }
  }
  state.counters["bytes"] = static_cast<double>(kept.Size());
}

void AuditHistory(benchmark::State& state) {
  const KeptHistory kept{state.range()};
  const auto folder = kept.Path();
  SystemDisk disk;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(Audit(disk, folder));
  }
}

BENCHMARK(OpenHistory)->Arg(1000)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(AuditHistory)->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
