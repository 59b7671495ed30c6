// The script of an upload: every calibration value of the configuration file as a line "SET_CALIBRATION key
// value". Building it is apart from sending it and needs no instrument.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "config/configuration.h"

namespace zolvane {

// Receives the name of each group of lines before the group is built ("Stage XY", "Heights", ...).
using GroupAnnouncement = std::function<void(std::string_view group)>;

// The whole script, each line ended by CR LF, the last one "SET_CALIBRATION SAVE". Works on the
// records in force and loads the installed device again. A value that cannot be computed, as with a
// zero axis scale, has no line.
std::string BuildUploadScript(Configuration& configuration, const GroupAnnouncement& announce);

// The section that corrects the volumes of a head with tips of this volume.
std::string VolumeCorrectionSection(std::string_view headName, std::string_view tipVolume);

// The lines of one volume-correction section. Its items are numbered from 1 and end at the first
// gap; empty if there are none.
std::string BuildVolumeCorrection(const Configuration& configuration, std::string_view section);

}  // namespace zolvane
