#include "config/tables/head_and_tip_tables.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace zolvane {
namespace {

using Head = Field<HeadTypeRecord>;
using H = HeadTypeRecord;
using ShortText = RoundedWhole<std::int16_t>;
using LongText = RoundedWhole<std::int32_t>;

// The head-eject position is no setting of its own in the file: it is saved as the aspirate origin plus the eject
// offset, so that it follows both. Heads without the offset have none.
std::optional<std::string> EjectFromAspirateOrigin(const HeadTypeRecord& head, const StepFactors&) {
  return HasSerialDiluteOffsets(head) ? GeneralText(head.Field12 + head.SDHeadEjectOffsetMM) : "0";
}

constexpr std::array headFields{
    Head::Line<&H::Name, QuotedText>(0).Means("name"),
    Head::Line<&H::Code, BareText>(1).Means("class of the head"),
    Head::Line<&H::Field2, LeadingReal>(2),
    Head::Line<&H::TipVolume, LeadingReal>(3).Means("tip volume", Unit::Microlitres),
    Head::Line<&H::Field4, LeadingReal>(4),
    Head::Line<&H::Field5, ShortText>(5).Means("channels"),
    Head::Line<&H::Field6, LeadingReal>(6),
    Head::Line<&H::Field7, WordOrNumberFlag>(7),
    Head::Line<&H::Field8, WordOrNumberFlag>(8),
    Head::Line<&H::Field9, WordOrNumberFlag>(9),
    Head::Line<&H::Field10, LongText>(10).Means("head eject S", Unit::Steps).SavedAs(EjectFromAspirateOrigin),
    Head::Line<&H::Field11, LongText>(11).Means("head lock S", Unit::Steps),
    Head::Line<&H::Field12, LongText>(12).Means("aspirate origin", Unit::Steps),
    Head::Line<&H::Field13, LeadingReal>(13).Means("tip eject S", Unit::Millimetres),
    Head::Line<&H::Field14, LeadingReal>(14).Means("drop-off Z", Unit::Steps),
    Head::Line<&H::Field15, LeadingReal>(15).Means("pick-up Z", Unit::Steps),
    Head::Line<&H::ChannelCode, BareText>(16).Means("layout of the channels"),
    Head::Line<&H::Field17, WordOrNumberFlag>(17),
    Head::Line<&H::Field18, QuotedText>(18).Means("RFID tag"),
};

// Files in the field spell the section of the last four with a lower-case t.
constexpr std::string_view offsetSection = "Headtype";
using OffsetOfS = OffsetSteps<&StepFactors::S>;
using OffsetOfZ = OffsetSteps<&StepFactors::Z>;

constexpr std::array serialDiluteOffsets{
    Head::Key<&H::SDTeachToolOffsetMM, OffsetOfS>("SDTeachToolOffsetMM")
        .Means("teach tool offset", Unit::Millimetres),
    Head::Key<&H::SDHomeSensorSeekOffsetMM, OffsetOfS>("SDHomeSensorSeekOffsetMM")
        .Means("seek offset of the home sensor", Unit::Millimetres)
        .In(offsetSection),
    Head::Key<&H::SDPreCollectHeightMM, OffsetOfZ>("SDPreCollectHeightMM")
        .Means("height before collecting a head", Unit::Millimetres)
        .In(offsetSection),
    Head::Key<&H::SDRFIDReadHeightMM, OffsetOfZ>("SDRFIDReadHeightMM")
        .Means("height for reading the tag", Unit::Millimetres)
        .In(offsetSection),
    Head::Key<&H::SDHeadEjectOffsetMM, OffsetOfS>("SDHeadEjectOffsetMM")
        .Means("head eject offset", Unit::Millimetres)
        .In(offsetSection),
};

using Tip = Field<TipTypeRecord>;
using T = TipTypeRecord;

constexpr std::array tipFields{
    Tip::Line<&T::Name, QuotedText>(0).Means("name"),
    Tip::Line<&T::Code, BareText>(1).Means("class of the tip"),
    Tip::Line<&T::Field2, LeadingReal>(2),
    Tip::Line<&T::Field3, LeadingReal>(3),
    Tip::Line<&T::Field4, ShortText>(4),
    Tip::Line<&T::Field5, ShortText>(5),
    Tip::Line<&T::Field6, WordOrNumberFlag>(6),
    Tip::Line<&T::Field7, LongText>(7).Means("rack eject Z", Unit::Millimetres),
    Tip::Line<&T::Field8, LongText>(8).Means("rack pick-up Z", Unit::Millimetres),
    Tip::Line<&T::Field9, LongText>(9).Means("chute eject Z", Unit::Steps),
    Tip::Line<&T::Field10, LeadingReal>(10),
    Tip::Line<&T::Field11, LongText>(11),
    Tip::Line<&T::Field12, WordOrNumberFlag>(12),
    Tip::Line<&T::Field13, WordOrNumberFlag>(13),
    Tip::Line<&T::Field14, WordOrNumberFlag>(14).Means("first size flag: 1250 ul"),
    Tip::Line<&T::Field15, WordOrNumberFlag>(15).Means("second size flag"),
    Tip::Line<&T::Field16, WordOrNumberFlag>(16).Means("third size flag"),
    Tip::Line<&T::Field17, WordOrNumberFlag>(17).Means("fourth size flag"),
    Tip::Line<&T::Field18, QuotedText>(18).Means("section of its volume correction"),
    Tip::Key<&T::TipChuteClearOffset, StrictReal>("TipChuteClearOffset", "12.5")
        .Means("clearance above the tip chute", Unit::Millimetres)
        .OnlyRead(),
};

}  // namespace

