#include "bench/program/file_checks.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "bench/host/dry_run.h"
#include "bench/host/trace_output.h"
#include "config/text.h"
#include "files/file_settings_service.h"
#include "files/paths.h"
#include "instrument/links/link_factory.h"
#include "page/page_controls.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

bool Presses(const Action& action, int button) {
  return action.Kind == ActionKind::PressButton && action.Button == button;
}

void Demand(const std::string& file, FileUse use, const std::string& at) {
  if (const auto reason = CheckUsable(file, use)) {
    throw UsageError{Joined(at, Quoted(file), " ", *reason)};
  }
}

void CheckConfigFile(const std::string& folder) {
  const auto file = ConfigFileIn(folder);
  if (const auto reason = ReasonFileIsInaccessible(file, FileUse::ReadOnly)) {
    throw UsageError{Joined(Quoted(file), " ", *reason, "; --folder names the folder that holds it")};
  }
  Demand(file, FileUse::ReadAndWrite, "");
}

bool IsPresent(const std::string& file) {
  std::error_code ignored;
  return std::filesystem::exists(PathOf(file), ignored);
}

// The add-in itself refuses to export to the configuration file.
bool IsMerged(const std::string& file, const std::string& folder) {
  const auto config = ConfigFileIn(folder);
  return IsPresent(file) && !EqualIgnoringCase(file, config) && !IsSameFile(file, config);
}

void DemandReplacement(const std::string& file, bool isWanted, const std::string& at) {
  if (!isWanted) {
    throw UsageError{Joined(at, Quoted(file),
                            " exists; name another file, or let the export merge into it with --replace")};
  }
}

void DemandBackup(const std::string& file, const std::string& folder, const std::string& at) {
  Demand(file, FileUse::ReadOnly, at);
  if (!HoldsBackup(folder, file)) {
    throw UsageError{
        Joined(at, Quoted(file), " is no backup: it has none of the sections that an import reads")};
  }
}

// A file that an earlier command saves to will exist when a later one loads it or saves to it again.
// Returns notes for the user.
std::vector<std::string> CheckDialogueFiles(const Options& options, const Job& job) {
  std::vector<std::string> notes;
  std::vector<std::string> saved;
  for (const auto& action : job.Actions) {
    if (!action.File) {
      continue;
    }
    const auto at = action.At();
    const auto& file = *action.File;
    const bool isSaved = std::ranges::find(saved, file) != saved.end();
    if (Presses(action, exportButton)) {
      Demand(file, FileUse::ReadAndWrite, at);
      if (!isSaved && IsMerged(file, options.Folder)) {
        DemandReplacement(file, options.Replaces, at);
        notes.push_back(
            Joined(at, Quoted(file), " exists: the add-in merges, so what it does not export stays in it"));
      }
      saved.push_back(file);
    } else if (Presses(action, importButton) && !isSaved) {
      DemandBackup(file, options.Folder, at);
    }
  }
  return notes;
}

// The settings files that the run reads or writes, and its run files.
std::vector<std::string> NeededFiles(const Options& options, const Job& job) {
  std::vector<std::string> files{ConfigFileIn(options.Folder)};
  for (const auto& action : job.Actions) {
    if (action.File) {
      files.push_back(*action.File);
    }
  }
  files.insert(files.end(), job.RunFiles.begin(), job.RunFiles.end());
  return files;
}

void CheckReplacedFiles(const Options& options, const Job& job) {
  auto needed = NeededFiles(options, job);
  if (const auto file = FileOfLink(options.Link)) {
    if (options.Link.starts_with("sim:")) {
      DemandOther(*file, needed, "--link: the instrument's memory");
    }
    needed.push_back(*file);
  }
  if (options.Trace && *options.Trace != standardOutput) {
    DemandTraceFile(*options.Trace, needed);
  }
}

}  // namespace

std::vector<std::string> CheckFiles(const Options& options, const Job& job) {
  CheckConfigFile(options.Folder);
  auto notes = CheckDialogueFiles(options, job);
  CheckReplacedFiles(options, job);
  return notes;
}

}  // namespace zolvane
