// Section "TipType": the kinds of tips.
#pragma once

#include <string_view>

#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view tipTypeSection = "TipType";

extern const RecordTable<TipTypeRecord> tipTable;

}  // namespace zolvane
