#include "custody/record/drawings.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "config/text.h"
#include "custody/record/sample_record.h"

namespace zolvane {
namespace {

// The drawings of the sample after a change of its file.
std::string CurvesWith(std::string_view old, std::string_view changed) {
  auto content = MakeSampleRecord();
  content.Last.reset();
  EXPECT_NE(content.Left.Configuration.find(old), std::string::npos) << old;
  content.Left.Configuration = Replaced(content.Left.Configuration, old, changed);
  return VolumeCurves(content);
}

bool Shows(const std::string& drawings, std::string_view text) {
  return drawings.find(text) != std::string::npos;
}

constexpr std::string_view item = "2Item=5 ul,1.0241,\"VOL_8CH_30_2\"";

TEST(VolumeCurves, ShowTheFactorThatAnUploadSends) {
  EXPECT_TRUE(Shows(CurvesWith(item, "2Item=5 ul,1.9241 or so,\"VOL_8CH_30_2\""), "5: 1.9241"));
  EXPECT_TRUE(Shows(CurvesWith(item, "2Item=5 ul,none,\"VOL_8CH_30_2\""), "5: 0"));
}

TEST(VolumeCurves, LeaveOutWhatNoUploadSends) {
  EXPECT_TRUE(Shows(CurvesWith(item, item), "5: 1.0241"));
  EXPECT_FALSE(Shows(CurvesWith(item, "2Item=5 ul,1.0241,\"\""), "5: 1.0241"));
  EXPECT_FALSE(Shows(CurvesWith(item, "2Item=5 ul,1.0241"), "5: 1.0241"));
}

TEST(VolumeCurves, ShowSectionsByAnyNameThatATipMayGiveThem) {
  for (const auto* name : {"[Small wide tips]", "[VOLUMECORRECTION_8_ch_30]"}) {
    EXPECT_TRUE(Shows(CurvesWith("[VolumeCorrection_8_CH_30]", name), "5: 1.0241")) << name;
  }
}

TEST(VolumeCurves, CountTheCorrectionsWithoutADrawing) {
  EXPECT_FALSE(Shows(CurvesWith(item, item), "Sections without a drawing"));
  EXPECT_FALSE(Shows(CurvesWith("[HeadType]", "[Notes]\nby=me\n[HeadType]"), "Sections without a drawing"));
  EXPECT_TRUE(Shows(CurvesWith("[HeadType]", "[VolumeCorrection_A_B]\nby=me\n[HeadType]"),
                    "Sections without a drawing: 1."));
}

}  // namespace
}  // namespace zolvane
