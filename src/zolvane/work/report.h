// What a command came to, for programs: the document that --json prints.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "custody/findings/findings.h"
#include "custody/history/checkpoint.h"
#include "custody/history/entry.h"
#include "custody/values/values.h"
#include "text/json_members.h"
#include "text/usage_error.h"

namespace zolvane {

namespace exit_status {
inline constexpr int objection = 3;  // nothing was changed
}  // namespace exit_status

namespace outcome {
inline constexpr std::string_view done = "done";  // proven, saved and recorded
inline constexpr std::string_view notProven =
    "not_proven";                                     // it ran to its end, and not all of it could be proven
inline constexpr std::string_view failed = "failed";  // it broke off
inline constexpr std::string_view refused = "refused";      // an objection, or the add-in's own refusal
inline constexpr std::string_view cancelled = "cancelled";  // by the answer to a box
}  // namespace outcome

// Of a value that somebody else changed, and that was left as found.
inline constexpr std::string_view changedVerdict = "changed";

// A value that an operation moved, or meant to, or that was only looked at.
struct ReportedValue {
  std::string Key;
  std::optional<std::string> Found{};
  std::optional<std::string> Sent{};
  std::optional<std::string> Left{};
  std::string Verdict{};
  std::string Cause{};
  std::optional<std::string> Measure{};  // of the text that was found

  bool operator==(const ReportedValue&) const = default;
};

constexpr auto MembersOf(const ReportedValue*) {
  return std::tuple{Member{"key", &ReportedValue::Key, Presence::Always},
                    Member{"found", &ReportedValue::Found},
                    Member{"sent", &ReportedValue::Sent},
                    Member{"left", &ReportedValue::Left},
                    Member{"verdict", &ReportedValue::Verdict},
                    Member{"cause", &ReportedValue::Cause},
                    Member{"measure", &ReportedValue::Measure}};
}

constexpr auto MembersOf(const Difference*) {
  return std::tuple{Member{"key", &Difference::Name, Presence::Always}, Member{"a", &Difference::A},
                    Member{"b", &Difference::B}};
}

// A box of the add-in, and what it was answered.
struct ReportedBox {
  std::string Title;
  std::string Text;
  std::string Answer;

  bool operator==(const ReportedBox&) const = default;
};

constexpr auto MembersOf(const ReportedBox*) {
  return std::tuple{Member{"title", &ReportedBox::Title, Presence::Always},
                    Member{"text", &ReportedBox::Text, Presence::Always},
                    Member{"answer", &ReportedBox::Answer, Presence::Always}};
}

// What the history keeps of the way an operation went.
struct OperationDetails {
  std::vector<ReportedBox> Boxes;
  std::vector<ReportedValue> Values;
  std::vector<ReportedValue> RoundTrip;  // what an upload would change afterwards
};

constexpr auto MembersOf(const OperationDetails*) {
  return std::tuple{Member{"boxes", &OperationDetails::Boxes}, Member{"values", &OperationDetails::Values},
                    Member{"round_trip", &OperationDetails::RoundTrip}};
}

struct Report {
  std::string Command;
  int ExitStatus = exit_status::done;
  std::string Outcome{};  // empty: the command only looks
  std::string Problem{};  // what it could not use, or not to its end
  std::vector<std::pair<std::string, std::size_t>> Counts{};
  std::vector<ReportedValue> Values{};
  std::vector<ReportedBox> Boxes{};
  std::vector<ReportedValue> RoundTrip{};  // what an upload would change afterwards
  std::vector<Objection> Objections{};
  std::vector<Finding> Findings{};
  std::optional<zolvane::Checkpoint> Checkpoint{};
  Json More = Json::object();  // members of single commands

  // The worst of all counts.
  void Worsen(int status);
};

// Members without anything to say are left out.
Json ReportJson(const Report& report);

}  // namespace zolvane
