#include "config/tables/heads.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace zolvane {
namespace {

using Head = HeadTypeRecord;

// The head-eject position is no setting of its own in the file: it is saved as the aspirate origin plus the
// eject offset, so that it follows both. Heads without the offset have none.
std::optional<std::string> DerivedEject(const Head& head, const StepFactors&) {
  return HasSerialDiluteOffsets(head) ? GeneralText(head.AspirateOrigin + head.SDHeadEjectOffsetMM) : "0";
}

// clang-format off
constexpr std::array headRows{
    InLine<&Head::Name,           QuotedText  >( 0).Means("name"),
    InLine<&Head::Code,           BareText    >( 1).Means("class of the head"),
    InLine<&Head::Field2,         LeadingReal >( 2),
    InLine<&Head::TipVolume,      LeadingReal >( 3).Means("tip volume", Unit::Microlitres),
    InLine<&Head::Field4,         LeadingReal >( 4),
    InLine<&Head::Channels,       LeadingShort>( 5).Means("channels"),
    InLine<&Head::Field6,         LeadingReal >( 6),
    InLine<&Head::Field7,         StrictFlag  >( 7),
    InLine<&Head::Field8,         StrictFlag  >( 8),
    InLine<&Head::Field9,         StrictFlag  >( 9),
    InLine<&Head::HeadEjectS,     LeadingLong >(10).Means("head eject S", Unit::StepsS).SavedAs(DerivedEject),
    InLine<&Head::HeadLockS,      LeadingLong >(11).Means("head lock S", Unit::StepsS),
    InLine<&Head::AspirateOrigin, LeadingLong >(12).Means("aspirate origin", Unit::StepsS),
    InLine<&Head::TipEjectS,      LeadingReal >(13).Means("tip eject S", Unit::Millimetres),
    InLine<&Head::DropOffZ,       LeadingReal >(14).Means("drop-off Z", Unit::StepsZ),
    InLine<&Head::PickUpZ,        LeadingReal >(15).Means("pick-up Z", Unit::StepsZ),
    InLine<&Head::ChannelCode,    BareText    >(16).Means("layout of the channels"),
    InLine<&Head::Field17,        StrictFlag  >(17),
    InLine<&Head::Tag,            QuotedText  >(18).Means("RFID tag"),
};
// clang-format on

// Files in the field spell the section of the last four with a lower-case t.
constexpr std::string_view offsetSection = "Headtype";

template <auto Member, double StepFactors::* Factor>
constexpr Field<Head> Offset(std::string_view key, std::string_view title) {
  return UnderKey<Member, OffsetSteps<Factor>>(key).Means(title, Unit::Millimetres);
}

template <auto Member>
constexpr auto OffsetOfS = Offset<Member, &StepFactors::S>;
template <auto Member>
constexpr auto OffsetOfZ = Offset<Member, &StepFactors::Z>;

// clang-format off
constexpr std::array headOffsetRows{
    OffsetOfS<&Head::SDTeachToolOffsetMM>("SDTeachToolOffsetMM", "teach tool offset"),
    OffsetOfS<&Head::SDHomeSensorSeekOffsetMM>("SDHomeSensorSeekOffsetMM", "seek offset of the home sensor")
        .In(offsetSection),
    OffsetOfZ<&Head::SDPreCollectHeightMM>("SDPreCollectHeightMM", "height before collecting a head")
        .In(offsetSection),
    OffsetOfZ<&Head::SDRFIDReadHeightMM>("SDRFIDReadHeightMM", "height for reading the tag")
        .In(offsetSection),
    OffsetOfS<&Head::SDHeadEjectOffsetMM>("SDHeadEjectOffsetMM", "head eject offset")
        .In(offsetSection),
};
// clang-format on

void CompleteHead(Head& head, const Configuration& configuration, std::string_view file) {
  head.TipMountDepth = TipMountDepthFor(configuration.Current.Heights, head.TipVolume);
  if (HasSerialDiluteOffsets(head)) {
    LoadInto(head, headOffsetTable, {}, configuration, file);
  }
}

}  // namespace

constexpr RecordTable<HeadTypeRecord> headTable =
    MakeTable(TableSection{headTypeSection}, headRows, CompleteHead);
constexpr RecordTable<HeadTypeRecord> headOffsetTable =
    MakeTable(TableSection{headTypeSection}, headOffsetRows);

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
  return head.Code == code::serialDilute ||
         (head.Code == code::calibrate && head.ChannelCode == channel_layout::oneShort);
}

}  // namespace zolvane
