// The instrument keys that upload and download really share. Keys that differ between the directions stand
// with the direction that uses them.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "config/records.h"

namespace zolvane {

struct PositionKeys {
  std::string_view PositionName;  // in the file
  std::string_view X;
  std::string_view Y;
};

inline constexpr auto stagePositions = std::to_array<PositionKeys>({
    {"STAGE1", "STAGE1_X", "STAGE1_Y"},
    {"STAGE2", "STAGE2_X", "STAGE2_Y"},
    {"STAGE3", "STAGE3_X", "STAGE3_Y"},
    {"STAGE4", "STAGE4_X", "STAGE4_Y"},
    {"STAGE5", "STAGE5_X", "STAGE5_Y"},
    {"STAGE6", "STAGE6_X", "STAGE6_Y"},
    {"TIPCHUTE", "CHUTESTAGE_X", "CHUTESTAGE_Y"},
    {"NEST8", "NEST8_STAGE_X", "NEST8_STAGE_Y"},
    {"NEST12", "NEST12_STAGE_X", "NEST12_STAGE_Y"},
    {"RESERVOIR", "RESERVOIR_X", "RESERVOIR_Y"},
    {"TIPWASH", "WASH_X", "WASH_Y"},
    {"TIPRACKSTAGE1", "RACK_STAGE1_X", "RACK_STAGE1_Y"},
    {"TIPRACKSTAGE2", "RACK_STAGE2_X", "RACK_STAGE2_Y"},
});

inline constexpr auto serialDilutePositions = std::to_array<PositionKeys>({
    {"STAGE1", "WELL_A1_SD_X", "WELL_A1_SD_Y"},
    {"TIPCHUTE", "CHUTE_SD_X", "CHUTE_SD_Y"},
    {"NEST8", "NEST8_SD_X", "NEST8_SD_Y"},
    {"NEST12", "NEST12_SD_X", "NEST12_SD_Y"},
});

// The keys of a serial-dilute head's tip eject and aspirate origin, such as TipEject_8Ch_300_S. They are made
// of channel count and tip volume, as the file may hold any channel count. Returns nullopt for a volume that
// the instrument does not know. 12.5 microlitres are written "12".
struct TipEjectKeys {
  std::string TipEject;
  std::string AspirateOrigin;
};
std::optional<TipEjectKeys> TipEjectKeysOf(const HeadTypeRecord& head);

}  // namespace zolvane
