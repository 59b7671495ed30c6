#include "bench/simulator/instrument.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "bench/printable.h"
#include "bench/joined.h"
#include "bench/json_file.h"
#include "bench/json_text.h"
#include "bench/paths.h"
#include "bench/settings/exchanged_file.h"
#include "bench/settings/text_encoding.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

constexpr std::string_view syntaxError = "SYNTAX_ERROR";
constexpr std::string_view setPrefix = "SET_CALIBRATION ";
constexpr std::string_view getPrefix = "GET_CALIBRATION ";

std::map<std::string, std::string, std::less<>> ReadState(const std::string& file) {
  std::map<std::string, std::string, std::less<>> memory;
  const auto document = ReadJsonFile(file);
  if (!document.is_object()) {
    throw UsageError{Printable(file) + ": an instrument's memory is a JSON object of keys and their values"};
  }
  for (const auto& [key, value] : document.items()) {
    if (!value.is_string()) {
      throw UsageError{Joined(Printable(file), ": the value of ", Quoted(key), " is not a text")};
    }
    memory.emplace(key, value.get<std::string>());
  }
  return memory;
}

// Whoever opens the file finds the old memory or the new one, never a part.
bool WriteWhole(const std::string& file, const std::string& text) {
  constexpr int mostAttempts = 10;  // against another program that writes it at the same time
  const auto state = OpenExchangedFile(file, {.KeepsCopy = false});
  auto outcome = WriteOutcome::Changed;
  for (int attempt = 0; attempt < mostAttempts && outcome == WriteOutcome::Changed; ++attempt) {
    const auto before = state->Read();
    if (before.Is == FileContent::State::Unreadable) {
      return false;
    }
    outcome =
        before.Bytes == text
            ? WriteOutcome::Done
            : state->Write(before.Bytes, {.Offset = 0, .Removed = before.Bytes.size(), .Inserted = text});
  }
  return outcome == WriteOutcome::Done;
}

// JSON holds text alone; bytes that are none were sent by somebody who speaks Windows-1252.
std::string TextOfBytes(const std::string& bytes) {
  return IsUtf8(bytes) ? bytes : Utf8FromWindows1252(bytes);
}

}  // namespace

SimulatedInstrument::SimulatedInstrument(Setup setup) : setup_{std::move(setup)} {
  if (setup_.StateFile.empty()) {
    return;
  }
  // Before it is read: opening a pipe could wait.
  if (const auto reason = ReasonFileIsInaccessible(setup_.StateFile, FileUse::ReadAndWrite)) {
    throw UsageError{Joined(Quoted(setup_.StateFile), " ", *reason)};
  }
  if (HasStateFile()) {
    memory_ = ReadState(setup_.StateFile);
  }
}

void SimulatedInstrument::SwitchOn() const {
  if (!HasStateFile() && !KeepState()) {
    throw UsageError{Joined(Quoted(setup_.StateFile), ": the instrument's memory cannot be kept there")};
  }
}

bool SimulatedInstrument::HasStateFile() const {
  std::error_code ignored;
  return std::filesystem::exists(PathOf(setup_.StateFile), ignored);
}

std::optional<std::string> SimulatedInstrument::Answer(std::string_view command) {
  if (setup_.FailAfter && answers_ >= *setup_.FailAfter) {
    return std::nullopt;
  }
  ++answers_;
  return Reply(command);
}

bool SimulatedInstrument::KeepState() const {
  if (setup_.StateFile.empty()) {
    return true;
  }
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  for (const auto& [key, value] : memory_) {
    document[TextOfBytes(key)] = TextOfBytes(value);
  }
  return WriteWhole(setup_.StateFile, JsonText(document, true) + "\n");
}

std::optional<std::string> SimulatedInstrument::Reply(std::string_view command) {
  if (command == "SET_CALIBRATION SAVE") {
    // Nobody looks at the text of this reply, so an instrument that could not keep its memory gives none.
    return KeepState() ? std::optional<std::string>{"OK"} : std::nullopt;
  }
  if (command.starts_with(setPrefix)) {
    return Set(command.substr(setPrefix.size()));
  }
  if (command.starts_with(getPrefix)) {
    return Get(command.substr(getPrefix.size()));
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
                                     : std::string{syntaxError};
}

// Everything behind the key is the value, blanks included.
std::string SimulatedInstrument::Set(std::string_view keyAndValue) {
  const auto blank = keyAndValue.find(' ');
  if (blank == 0 || blank == std::string_view::npos || blank + 1 == keyAndValue.size()) {
    return std::string{syntaxError};
  }
  memory_.insert_or_assign(std::string{keyAndValue.substr(0, blank)},
                           std::string{keyAndValue.substr(blank + 1)});
  return "OK";
}

std::string SimulatedInstrument::Get(std::string_view key) const {
  const auto entry = memory_.find(key);
  return entry == memory_.end() ? std::string{syntaxError} : entry->first + "=" + entry->second;
}

}  // namespace zolvane
