#include "instrument/simulator/instrument.h"

#include <algorithm>
#include <utility>

#include "host/instrument_link.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {}  // namespace

SimulatedInstrument::SimulatedInstrument(Setup setup)
    : setup_{std::move(setup)}, memory_{std::make_unique<InstrumentMemory>(setup_.StateFile)} {}

void SimulatedInstrument::SwitchOn() const {
  if (!memory_->CreateFile()) {
    throw UsageError{Joined(Quoted(setup_.StateFile), ": the instrument's memory cannot be kept there")};
  }
}

std::optional<std::string> SimulatedInstrument::Answer(std::string_view command) {
  return KeepsSilent() ? std::nullopt : Reply(command);
}

std::optional<std::string> SimulatedInstrument::Claim(std::string_view reply) {
  return KeepsSilent() ? std::nullopt : std::optional<std::string>{reply};
}

bool SimulatedInstrument::KeepsSilent() {
  if (setup_.FailAfter && answers_ >= *setup_.FailAfter) {
    return true;
  }
  ++answers_;
  return false;
}

std::optional<std::string> SimulatedInstrument::Reply(std::string_view command) {
  if (command == saveLine) {
    // The text of this reply is never checked, so an instrument that could not save its memory sends none.
    return memory_->Save() ? std::optional<std::string>{"OK"} : std::nullopt;
  }
  if (command.starts_with(settingStart)) {
    return Set(command);
  }
  if (command.starts_with(questionStart)) {
    return Get(command.substr(questionStart.size()));
  }
  if (command == "RFID ON" || command == "RFID OFF") {
    return "OK";
  }
  if (command == "RFID READ_PERSISTENT") {
    return "RFID,PERSISTENT," + setup_.Tag + ",READ,OK";
  }
  return command == "STATUS_STAGE"   ? setup_.Stage
         : command == "STATUS_MECH"  ? setup_.Mechanics
         : command == "STATUS PUMPS" ? setup_.Pumps
                                     : std::string{syntaxErrorReply};
}

std::string SimulatedInstrument::Set(std::string_view command) {
  const auto setting = SettingIn(command);
  if (!setting) {
    return std::string{syntaxErrorReply};
  }
  Store(setting->Key, setting->Value);
  return "OK";
}

// Everything after the key is the value, blanks included. A value with a line break
// would not fit into one line.
std::optional<SimulatedInstrument::Setting> SimulatedInstrument::SettingIn(std::string_view command) {
  const auto keyAndValue = command.substr(std::min(command.size(), settingStart.size()));
  const auto blank = keyAndValue.find(' ');
  if (!command.starts_with(settingStart) || blank == 0 || blank == std::string_view::npos ||
      blank + 1 == keyAndValue.size() || keyAndValue.find_first_of("\r\n") != std::string_view::npos) {
    return std::nullopt;
  }
  return Setting{.Key = keyAndValue.substr(0, blank), .Value = keyAndValue.substr(blank + 1)};
}

std::string SimulatedInstrument::Get(std::string_view key) const {
  const auto* const value = memory_->Find(key);
  return value == nullptr ? std::string{syntaxErrorReply} : Joined(key, "=", *value);
}

}  // namespace zolvane
