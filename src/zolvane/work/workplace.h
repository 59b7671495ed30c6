// What a command works with: the ends that it reaches, the user, and the report that it fills in.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "bench/host/tracing.h"
#include "custody/disk/disk.h"
#include "custody/disk/witness.h"
#include "files/paths.h"
#include "instrument/links/bench_link.h"
#include "program/console.h"
#include "program/terminal.h"
#include "zolvane/work/options.h"
#include "zolvane/work/report.h"

namespace zolvane {

inline constexpr std::string_view programName = "zolvane";

// The disk, the instrument and the witness are the system's own, or simulated ones: a rehearsal changes these
// and nothing else.
struct Workplace {
  const CustodyOptions& Options;
  Disk& Files;
  Witness& Who;
  std::shared_ptr<BenchLink> Link;  // null: no instrument is named
  Questioner* Terminal = nullptr;   // null: nobody can be asked
  Console& Out;
  TraceLog* Trace = nullptr;  // null: no trace
  Report& Result;
  bool IsRehearsal = false;    // the ends are copies
  bool HasToldDamage = false;  // of the history

  std::string ConfigFile() const { return ConfigFileIn(Options.Folder); }
};

// Reads a file that the command cannot do without. Throws UsageError if it cannot be read; `advice` ends its message.
std::string ReadFile(Disk& files, const std::string& path, std::string_view advice = {});

// Reads the configuration in the same way.
std::string ReadConfiguration(Workplace& work);

std::string FolderHolding(const std::string& path);

// Throws UsageError if the file would lie in the history of that folder.
void DemandOutsideHistory(const std::string& folder, const std::string& path);

// The instrument, for a command that cannot do without. Throws UsageError.
BenchLink& DemandLink(Workplace& work);

}  // namespace zolvane
