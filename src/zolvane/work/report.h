// What a command came to, for programs: the document that --json prints.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/findings/findings.h"
#include "custody/history/checkpoint.h"
#include "custody/history/entry.h"
#include "text/usage_error.h"

namespace zolvane {

using Json = nlohmann::ordered_json;

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

// A value that an operation moved, or meant to.
struct ReportedValue {
  std::string Key;
  std::optional<std::string> Found{};
  std::optional<std::string> Sent{};
  std::optional<std::string> Left{};
  std::string Verdict{};
  std::string Cause{};
};

struct Report {
  std::string Command;
  int ExitStatus = exit_status::done;
  std::string Outcome{};  // empty: the command only looks
  std::vector<std::pair<std::string, std::size_t>> Counts{};
  std::vector<ReportedValue> Values{};
  std::vector<Objection> Objections{};
  std::vector<Finding> Findings{};
  std::optional<zolvane::Checkpoint> Checkpoint{};
  Json More = Json::object();  // members of single commands

  // The worst of all counts.
  void Worsen(int status);
};

// Members without anything to say are left out.
Json ReportJson(const Report& report);

Json ValueJson(const ReportedValue& value);

}  // namespace zolvane
