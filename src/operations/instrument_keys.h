// The instrument keys that upload and download really share. Keys that differ between the directions stand
// with the direction that uses them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/records.h"

namespace zolvane {

// A stage position: its name in the file, and the instrument's name in front of "_X" and "_Y".
struct PositionKeys {
  std::string_view PositionName;
  std::string_view InstrumentName;
};

inline constexpr auto stagePositions = std::to_array<PositionKeys>({
    {"STAGE1", "STAGE1"},
    {"STAGE2", "STAGE2"},
    {"STAGE3", "STAGE3"},
    {"STAGE4", "STAGE4"},
    {"STAGE5", "STAGE5"},
    {"STAGE6", "STAGE6"},
    {"TIPCHUTE", "CHUTESTAGE"},
    {"NEST8", "NEST8_STAGE"},
    {"NEST12", "NEST12_STAGE"},
    {"RESERVOIR", "RESERVOIR"},
    {"TIPWASH", "WASH"},
    {"TIPRACKSTAGE1", "RACK_STAGE1"},
    {"TIPRACKSTAGE2", "RACK_STAGE2"},
});

inline constexpr auto serialDilutePositions = std::to_array<PositionKeys>({
    {"STAGE1", "WELL_A1_SD"},
    {"TIPCHUTE", "CHUTE_SD"},
    {"NEST8", "NEST8_SD"},
    {"NEST12", "NEST12_SD"},
});

// The keys of a serial-dilute head's tip eject and aspirate origin: channel count and tip volume. Returns
// nullopt for a volume that the instrument does not know. 12.5 microlitres are written "12".
struct TipEjectKeys {
  std::string TipEject;
  std::string AspirateOrigin;
};
std::optional<TipEjectKeys> TipEjectKeysOf(const HeadTypeRecord& head);

}  // namespace zolvane
