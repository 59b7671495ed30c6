#include "custody/history/entry.h"

#include <algorithm>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/history/canonical_json.h"
#include "text/json_text.h"
#include "text/plain_json.h"

namespace zolvane {

// NOLINTBEGIN(misc-use-anonymous-namespace): found by argument-dependent lookup
static constexpr auto MembersOf(const FileChange*) {
  return std::tuple{Member{"path", &FileChange::Path, Presence::Always},
                    Member{"before", &FileChange::Before}, Member{"after", &FileChange::After}};
}

// All of a line but its state.
static constexpr auto MembersOf(const Entry*) {
  return std::tuple{Member{"seq", &Entry::Sequence, Presence::Always},
                    Member{"of", &Entry::Of},
                    Member{"action", &Entry::Action, Presence::Always},
                    Member{"outcome", &Entry::Outcome},
                    Member{"time", &Entry::Time, Presence::Always},
                    Member{"offset", &Entry::Offset, Presence::Always},
                    Member{"person", &Entry::Person, Presence::Always},
                    Member{"machine", &Entry::Machine, Presence::Always},
                    Member{"reason", &Entry::Reason},
                    Member{"program", &Entry::Program, Presence::Always},
                    Member{"version", &Entry::Version, Presence::Always},
                    Member{"link", &Entry::Link},
                    Member{"instrument", &Entry::Instrument},
                    Member{"file", &Entry::File},
                    Member{"file_before", &Entry::FileBefore},
                    Member{"file_after", &Entry::FileAfter},
                    Member{"other_files", &Entry::OtherFiles},
                    Member{"found", &Entry::Found},
                    Member{"intended", &Entry::Intended},
                    Member{"left", &Entry::Left},
                    Member{"details", &Entry::Details},
                    Member{"objections", &Entry::Objections},
                    Member{"about", &Entry::About},
                    Member{"counts", &Entry::Counts},
                    Member{"previous", &Entry::Previous, Presence::Always}};
}
// NOLINTEND(misc-use-anonymous-namespace)

namespace {

// What stands on a line. The state tells people what `of` tells programs.
struct EntryLine : Entry {
  std::string State;
};

constexpr auto MembersOf(const EntryLine*) {
  return std::tuple_cat(MembersOf(static_cast<const Entry*>(nullptr)),
                        std::tuple{Member{"state", &EntryLine::State, Presence::Always}});
}

std::string StateOf(const Entry& entry) {
  return entry.IsEnd() ? "ended" : "begun";
}

bool NamesObjectsOnly(const Entry& entry) {
  return std::ranges::all_of(ObjectsOf(entry), IsSha256Hex) && IsSha256Hex(entry.Previous);
}

std::optional<EntryLine> ParsedLine(std::string_view line) {
  if (auto plain = FromPlainJson<EntryLine>(line)) {
    return plain;
  }
  EntryLine parsed;
  return Take(ObjectIn(line), parsed) ? std::optional{std::move(parsed)} : std::nullopt;
}

}  // namespace

std::string LineOf(const Entry& entry) {
  return CanonicalJson(JsonOf(EntryLine{entry, StateOf(entry)}));
}

Json ObjectIn(std::string_view line) {
  return line.starts_with('{') ? ParsedJson(line) : Json();
}

std::optional<Entry> EntryIn(std::string_view line) {
  auto parsed = ParsedLine(line);
  const bool isEntry = parsed && parsed->State == StateOf(*parsed) && NamesObjectsOnly(*parsed);
  return isEntry ? std::optional<Entry>{std::move(*parsed)} : std::nullopt;
}

std::vector<std::string> ObjectsOf(const Entry& entry) {
  std::vector<std::string> names{entry.FileBefore, entry.FileAfter, entry.Found,
                                 entry.Intended,   entry.Left,      entry.Details};
  for (const auto& file : entry.OtherFiles) {
    names.push_back(file.Before);
    names.push_back(file.After);
  }
  std::erase(names, "");
  return names;
}

}  // namespace zolvane
