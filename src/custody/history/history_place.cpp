#include "custody/history/history_place.h"

#include <utility>

#include "custody/disk/sha256.h"
#include "files/paths.h"

namespace zolvane {

HistoryPlace PlaceOfHistory(const std::string& folder) {
  const auto history = PathOf(folder) / "Zolvane.history";
  return {.Parent = folder,
          .Folder = TextOf(history),
          .Journal = TextOf(history / "journal.jsonl"),
          .Objects = TextOf(history / "objects")};
}

std::string HistoryPlace::Object(std::string_view name) const {
  return TextOf(PathOf(Objects) / PathOf(name));
}

std::optional<std::string> ReadObject(Disk& disk, const HistoryPlace& place, std::string_view name) {
  if (!IsSha256Hex(name)) {
    return std::nullopt;
  }
  auto content = disk.Read(place.Object(name));
  const bool isWhatItsNameSays =
      content.Is == DiskContent::State::Present && Sha256Hex(content.Bytes) == name;
  return isWhatItsNameSays ? std::optional{std::move(content.Bytes)} : std::nullopt;
}

}  // namespace zolvane
