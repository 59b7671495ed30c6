// The script of an upload: every calibration value of the configuration file as a line "SET_CALIBRATION key
// value". Building it is apart from sending it and needs no instrument.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/configuration.h"
#include "config/record_table.h"

namespace zolvane {

// Receives the name of each group of lines before the group is built ("Stage XY", "Heights", ...).
using GroupAnnouncement = std::function<void(std::string_view group)>;

struct UploadLine {
  std::string_view Group;            // the name that was announced last
  std::string Key;                   // of the instrument
  std::optional<std::string> Value;  // empty: it cannot be computed, as with a zero axis scale
  Unit SentIn = Unit::None;
};

// The lines of the script but the last. Works on the records in force and loads the installed device again.
std::vector<UploadLine> BuildUploadLines(Configuration& configuration, const GroupAnnouncement& announce);

// The whole script, each line ended by CR LF, the last one "SET_CALIBRATION SAVE". A line without value is
// left out.
std::string BuildUploadScript(Configuration& configuration, const GroupAnnouncement& announce);

// The section that corrects the volumes of a head with tips of this volume.
std::string VolumeCorrectionSection(std::string_view headName, std::string_view tipVolume);

// Of an item of a volume-correction section, which holds volume, factor and the instrument's key.
inline constexpr std::size_t correctionFactorPiece = 1;
inline constexpr std::size_t correctionKeyPiece = 2;

struct VolumeCorrection {
  double Factor = 0.0;              // 0 if its piece does not begin with a number
  std::string Key;                  // without quotes
  std::optional<std::string> Sent;  // hundred thousandths; nullopt if there is no such number, and so no line
};

// What is sent of such an item. nullopt if it is too short or has no key: then it has no line.
std::optional<VolumeCorrection> CorrectionIn(std::span<const std::string> pieces);

// The lines of one volume-correction section. Its items are numbered from 1 and end at the first gap;
// empty if there are none.
std::string BuildVolumeCorrection(Configuration& configuration, std::string_view section);

}  // namespace zolvane
