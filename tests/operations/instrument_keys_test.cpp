#include "operations/instrument_keys.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace zolvane {
namespace {

HeadTypeRecord HeadOf(std::int16_t channels, double volume) {
  HeadTypeRecord head;
  head.Channels = channels;
  head.TipVolume = volume;
  return head;
}

TEST(TipEjectKeys, HoldTheChannelCountAndTheVolume) {
  struct Row {
    std::int16_t Channels;
    double Volume;
    std::string_view TipEject;
    std::string_view AspirateOrigin;
  };
  const std::vector<Row> rows{
      {1, 12.5, "TipEject_1Ch_12_S", "AspirateOrigin_1Ch_12_S"},
      {1, 30, "TipEject_1Ch_30_S", "AspirateOrigin_1Ch_30_S"},
      {1, 125, "TipEject_1Ch_125_S", "AspirateOrigin_1Ch_125_S"},
      {1, 300, "TipEject_1Ch_300_S", "AspirateOrigin_1Ch_300_S"},
      {1, 1250, "TipEject_1Ch_1250_S", "AspirateOrigin_1Ch_1250_S"},
      {8, 12.5, "TipEject_8Ch_12_S", "AspirateOrigin_8Ch_12_S"},
      {8, 30, "TipEject_8Ch_30_S", "AspirateOrigin_8Ch_30_S"},
      {8, 125, "TipEject_8Ch_125_S", "AspirateOrigin_8Ch_125_S"},
      {8, 300, "TipEject_8Ch_300_S", "AspirateOrigin_8Ch_300_S"},
      {8, 1250, "TipEject_8Ch_1250_S", "AspirateOrigin_8Ch_1250_S"},
      {12, 12.5, "TipEject_12Ch_12_S", "AspirateOrigin_12Ch_12_S"},
      {12, 30, "TipEject_12Ch_30_S", "AspirateOrigin_12Ch_30_S"},
      {12, 125, "TipEject_12Ch_125_S", "AspirateOrigin_12Ch_125_S"},
      {12, 300, "TipEject_12Ch_300_S", "AspirateOrigin_12Ch_300_S"},
      {12, 1250, "TipEject_12Ch_1250_S", "AspirateOrigin_12Ch_1250_S"},
  };
  for (const auto& row : rows) {
    const auto keys = TipEjectKeysOf(HeadOf(row.Channels, row.Volume));
    ASSERT_TRUE(keys) << row.TipEject;
    EXPECT_EQ(keys->TipEject, row.TipEject);
    EXPECT_EQ(keys->AspirateOrigin, row.AspirateOrigin);
  }
}

TEST(TipEjectKeys, WriteAnyChannelCountAsAPlainNumber) {
  EXPECT_EQ(TipEjectKeysOf(HeadOf(1, 30))->TipEject, "TipEject_1Ch_30_S");
  EXPECT_EQ(TipEjectKeysOf(HeadOf(384, 30))->AspirateOrigin, "AspirateOrigin_384Ch_30_S");
  EXPECT_EQ(TipEjectKeysOf(HeadOf(0, 30))->TipEject, "TipEject_0Ch_30_S");
  EXPECT_EQ(TipEjectKeysOf(HeadOf(-1, 30))->TipEject, "TipEject_-1Ch_30_S");
}

TEST(TipEjectKeys, DoNotExistForAnyOtherVolume) {
  for (const double volume : {0.0, 12.0, 12.500001, 29.999, 31.0, 200.0, 1000.0, 1251.0, -30.0}) {
    EXPECT_FALSE(TipEjectKeysOf(HeadOf(8, volume))) << volume;
  }
}

using KeyRows = std::vector<std::array<std::string_view, 3>>;

KeyRows Rows(std::span<const PositionKeys> positions) {
  KeyRows rows;
  for (const auto& keys : positions) {
    rows.push_back({keys.PositionName, keys.X, keys.Y});
  }
  return rows;
}

TEST(StagePositions, AreThirteenInTheirOrder) {
  EXPECT_EQ(Rows(stagePositions), (KeyRows{{"STAGE1", "STAGE1_X", "STAGE1_Y"},
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
                                           {"TIPRACKSTAGE2", "RACK_STAGE2_X", "RACK_STAGE2_Y"}}));
}

TEST(SerialDilutePositions, AreFourInTheirOrder) {
  EXPECT_EQ(Rows(serialDilutePositions), (KeyRows{{"STAGE1", "WELL_A1_SD_X", "WELL_A1_SD_Y"},
                                                  {"TIPCHUTE", "CHUTE_SD_X", "CHUTE_SD_Y"},
                                                  {"NEST8", "NEST8_SD_X", "NEST8_SD_Y"},
                                                  {"NEST12", "NEST12_SD_X", "NEST12_SD_Y"}}));
}

}  // namespace
}  // namespace zolvane
