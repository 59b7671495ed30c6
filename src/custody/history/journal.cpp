#include "custody/history/journal.h"

#include <set>
#include <utility>

#include "custody/disk/sha256.h"
#include "custody/history/canonical_json.h"
#include "custody/history/checkpoint.h"
#include "text/joined.h"

namespace zolvane {
namespace {

constexpr std::string_view format = "zolvane-history/1";
constexpr std::size_t mostDefects = 100;

std::string IdentityIn(std::string_view line) {
  const auto object = ObjectIn(line);
  if (!object.is_object() || object.value("format", Json()) != format) {
    return {};
  }
  const auto identity = object.value("history", Json());
  const auto text = identity.is_string() ? identity.get<std::string>() : std::string{};
  return IsIdentity(text) ? text : std::string{};
}

// Lines in their order, each looked at with what the ones before it said.
class JournalReader {
 public:
  void Take(std::string_view line) {
    if (++number_ == 1) {
      TakeIdentity(line);
    } else if (auto entry = EntryIn(line)) {
      TakeEntry(std::move(*entry));
    } else {
      AddDefect("it is no entry");
    }
    journal_.Hashes.push_back(Sha256Hex(line));
  }

  Journal End() {
    if (number_ == 0) {
      ++number_;
      AddDefect("it is missing");
    }
    return std::move(journal_);
  }

  bool HasSeenEnough() const { return journal_.Defects.size() >= mostDefects; }

 private:
  void TakeIdentity(std::string_view line) {
    journal_.Identity = IdentityIn(line);
    if (journal_.Identity.empty()) {
      AddDefect("it does not say which history this is");
    }
  }

  void TakeEntry(Entry entry) {
    if (entry.Previous != journal_.Hashes.back()) {
      DoubtLastEntry();
      AddDefect("it does not follow from the line before");
    }
    const auto expected = std::exchange(next_, entry.Sequence + 1);
    if (entry.Sequence != expected) {
      AddDefect(
          Joined("its number is ", std::to_string(entry.Sequence), " instead of ", std::to_string(expected)),
          true);
    }
    if (entry.IsEnd() ? running_.erase(entry.Of) == 0 : !running_.insert(entry.Sequence).second) {
      AddDefect("it ends what was not begun");
    }
    if (journal_.Defects.empty()) {
      journal_.Entries.push_back(std::move(entry));
    }
  }

  // The line before may be the one that was changed.
  void DoubtLastEntry() {
    if (journal_.Defects.empty() && !journal_.Entries.empty()) {
      journal_.Entries.pop_back();
    }
  }

  void AddDefect(std::string text, bool isGap = false) {
    journal_.Defects.push_back({number_, std::move(text), isGap});
  }

  Journal journal_;
  std::size_t number_ = 0;
  std::uint64_t next_ = 2;  // line 1 is the identity
  std::set<std::uint64_t> running_;
};

// What a power cut leaves of a line need not end where it was cut: what was not written may be there as
// zeros.
std::size_t WholeSizeOf(std::string_view bytes) {
  const auto end = bytes.rfind('\n') + 1;
  const auto lastLine = end < 2 ? 0 : bytes.rfind('\n', end - 2) + 1;
  return bytes.substr(lastLine, end - lastLine).find('\0') == std::string_view::npos ? end : lastLine;
}

}  // namespace

Journal ReadJournal(std::string_view bytes) {
  const auto size = WholeSizeOf(bytes);
  JournalReader reader;
  for (auto rest = bytes.substr(0, size); !rest.empty() && !reader.HasSeenEnough();) {
    const auto line = rest.substr(0, rest.find('\n'));
    reader.Take(line);
    rest.remove_prefix(line.size() + 1);
  }
  auto journal = reader.End();
  journal.WholeSize = size;
  journal.Torn = bytes.substr(size);
  return journal;
}

std::string IdentityLine(std::string_view identity) {
  return CanonicalJson({{"format", format}, {"history", identity}});
}

}  // namespace zolvane
