// The faces of a side: what a file holds, and what would go over the wire.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/configuration.h"
#include "custody/values/values.h"
#include "host/instrument_link.h"
#include "instrument/links/bench_link.h"
#include "operations/upload_script.h"

namespace zolvane {

// ---- The file's face ----

// Every value that counts, under "[Section] Key". A line of a record is one value for each piece:
// "[HeadType] Item3 field 4 (tip volume)". Names are compared without regard to case.
Values FileFace(std::string_view file);

// ---- The wire's face ----

// The lines that an upload would send behind the loading of the page, without SAVE.
struct WireFace {
  Values Lines{};
  std::vector<UploadLine> Script{};  // the same with group and unit, and with the lines that fall out
  CurrentRecords InForce{};          // that they were made with
  std::string Problem{};             // why there are none, as a sentence; empty if there are
};

WireFace WireFaceOfFile(const std::string& configuration);

// After the add-in has imported the backup into a copy of the folder.
WireFace WireFaceOfBackup(const std::string& configuration, const std::string& backup);

// Hands the command on. Returns the reply, or nothing; `delivery` tells what became of it.
std::optional<std::string> HandOn(BenchLink& link, std::string command, Delivery& delivery);

// What the instrument answers to GET_CALIBRATION for the key. A key that it does not know has no text; a reply
// that names another key is no answer.
Value AskCalibration(InstrumentLink& link, const std::string& key);

// The same for these keys, each asked once. After a question without answer no more is asked: the rest is not
// answered.
Values WireFaceOfInstrument(InstrumentLink& link, std::span<const std::string> keys);

// The keys of these values, in their order.
std::vector<std::string> NamesOf(const Values& values);

}  // namespace zolvane
