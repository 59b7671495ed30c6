// The host object through which every instrument command travels.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/status.h"

namespace zolvane {

// Stands in the reply to a command whose key the instrument does not know.
inline constexpr std::string_view syntaxErrorReply = "SYNTAX_ERROR";

// ---- The lines that set a value (key, blank, text), ask for one (key), and keep all

inline constexpr std::string_view settingStart = "SET_CALIBRATION ";
inline constexpr std::string_view questionStart = "GET_CALIBRATION ";
inline constexpr std::string_view saveLine = "SET_CALIBRATION SAVE";

class InstrumentLink {
 public:
  virtual ~InstrumentLink() = default;

  // The stop flag: cleared by the add-in before each command, raised by the link when the user asks to stop.
  virtual std::optional<bool> Stop() = 0;
  virtual Status SetStop(bool stop) = 0;

  // The hold flag: true from the add-in's first command until the page detaches.
  virtual Status SetHold(bool hold) = 0;

  // Sends one command line (no terminator) and waits for its reply. True when the instrument answered; false
  // when it did not, with `reply` as the link left it. Empty if the call itself failed. `number` is always 0.
  virtual std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) = 0;
};

}  // namespace zolvane