static_assert(CoversLine<HeadTypeRecord>(headFields, 19));
static_assert(CoversLine<TipTypeRecord>(tipFields, 19));

constexpr RecordTable<HeadTypeRecord> headTable{headFields, 19, &HeadTypeRecord::ID};
constexpr RecordTable<TipTypeRecord> tipTable{tipFields, 19, &TipTypeRecord::ID};
constexpr RecordTable<HeadTypeRecord> headOffsetTable{serialDiluteOffsets};

double TipMountDepthFor(const ZCalibrationRecord& heights, double volume) {
  const std::array<std::pair<double, double>, 5> depths{{{12.5, heights.TipMountDepth12},
                                                         {30.0, heights.TipMountDepth30},
                                                         {125.0, heights.TipMountDepth125},
                                                         {300.0, heights.TipMountDepth300},
                                                         {1250.0, heights.TipMountDepth1250}}};
  for (const auto& [tipVolume, depth] : depths) {
    if (volume == tipVolume) {
      return depth;
    }
  }
  return 0.0;
}

bool HasSerialDiluteOffsets(const HeadTypeRecord& head) {
  return head.Code == "SERIALDILUTE" || (head.Code == "CALIBRATE" && head.ChannelCode == "1_CH_SHORT");
}

HeadTypeRecord LoadHeadType(const Configuration& configuration, std::string& item, std::string_view file) {
  auto head = LoadInstalledOr(headTable, configuration, headTypeSection, item, file);
  head.TipMountDepth = TipMountDepthFor(configuration.Current.Heights, head.TipVolume);
  if (HasSerialDiluteOffsets(head)) {
    LoadInto<HeadTypeRecord>(head, serialDiluteOffsets, {}, configuration, headTypeSection,
                             configuration.Settings.Resolved(file));
  }
  return head;
}

void SaveHeadType(const Configuration& configuration, const HeadTypeRecord& record, std::string_view file) {
  SaveRecord(headTable, record, configuration, headTypeSection, file);
}

TipTypeRecord LoadTipType(const Configuration& configuration, std::string& item, std::string_view file) {
  return LoadInstalledOr(tipTable, configuration, tipTypeSection, item, file);
}

void SaveTipType(const Configuration& configuration, const TipTypeRecord& record, std::string_view file) {
  SaveRecord(tipTable, record, configuration, tipTypeSection, file);
}

}  // namespace zolvane
