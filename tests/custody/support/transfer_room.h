// Uploads of known lines through the link that proves, against the simulated instrument in the process.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/transfer/proving_link.h"
#include "custody/values/sides.h"
#include "instrument/links/simulated_link.h"
#include "instrument/simulator/faults.h"

namespace zolvane {

inline const InterruptFlag noInterrupt;

using Settings = std::vector<std::pair<std::string, std::string>>;

inline Values ValuesOf(const Settings& settings) {
  Values values;
  for (const auto& [name, text] : settings) {
    values.Add({.Name = name, .Text = text});
  }
  return values;
}

// An instrument that holds these values, and has them kept.
inline std::shared_ptr<BenchLink> InstrumentWith(const Settings& held, FaultPlan faults = {}) {
  SimulatedInstrument instrument{{}};
  for (const auto& [key, text] : held) {
    instrument.Store(key, text);
  }
  instrument.Answer("SET_CALIBRATION SAVE");
  return std::make_shared<SimulatedLink>(std::move(instrument), std::move(faults), noInterrupt);
}

// The reply, or nothing.
inline std::optional<std::string> SendLine(BenchLink& link, std::string line) {
  std::string reply;
  return MetOnlyIf(link.SendCommand(line, reply, 0)) ? std::optional{reply} : std::nullopt;
}

// The instrument's value, or "unknown".
inline std::string HeldBy(BenchLink& link, const std::string& key) {
  const auto reply = SendLine(link, "GET_CALIBRATION " + key);
  return !reply || *reply == "SYNTAX_ERROR" ? "unknown" : reply->substr(key.size() + 1);
}

// As the add-in sends a script: the first line without answer ends it. True if SAVE was answered.
inline bool Upload(BenchLink& link, const Settings& script, std::size_t most = static_cast<std::size_t>(-1)) {
  for (const auto& [key, text] : script) {
    if (most-- == 0 || !SendLine(link, "SET_CALIBRATION " + key + " " + text)) {
      return false;
    }
  }
  return most > 0 && SendLine(link, "SET_CALIBRATION SAVE").has_value();
}

}  // namespace zolvane
