#include "config/head_and_tip_tables.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "config/record_table.h"

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
    Head::Line<&H::Name, QuotedText>(0),
    Head::Line<&H::Code, BareText>(1),
    Head::Line<&H::Field2, LeadingReal>(2),
    Head::Line<&H::TipVolume, LeadingReal>(3),
    Head::Line<&H::Field4, LeadingReal>(4),
    Head::Line<&H::Field5, ShortText>(5),
    Head::Line<&H::Field6, LeadingReal>(6),
    Head::Line<&H::Field7, WordOrNumberFlag>(7),
    Head::Line<&H::Field8, WordOrNumberFlag>(8),
    Head::Line<&H::Field9, WordOrNumberFlag>(9),
    Head::Line<&H::Field10, LongText>(10).SavedAs(EjectFromAspirateOrigin),
    Head::Line<&H::Field11, LongText>(11),
    Head::Line<&H::Field12, LongText>(12),
    Head::Line<&H::Field13, LeadingReal>(13),
    Head::Line<&H::Field14, LeadingReal>(14),
    Head::Line<&H::Field15, LeadingReal>(15),
    Head::Line<&H::ChannelCode, BareText>(16),
    Head::Line<&H::Field17, WordOrNumberFlag>(17),
    Head::Line<&H::Field18, QuotedText>(18),
};
constexpr RecordTable<HeadTypeRecord> headTable{headFields, 19, &HeadTypeRecord::ID};
static_assert(CoversLine<HeadTypeRecord>(headFields, 19));

// Files in the field spell the section of the last four with a lower-case t.
constexpr std::string_view offsetSection = "Headtype";
using OffsetOfS = OffsetSteps<&StepFactors::S>;
using OffsetOfZ = OffsetSteps<&StepFactors::Z>;

constexpr std::array serialDiluteOffsets{
    Head::Key<&H::SDTeachToolOffsetMM, OffsetOfS>("SDTeachToolOffsetMM"),
    Head::Key<&H::SDHomeSensorSeekOffsetMM, OffsetOfS>("SDHomeSensorSeekOffsetMM").In(offsetSection),
    Head::Key<&H::SDPreCollectHeightMM, OffsetOfZ>("SDPreCollectHeightMM").In(offsetSection),
    Head::Key<&H::SDRFIDReadHeightMM, OffsetOfZ>("SDRFIDReadHeightMM").In(offsetSection),
    Head::Key<&H::SDHeadEjectOffsetMM, OffsetOfS>("SDHeadEjectOffsetMM").In(offsetSection),
};

using Tip = Field<TipTypeRecord>;
using T = TipTypeRecord;

constexpr std::array tipFields{
    Tip::Line<&T::Name, QuotedText>(0),
    Tip::Line<&T::Code, BareText>(1),
    Tip::Line<&T::Field2, LeadingReal>(2),
    Tip::Line<&T::Field3, LeadingReal>(3),
    Tip::Line<&T::Field4, ShortText>(4),
    Tip::Line<&T::Field5, ShortText>(5),
    Tip::Line<&T::Field6, WordOrNumberFlag>(6),
    Tip::Line<&T::Field7, LongText>(7),
    Tip::Line<&T::Field8, LongText>(8),
    Tip::Line<&T::Field9, LongText>(9),
    Tip::Line<&T::Field10, LeadingReal>(10),
    Tip::Line<&T::Field11, LongText>(11),
    Tip::Line<&T::Field12, WordOrNumberFlag>(12),
    Tip::Line<&T::Field13, WordOrNumberFlag>(13),
    Tip::Line<&T::Field14, WordOrNumberFlag>(14),
    Tip::Line<&T::Field15, WordOrNumberFlag>(15),
    Tip::Line<&T::Field16, WordOrNumberFlag>(16),
    Tip::Line<&T::Field17, WordOrNumberFlag>(17),
    Tip::Line<&T::Field18, QuotedText>(18),
    Tip::Key<&T::TipChuteClearOffset, StrictReal>("TipChuteClearOffset", "12.5").OnlyRead(),
};
constexpr RecordTable<TipTypeRecord> tipTable{tipFields, 19, &TipTypeRecord::ID};
static_assert(CoversLine<TipTypeRecord>(tipFields, 19));

}  // namespace

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
