#include "custody/history/audit.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

#include "custody/history/canonical_json.h"
#include "custody/history/history_place.h"
#include "custody/history/journal.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

class Auditor {
 public:
  Auditor(Disk& disk, const std::string& folder) : disk_{disk}, place_{PlaceOfHistory(folder)} {}

  AuditResult Run(const std::vector<Checkpoint>& against) {
    const auto content = disk_.Read(place_.Journal);
    if (content.Is != DiskContent::State::Present) {
      AddProblem(Joined(Quoted(place_.Journal), " ", content.Reason));
      return std::move(result_);
    }
    journal_ = ReadJournal(content.Bytes);
    result_.Exists = result_.IsIntact = true;
    result_.IsComplete = !journal_.Hashes.empty();  // of one that was emptied nobody knows what is missing
    result_.LastEntry = journal_.Entries.empty() ? 0 : journal_.Entries.back().Sequence;
    CheckLines();
    CheckForms(content.Bytes);
    CheckObjects();
    CheckAgainst(against);
    AddNotes();
    return std::move(result_);
  }

 private:
  void AddProblem(std::string text) { result_.Problems.push_back(std::move(text)); }

  void CheckLines() {
    for (const auto& defect : journal_.Defects) {
      result_.IsIntact = result_.IsIntact && defect.IsGap;
      result_.IsComplete = result_.IsComplete && !defect.IsGap;
      AddProblem(Joined("line ", std::to_string(defect.Line), ": ", defect.Text));
    }
  }

  // Another spelling of the same entry would have another hash; whoever wrote it was not the program.
  void CheckForms(std::string_view bytes) {
    for (std::size_t line = 1; line <= journal_.Hashes.size() && result_.IsIntact; ++line) {
      const auto text = bytes.substr(0, bytes.find('\n'));
      bytes.remove_prefix(text.size() + 1);
      if (CanonicalJson(ObjectIn(text)) != text) {
        result_.IsIntact = false;
        AddProblem(Joined("line ", std::to_string(line), ": it is not in the canonical form"));
      }
    }
  }

  void CheckObjects() {
    std::set<std::string> seen;
    for (const auto& entry : journal_.Entries) {
      for (auto& name : ObjectsOf(entry)) {
        if (seen.insert(name).second && !ReadObject(disk_, place_, name)) {
          result_.IsIntact = false;
          AddProblem(
              Joined("object ", name, " of entry ", std::to_string(entry.Sequence), " ", ReasonFor(name)));
        }
      }
    }
  }

  std::string ReasonFor(std::string_view name) {
    const auto content = disk_.Read(place_.Object(name));
    return content.Is == DiskContent::State::Present ? "does not hold what its name says" : content.Reason;
  }

  void CheckAgainst(const std::vector<Checkpoint>& against) {
    result_.IsAnchored = !against.empty();
    for (const auto& checkpoint : against) {
      if (auto reason = ReasonAgainst(checkpoint); !reason.empty()) {
        result_.IsAnchored = false;
        AddProblem(Joined("checkpoint of ", std::to_string(checkpoint.Count), " entries: ", reason));
      } else if (checkpoint.Count > 0) {
        result_.AnchoredUpTo = std::max(result_.AnchoredUpTo, checkpoint.Count + 1);
      }
    }
  }

  // The hash of a line proves the lines before it only where each follows from the one before.
  std::string ReasonAgainst(const Checkpoint& checkpoint) const {
    if (checkpoint.Identity != journal_.Identity) {
      return "it is of another history";
    }
    if (checkpoint.Count >= journal_.Hashes.size()) {
      return Joined("the history has only ", std::to_string(journal_.Hashes.size() - 1));
    }
    if (checkpoint.Hash != journal_.Hashes[static_cast<std::size_t>(checkpoint.Count)]) {
      return "the last of them is not the one it was";
    }
    return journal_.Defects.empty() || journal_.Defects.front().Line > checkpoint.Count + 1
               ? ""
               : "the entries up to there do not follow from each other";
  }

  void AddNotes() {
    if (!journal_.Torn.empty()) {
      result_.Notes.emplace_back("behind the last entry stands a line that was not written to its end");
    }
    std::set<std::uint64_t> running;
    for (const auto& entry : journal_.Entries) {
      if (entry.IsEnd()) {
        running.erase(entry.Of);
      } else {
        running.insert(entry.Sequence);
      }
    }
    for (const auto number : running) {
      result_.Notes.push_back(Joined("operation ", std::to_string(number), " was begun and has not ended"));
    }
  }

  Disk& disk_;
  HistoryPlace place_;
  Journal journal_;
  AuditResult result_;
};

}  // namespace

AuditResult Audit(Disk& disk, const std::string& folder, const std::vector<Checkpoint>& against) {
  return Auditor{disk, folder}.Run(against);
}

}  // namespace zolvane
