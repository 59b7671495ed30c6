// What a command of the user comes to.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "bench/host/action_tally.h"
#include "text/usage_error.h"

namespace zolvane {

// From the lightest to the weightiest.
enum class Outcome : std::uint8_t { Done, Stopped, Cancelled, Refused, Failed, Disabled, Unusable };

struct OutcomeRow {
  std::string_view Name;  // for people and programs
  int ExitStatus;
};

// By outcome.
inline constexpr std::array<OutcomeRow, 7> outcomeRows{{
    {"done", exit_status::done},
    {"stopped", exit_status::notDone},
    {"cancelled", exit_status::notDone},
    {"refused", exit_status::notDone},
    {"failed", exit_status::notDone},
    {"disabled", exit_status::notDone},
    {"unusable", exit_status::unusable},
}};

inline const OutcomeRow& RowOf(Outcome outcome) {
  return outcomeRows[static_cast<std::size_t>(outcome)];
}

inline bool HasFailed(const ActionTally& tally) {
  const auto& commands = tally.Commands;
  return commands.NotAnswered > 0 || commands.Undelivered > 0 || commands.IsFailedByReplies() ||
         tally.WritesFailed > 0 || tally.ReadsFailed > 0;
}

// The weightiest of what happened.
inline Outcome OutcomeOf(const ActionTally& tally) {
  return tally.WasMisused     ? Outcome::Unusable
         : tally.WasDisabled  ? Outcome::Disabled
         : HasFailed(tally)   ? Outcome::Failed
         : tally.WasRefused   ? Outcome::Refused
         : tally.WasCancelled ? Outcome::Cancelled
         : tally.WasStopped   ? Outcome::Stopped
                              : Outcome::Done;
}

inline int ExitStatusOf(const ActionTally& tally) {
  return RowOf(OutcomeOf(tally)).ExitStatus;
}

}  // namespace zolvane
