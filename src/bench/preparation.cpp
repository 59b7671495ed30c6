#include "bench/preparation.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/joined.h"
#include "bench/paths.h"
#include "bench/printable.h"
#include "bench/settings/file_settings_service.h"
#include "bench/usage_error.h"
#include "page/page_controls.h"

namespace zolvane {
namespace {

bool Opens(const Action& action, int button) {
  return action.Kind == ActionKind::PressButton && action.Button == button && action.File.has_value();
}

void Demand(const std::string& file, FileUse use, const std::string& at, const std::string& advice) {
  if (const auto reason = CheckUsable(file, use)) {
    throw UsageError{Joined(at, Quoted(file), " ", *reason, advice)};
  }
}

void CheckConfigFile(const std::string& folder) {
  const auto file = ConfigFileIn(folder);
  Demand(file, FileUse::ReadOnly, "", "; --folder names the folder that holds it");
  Demand(file, FileUse::ReadAndWrite, "", "");
}

// A file that an earlier command saves to is there when a later one loads it.
void CheckDialogueFiles(const Job& job) {
  std::vector<std::string> saved;
  for (const auto& action : job.Actions) {
    const auto at = action.Place.empty() ? std::string{} : action.Place + ": ";
    if (Opens(action, exportButton)) {
      Demand(*action.File, FileUse::ReadAndWrite, at, "");
      saved.push_back(*action.File);
    } else if (Opens(action, importButton) && std::ranges::find(saved, *action.File) == saved.end()) {
      Demand(*action.File, FileUse::ReadOnly, at, "");
    }
  }
}

// The files that the run reads or writes as settings, and the lists of its commands.
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

// The file behind "sim:" or "script:".
std::optional<std::string> LinkFile(const Options& options) {
  for (const std::string_view kind : {"sim:", "script:"}) {
    if (options.Link.starts_with(kind) && options.Link.size() > kind.size()) {
      return AbsolutePath(std::string_view{options.Link}.substr(kind.size()));
    }
  }
  return std::nullopt;
}

// For a file that is replaced whole.
void DemandOther(const std::string& file, const std::vector<std::string>& needed, std::string_view what) {
  for (const auto& other : needed) {
    if (IsSameFile(file, other)) {
      throw UsageError{
          Joined(what, " would overwrite ", Quoted(other), ", which the run needs; name another file")};
    }
  }
}

void CheckReplacedFiles(const Options& options, const Job& job) {
  auto needed = NeededFiles(options, job);
  if (const auto file = LinkFile(options)) {
    if (options.Link.starts_with("sim:")) {
      DemandOther(*file, needed, "--link: the instrument's memory");
    }
    needed.push_back(*file);
  }
  if (options.Trace && *options.Trace != "-") {
    DemandOther(AbsolutePath(*options.Trace), needed, "--trace");
  }
}

}  // namespace

void CheckFiles(const Options& options, const Job& job) {
  CheckConfigFile(options.Folder);
  CheckDialogueFiles(job);
  CheckReplacedFiles(options, job);
}

}  // namespace zolvane
