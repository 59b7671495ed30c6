// What can go wrong with an instrument, on request: for tests, and for people who want
// to see what the page does.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

// What the instrument is about to do for a line. A fault changes it.
struct LineEffect {
  std::string_view KeyBefore{};  // what was set last; empty if nothing was
  std::string Key{};             // of SET_CALIBRATION KEY VALUE; of any other line empty, like Value
  std::string Value{};
  bool IsSaving = false;     // SET_CALIBRATION SAVE
  bool IsRefused = false;    // neither stored nor saved, and says so
  bool IsOmitted = false;    // neither stored nor saved, and says "OK"
  bool IsRestarted = false;  // before all this
};

// What it sends back for a line. A fault changes it.
struct LineReply {
  std::string Command{};
  std::string ReplyBefore{};         // to the command before; empty if there was none
  std::vector<std::string> Lines{};  // without their ends
  bool IsLate = false;
  bool IsClosing = false;  // the connection is closed instead
  bool IsSplit = false;
  bool LacksEnd = false;
};

struct FaultRow {
  std::string_view Name;
  std::string_view Description;
  void (*Affect)(LineEffect& effect) = nullptr;
  void (*Disturb)(LineReply& reply) = nullptr;  // not called for an instrument that keeps silent
};
std::span<const FaultRow> FaultRows();

// Which faults meet which line. Several may meet one.
class FaultPlan {
 public:
  FaultPlan() = default;
  FaultPlan(std::initializer_list<std::string_view> texts);

  // "KIND@N", the N-th line since the start; or "KIND@KEY", each SET_CALIBRATION of KEY, which may be SAVE.
  // Throws UsageError for any other text.
  void Add(std::string_view text);

  bool IsEmpty() const { return atLine_.empty() && atKey_.empty(); }

  // In the order of FaultRows, however they were added: each changes what those before it have left.
  std::vector<const FaultRow*> FaultsOf(std::size_t line, std::string_view key) const;

 private:
  std::multimap<std::size_t, const FaultRow*> atLine_;
  std::multimap<std::string, const FaultRow*, std::less<>> atKey_;
};

}  // namespace zolvane
