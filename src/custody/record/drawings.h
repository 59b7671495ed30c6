// The drawings of heights and of volume corrections in a record.
#pragma once

#include <string>
#include <vector>

#include "custody/record/record.h"
#include "custody/record/value_rows.h"

namespace zolvane {

// The values of the Z axis as bars that hang from zero.
std::string HeightDrawing(const std::vector<ValueRow>& rows);

// A curve for each volume-correction section, as left, and as found where it was another.
std::string VolumeCurves(const RecordContent& content);

}  // namespace zolvane
