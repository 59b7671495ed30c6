// What the user names as a side: a file, the instrument, or an operation of the history.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/history/history.h"
#include "custody/record/record.h"
#include "custody/values/sides.h"
#include "zolvane/work/workplace.h"

namespace zolvane {

// The side that is behind the link.
inline constexpr std::string_view instrumentSide = "instrument";

struct Side {
  std::string Name;                            // as the user wrote it
  bool IsInstrument = false;                   // the one behind the link
  std::optional<std::string> Configuration{};  // the bytes of its file's part
  bool IsBackup = false;                       // these bytes are a backup's
  bool IsKept = false;                         // in a record or by the history
  std::optional<Values> Answers{};             // what the instrument answered, where that was kept
};

// Throws UsageError if there is no such folder.
void DemandFolder(Workplace& work, const std::string& folder);

// Throws UsageError if there is no such side.
Side SideNamed(Workplace& work, const std::string& name);

// The two faces. Throw UsageError if the side has none. Of the instrument: what it answers for `keys`.
Values FileFaceOf(const Side& side);
Values WireFaceOf(Workplace& work, const Side& side, const std::vector<std::string>& keys);

// The operation of that number, or the last one of `@last`. Throws UsageError if there is none.
Operation OperationNamed(const History& history, const std::string& number);

// What the history kept under that name; nothing if there was nothing to keep. Throw UsageError if it is lost.
std::optional<std::string> KeptObject(History& history, const std::string& name);
std::optional<Values> KeptValues(History& history, const std::string& name);

// What the record of that name holds. Throws UsageError if it is damaged.
RecordContent RecordIn(const std::string& bytes, const std::string& name);

// Opens the history, for a command that writes nothing. Throws UsageError if it cannot be read.
History OpenHistory(Workplace& work);

// The same, and says once what is damaged: the entries end there.
History ReadHistory(Workplace& work);

}  // namespace zolvane
