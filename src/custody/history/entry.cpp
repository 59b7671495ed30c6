#include "custody/history/entry.h"

#include <algorithm>
#include <concepts>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/history/canonical_json.h"

namespace zolvane {
namespace {

using nlohmann::json;

constexpr std::uint64_t largestWholeNumber = std::uint64_t{1}
                                             << 53;  // that every reader of JSON takes as it is

enum class Presence { IfAny, Always };

template <class Any, class Described>
concept Is = std::same_as<std::remove_const_t<Any>, Described>;

// What a line holds: each member with its name. Both directions follow these three lists.
template <Is<Entry> AnyEntry, class Visitor>
void VisitMembers(AnyEntry& entry, Visitor& visit) {
  visit("seq", entry.Sequence, Presence::Always);
  visit("of", entry.Of);
  visit("action", entry.Action, Presence::Always);
  visit("outcome", entry.Outcome);
  visit("time", entry.Time, Presence::Always);
  visit("offset", entry.Offset, Presence::Always);
  visit("person", entry.Person, Presence::Always);
  visit("machine", entry.Machine, Presence::Always);
  visit("reason", entry.Reason);
  visit("program", entry.Program, Presence::Always);
  visit("version", entry.Version, Presence::Always);
  visit("link", entry.Link);
  visit("instrument", entry.Instrument);
  visit("file", entry.File);
  visit("file_before", entry.FileBefore);
  visit("file_after", entry.FileAfter);
  visit("other_files", entry.OtherFiles);
  visit("found", entry.Found);
  visit("intended", entry.Intended);
  visit("left", entry.Left);
  visit("details", entry.Details);
  visit("objections", entry.Objections);
  visit("counts", entry.Counts);
  visit("previous", entry.Previous, Presence::Always);
}

template <Is<Objection> AnyObjection, class Visitor>
void VisitMembers(AnyObjection& objection, Visitor& visit) {
  visit("code", objection.Code, Presence::Always);
  visit("expected", objection.Expected);
  visit("actual", objection.Actual);
}

template <Is<FileChange> AnyChange, class Visitor>
void VisitMembers(AnyChange& change, Visitor& visit) {
  visit("path", change.Path, Presence::Always);
  visit("before", change.Before);
  visit("after", change.After);
}

struct Writer {
  json Object = json::object();

  void operator()(const char* name, const std::string& text, Presence presence = Presence::IfAny) {
    if (presence == Presence::Always || !text.empty()) {
      Object[name] = text;
    }
  }

  template <std::integral Number>
  void operator()(const char* name, Number number, Presence presence = Presence::IfAny) {
    if (presence == Presence::Always || number != 0) {
      Object[name] = number;
    }
  }

  template <class Item>
  void operator()(const char* name, const std::vector<Item>& items) {
    for (const auto& item : items) {
      Writer member;
      VisitMembers(item, member);
      Object[name].push_back(std::move(member.Object));
    }
  }

  void operator()(const char* name, const std::map<std::string, std::int64_t>& counts) {
    if (!counts.empty()) {
      Object[name] = counts;
    }
  }
};

struct Reader {
  const json& Object;
  bool IsGood = Object.is_object();

  // Null if there is no such member, or if it is not of that kind; the latter is a defect.
  template <class HasKind>
  const json* Find(const char* name, Presence presence, HasKind hasKind) {
    const auto found = IsGood ? Object.find(name) : Object.end();
    if (found == Object.end()) {
      IsGood = IsGood && presence == Presence::IfAny;
      return nullptr;
    }
    IsGood = hasKind(*found);
    return IsGood ? &*found : nullptr;
  }

  static bool IsWhole(const json& value) {
    return value.is_number_unsigned()
               ? value.get<std::uint64_t>() <= largestWholeNumber
               : value.is_number_integer() && value.get<std::int64_t>() >= -std::int64_t{largestWholeNumber};
  }

  void operator()(const char* name, std::string& text, Presence presence = Presence::IfAny) {
    if (const auto* const found = Find(name, presence, [](const json& value) { return value.is_string(); })) {
      text = found->get_ref<const std::string&>();
    }
  }

  template <std::integral Number>
  void operator()(const char* name, Number& number, Presence presence = Presence::IfAny) {
    if (const auto* const found = Find(name, presence, [](const json& value) {
          return IsWhole(value) && (std::signed_integral<Number> || value.is_number_unsigned());
        })) {
      found->get_to(number);
    }
  }

  template <class Item>
  void operator()(const char* name, std::vector<Item>& items) {
    const auto* const found = Find(name, Presence::IfAny, [](const json& value) { return value.is_array(); });
    if (found == nullptr) {
      return;
    }
    for (const auto& member : *found) {
      Reader reader{member};
      VisitMembers(items.emplace_back(), reader);
      IsGood = IsGood && reader.IsGood;
    }
  }

  void operator()(const char* name, std::map<std::string, std::int64_t>& counts) {
    if (const auto* const found = Find(name, Presence::IfAny, [](const json& value) {
          return value.is_object() && std::all_of(value.begin(), value.end(), IsWhole);
        })) {
      found->get_to(counts);
    }
  }
};

constexpr const char* begunState = "begun";
constexpr const char* endedState = "ended";

bool NamesObjectsOnly(const Entry& entry) {
  return std::ranges::all_of(ObjectsOf(entry), IsSha256Hex) && IsSha256Hex(entry.Previous);
}

}  // namespace

std::string LineOf(const Entry& entry) {
  Writer writer;
  VisitMembers(entry, writer);
  writer.Object["state"] = entry.IsEnd() ? endedState : begunState;
  return CanonicalJson(writer.Object);
}

nlohmann::json ObjectIn(std::string_view line) {
  return line.starts_with('{') ? json::parse(line, nullptr, false) : json{};
}

std::optional<Entry> EntryIn(std::string_view line) {
  const auto object = ObjectIn(line);
  Reader reader{object};
  Entry entry;
  VisitMembers(entry, reader);
  std::string state;
  reader("state", state, Presence::Always);
  const bool isEntry =
      reader.IsGood && state == (entry.IsEnd() ? endedState : begunState) && NamesObjectsOnly(entry);
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
