// What happened while a command of the user was carried out, and what it comes to.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/command_tally.h"
#include "text/usage_error.h"

namespace zolvane {

struct ShownMessage {
  std::string Title;
  std::string Text;
  std::int32_t Answer = 0;  // the button
};

struct Happenings {
  CommandTally Commands;
  std::size_t ValuesWritten = 0;
  std::size_t ValuesChanged = 0;  // of those written; the others were there already
  std::size_t WritesFailed = 0;
  std::size_t ReadsFailed = 0;     // of settings
  std::size_t CharactersLost = 0;  // written as "?", because a file's encoding lacks them
  std::vector<ShownMessage> Messages;
  std::optional<std::string> ChosenFile;
  bool WasStopped = false;    // the add-in read a raised stop flag
  bool WasCancelled = false;  // by the answer to a box or a file dialogue
  bool WasRefused = false;    // the add-in showed its stop sign
  bool WasDisabled = false;   // the control did not react
  bool WasMisused = false;    // an entry, an answer or a file that does not fit
};

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

inline bool HasFailed(const Happenings& happened) {
  const auto& commands = happened.Commands;
  return commands.NotAnswered > 0 || commands.Undelivered > 0 || commands.IsFailedByReplies() ||
         happened.WritesFailed > 0 || happened.ReadsFailed > 0;
}

// The weightiest thing that happened.
inline Outcome OutcomeOf(const Happenings& happened) {
  return happened.WasMisused     ? Outcome::Unusable
         : happened.WasDisabled  ? Outcome::Disabled
         : HasFailed(happened)   ? Outcome::Failed
         : happened.WasRefused   ? Outcome::Refused
         : happened.WasCancelled ? Outcome::Cancelled
         : happened.WasStopped   ? Outcome::Stopped
                                 : Outcome::Done;
}

inline int ExitStatusOf(const Happenings& happened) {
  return RowOf(OutcomeOf(happened)).ExitStatus;
}

}  // namespace zolvane
