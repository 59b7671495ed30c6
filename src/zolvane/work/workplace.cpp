#include "zolvane/work/workplace.h"

#include <string_view>

#include "custody/history/history_place.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {

std::string ReadFile(Disk& files, const std::string& path, std::string_view advice) {
  auto content = files.Read(path);
  if (content.Is != DiskContent::State::Present) {
    throw UsageError{Joined(Quoted(path), " ", content.Reason, advice)};
  }
  return std::move(content.Bytes);
}

std::string ReadConfiguration(Workplace& work) {
  return ReadFile(work.Files, work.ConfigFile(), "; --folder names the folder that holds it");
}

std::string FolderHolding(const std::string& path) {
  return TextOf(PathOf(path).parent_path());
}

void DemandOutsideHistory(const std::string& folder, const std::string& path) {
  const auto place = PlaceOfHistory(folder);
  const auto holder = FolderHolding(path);
  if (IsSameFile(path, place.Folder) || IsSameFile(holder, place.Folder) ||
      IsSameFile(holder, place.Objects)) {
    throw UsageError{Joined(Quoted(path), " lies in the history, which only zolvane writes")};
  }
}

BenchLink& DemandLink(Workplace& work) {
  if (work.Link == nullptr) {
    throw UsageError{Joined(work.Result.Command,
                            " needs an instrument; --link or ZOLVANE_LINK names it, there is no default")};
  }
  return *work.Link;
}

}  // namespace zolvane
