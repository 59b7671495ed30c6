// An entry of the history, and its line in the journal. docs/format-history.md describes both.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "text/json_members.h"

namespace zolvane {

// What spoke against an operation and was let pass.
struct Objection {
  std::string Code;
  std::string Expected;
  std::string Actual;

  friend bool operator==(const Objection&, const Objection&) = default;
};

constexpr auto MembersOf(const Objection*) {
  return std::tuple{Member{"code", &Objection::Code, Presence::Always},
                    Member{"expected", &Objection::Expected, Presence::Always},
                    Member{"actual", &Objection::Actual, Presence::Always}};
}

// A file that an operation may change. `Before` and `After` are names of objects: its bytes. Empty: it was
// not there.
struct FileChange {
  std::string Path;  // relative to the folder of the history if it lies in there
  std::string Before;
  std::string After;

  friend bool operator==(const FileChange&, const FileChange&) = default;
};

// A text that is empty stands for one that there is none of. An operation has two entries: one when it
// begins, one when it has ended. Who begins or ends an operation fills in what stands above the line.
struct Entry {
  std::string Action;   // "upload"
  std::string Outcome;  // "done"; of an end only
  std::string Person;   // by default the account
  std::string Reason;
  std::string Program;
  std::string Version;
  std::string Link;
  std::string Instrument;  // its answer to STATUS_STAGE
  std::string File;        // the configuration, relative to the folder of the history if it lies in there
  std::string FileBefore;  // names of objects: its bytes; empty if it was not there
  std::string FileAfter;
  std::vector<FileChange> OtherFiles;
  std::string Found;  // names of objects: values
  std::string Intended;
  std::string Left;
  std::string Details;  // name of an object: verdicts, and what the add-in said and was answered
  std::vector<Objection> Objections;
  std::uint64_t About = 0;  // the number of the operation that is taken back or resumed; 0: none
  std::map<std::string, std::int64_t> Counts;

  // ---- The history fills in the rest. ----
  std::uint64_t Sequence = 0;  // the number of its line
  std::uint64_t Of = 0;        // of an end: the sequence of its beginning; else 0
  std::string Time;            // "2026-03-14T09:26:53.589Z"
  std::int64_t Offset = 0;     // of the local time, in minutes
  std::string Machine;
  std::string Previous;  // SHA-256 of the line before

  bool IsEnd() const { return Of != 0; }

  friend bool operator==(const Entry&, const Entry&) = default;
};

// The entry as its line, without the line end.
std::string LineOf(const Entry& entry);

// The object of JSON that makes up the line; another value if there is none.
Json ObjectIn(std::string_view line);

// Nothing unless the line is an entry: an object of JSON with all that an entry must have, and each of it of
// its kind. Members that are unknown here are passed over.
std::optional<Entry> EntryIn(std::string_view line);

// The names of all objects that the entry speaks of.
std::vector<std::string> ObjectsOf(const Entry& entry);

}  // namespace zolvane
