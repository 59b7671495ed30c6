// What a backup, or the way over the instrument and back, would change.
#include <utility>

#include "config/text.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "custody/values/values.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// "field 4 (tip volume) "300" becomes "299"" for each piece of another value; empty if none has.
std::string ChangesOf(const std::string& section, const std::string& key, const std::string& before,
                      const std::string& after) {
  const auto& fields = FileSectionOf(section);
  if (!fields.NumberIn(key)) {
    return SameText(before, after) ? std::string{} : Joined(Shown(before), " becomes ", Shown(after));
  }
  const auto old = PiecesOf(before);
  const auto now = PiecesOf(after);
  const auto pieceOf = [](const std::vector<std::string>& pieces, std::size_t piece) {
    return piece < pieces.size() ? pieces[piece] : std::string{};
  };
  std::string changes;
  for (std::size_t piece = 0; piece < std::max(old.size(), now.size()); ++piece) {
    if (!SameText(pieceOf(old, piece), pieceOf(now, piece))) {
      const auto* const field = fields.FieldAt(piece);
      const auto title =
          field == nullptr || field->Title.empty() ? std::string{} : Joined(" (", field->Title, ")");
      AddListed(changes, ", ",
                Joined("field ", std::to_string(piece + 1), title, " ", Shown(pieceOf(old, piece)),
                       " becomes ", Shown(pieceOf(now, piece))));
    }
  }
  return changes;
}

void AddChange(CheckedFile& file, std::string_view code, std::string_view what,
               const DrySettings::Kept& kept) {
  const auto name = Printable(NameOfPlace(kept.Section, kept.Key));
  const auto before = file.Text.Find(kept.Section, kept.Key);
  if (!before) {
    if (!kept.Text.empty()) {
      file.Add(code, file.LineOf(kept.Section), Joined(name, ": ", what, " would add ", Shown(kept.Text)));
    }
    return;
  }
  const auto changes = ChangesOf(kept.Section, kept.Key, *before, kept.Text);
  const auto line = file.LineOf(kept.Section, kept.Key);
  if (!changes.empty()) {
    file.Add(code, line, Joined(name, ": ", what, " would change it: ", changes));
  } else if (*before != kept.Text && code == "backup-changes") {
    file.Add("respelled", line,
             Joined(name, " would be spelled ", Shown(kept.Text), ", with the same values"));
  }
}

}  // namespace

void CheckRoundTrips(CheckedFile& file) {
  const auto isSameIn = [](const CheckedFile::Places& places, const auto& one) {
    const auto same = places.find(one.first);
    return same != places.end() && same->second.Text == one.second.Text;
  };
  for (const auto& one : file.Imported) {
    AddChange(file, "backup-changes",
              isSameIn(file.Downloaded, one) ? "an export and its import, and an upload and a download,"
                                             : "an export and its import",
              one.second);
  }
  for (const auto& one : file.Downloaded) {
    if (!isSameIn(file.Imported, one)) {
      AddChange(file, "download-changes", "an upload and a download", one.second);
    }
  }
}

}  // namespace zolvane
