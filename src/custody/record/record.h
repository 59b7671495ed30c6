// An adjustment record: one HTML file that a person can look at and print, and that the program can restore
// from. It holds the configuration byte for byte, what the instrument answered, and who asked for it, when and
// why; the page is drawn from them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/findings/findings.h"
#include "custody/values/values.h"

namespace zolvane {

// What there was at one moment.
struct RecordedState {
  std::string Configuration;         // the bytes of the file
  std::optional<Values> Instrument;  // its answers, by key; empty: no instrument was asked

  bool operator==(const RecordedState&) const = default;
};

// What an operation found.
struct FoundState {
  std::optional<std::string> Configuration;  // empty: there was none
  std::optional<Values> Instrument;

  bool operator==(const FoundState&) const = default;
};

// The last operation that changed something, and the state that it found.
struct RecordedOperation {
  std::uint64_t Number = 0;  // in the history
  std::string Action;
  std::string Outcome;
  std::string Person;
  std::string Reason;
  std::string Time;  // UTC, as in the history: "2026-03-14T09:26:53.589Z"
  FoundState Found;

  bool operator==(const RecordedOperation&) const = default;
};

struct RecordContent {
  std::string Person;
  std::string Reason;  // empty: none was given
  std::string Machine;
  std::string Program;
  std::string Version;
  std::string Time;         // UTC, as in the history: "2026-03-14T09:26:53.589Z"
  std::int64_t Offset = 0;  // of the local time, in minutes
  std::string File;         // where the configuration was
  std::string Link;         // empty: no instrument was asked
  std::string Instrument;   // what it said of itself
  RecordedState Left;       // what the record is of
  std::optional<RecordedOperation> Last;
  std::vector<Finding> Findings;        // of the configuration
  std::vector<std::string> Checkpoint;  // the three lines: identity, number of entries, hash of the last
};

// The bytes of the file. Whatever the texts hold, the page stays inert.
std::string WriteRecord(const RecordContent& content);

struct ReadRecordResult {
  std::optional<RecordContent> Content;
  std::string Refusal;  // why there is none, as the end of a sentence about the file ("is cut off")
};

// Refuses every file that is not what WriteRecord returned, byte for byte.
ReadRecordResult ReadRecord(std::string_view bytes);

// The file is one, or was one before it was damaged: it begins or ends like every record, or has its data
// element.
bool LooksLikeRecord(std::string_view bytes);

}  // namespace zolvane
