#include "operations/instrument_keys.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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
  const std::vector<std::pair<double, std::string>> volumes{
      {12.5, "12"}, {30, "30"}, {125, "125"}, {300, "300"}, {1250, "1250"}};
  for (const auto& [volume, text] : volumes) {
    const auto keys = TipEjectKeysOf(HeadOf(8, volume));
    ASSERT_TRUE(keys) << text;
    EXPECT_EQ(keys->TipEject, "TipEject_8Ch_" + text + "_S");
    EXPECT_EQ(keys->AspirateOrigin, "AspirateOrigin_8Ch_" + text + "_S");
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

std::vector<std::pair<std::string_view, std::string_view>> Pairs(std::span<const PositionKeys> positions) {
  std::vector<std::pair<std::string_view, std::string_view>> pairs;
  for (const auto& keys : positions) {
    pairs.emplace_back(keys.PositionName, keys.InstrumentName);
  }
  return pairs;
}

using NamePairs = std::vector<std::pair<std::string_view, std::string_view>>;

TEST(StagePositions, AreThirteenInTheirOrder) {
  EXPECT_EQ(Pairs(stagePositions), (NamePairs{{"STAGE1", "STAGE1"},
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
                                              {"TIPRACKSTAGE2", "RACK_STAGE2"}}));
}

TEST(SerialDilutePositions, AreFourInTheirOrder) {
  EXPECT_EQ(Pairs(serialDilutePositions), (NamePairs{{"STAGE1", "WELL_A1_SD"},
                                                     {"TIPCHUTE", "CHUTE_SD"},
                                                     {"NEST8", "NEST8_SD"},
                                                     {"NEST12", "NEST12_SD"}}));
}

}  // namespace
}  // namespace zolvane
