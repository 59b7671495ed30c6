// What happened while a command of the user was carried out, and what it comes to.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/usage_error.h"

namespace zolvane {

struct ShownMessage {
  std::string Title;
  std::string Text;
  std::int32_t Answer = 0;  // the button
};

struct Happenings {
  std::size_t CommandsSent = 0;
  std::size_t CommandsFailed = 0;
  std::string FirstFailedCommand;
  std::size_t UnknownKeys = 0;  // replies with SYNTAX_ERROR
  std::size_t ValuesWritten = 0;
  std::size_t WritesFailed = 0;
  std::vector<ShownMessage> Messages;
  std::optional<std::string> ChosenFile;
  bool WasStopped = false;    // the add-in read a raised stop flag
  bool WasCancelled = false;  // by the answer to a box or a file dialogue
  bool WasRefused = false;    // the add-in showed its stop sign
  bool WasDisabled = false;   // the control did not react
  bool WasMisused = false;    // an entry, an answer or a file that does not fit
};

// The weightiest thing that happened, in one word for programs.
inline std::string_view OutcomeOf(const Happenings& happened) {
  return happened.WasMisused                                        ? "unusable"
         : happened.WasDisabled                                     ? "disabled"
         : happened.CommandsFailed > 0 || happened.WritesFailed > 0 ? "failed"
         : happened.WasRefused                                      ? "refused"
         : happened.WasCancelled                                    ? "cancelled"
         : happened.WasStopped                                      ? "stopped"
                                                                    : "done";
}

inline int ExitStatusOf(const Happenings& happened) {
  const auto outcome = OutcomeOf(happened);
  return outcome == "unusable" ? exit_status::unusable
         : outcome == "done"   ? exit_status::done
                               : exit_status::notDone;
}

}  // namespace zolvane
