#include "custody/history/entry.h"

#include <algorithm>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/history/canonical_json.h"

namespace zolvane {

constexpr auto MembersOf(const FileChange*) {
  return std::tuple{Member{"path", &FileChange::Path, Presence::Always},
                    Member{"before", &FileChange::Before}, Member{"after", &FileChange::After}};
}

// All of a line but its state, which follows.
constexpr auto MembersOf(const Entry*) {
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
                    Member{"counts", &Entry::Counts},
                    Member{"previous", &Entry::Previous, Presence::Always}};
}

namespace {

constexpr const char* stateName = "state";

const char* StateOf(const Entry& entry) {
  return entry.IsEnd() ? "ended" : "begun";
}

bool NamesObjectsOnly(const Entry& entry) {
  return std::ranges::all_of(ObjectsOf(entry), IsSha256Hex) && IsSha256Hex(entry.Previous);
}

}  // namespace

std::string LineOf(const Entry& entry) {
  auto object = JsonOf(entry);
  object[stateName] = StateOf(entry);
  return CanonicalJson(object);
}

Json ObjectIn(std::string_view line) {
  return line.starts_with('{') ? Json::parse(line, nullptr, false) : Json();
}

std::optional<Entry> EntryIn(std::string_view line) {
  const auto object = ObjectIn(line);
  Entry entry;
  const bool isEntry =
      Take(object, entry) && object.value(stateName, Json()) == StateOf(entry) && NamesObjectsOnly(entry);
  return isEntry ? std::optional{std::move(entry)} : std::nullopt;
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
