#include "config/tables/tips.h"

#include <array>

namespace zolvane {
namespace {

using Tip = TipTypeRecord;

// clang-format off
constexpr std::array tipRows{
    InLine  <&Tip::Name,                QuotedText  >( 0).Means("name"),
    InLine  <&Tip::Code,                BareText    >( 1).Means("class of the tip"),
    InLine  <&Tip::Field2,              LeadingReal >( 2),
    InLine  <&Tip::Field3,              LeadingReal >( 3),
    InLine  <&Tip::Field4,              LeadingShort>( 4),
    InLine  <&Tip::Field5,              LeadingShort>( 5),
    InLine  <&Tip::Field6,              StrictFlag  >( 6),
    InLine  <&Tip::RackEjectZ,          LeadingLong >( 7).Means("rack eject Z", Unit::Millimetres),
    InLine  <&Tip::RackPickUpZ,         LeadingLong >( 8).Means("rack pick-up Z", Unit::Millimetres),
    InLine  <&Tip::ChuteEjectZ,         LeadingLong >( 9).Means("chute eject Z", Unit::StepsZ),
    InLine  <&Tip::Field10,             LeadingReal >(10),
    InLine  <&Tip::Field11,             LeadingLong >(11),
    InLine  <&Tip::Field12,             StrictFlag  >(12),
    InLine  <&Tip::Field13,             StrictFlag  >(13),
    InLine  <&Tip::FirstSize,           StrictFlag  >(14).Means("first size flag: 1250 ul"),
    InLine  <&Tip::SecondSize,          StrictFlag  >(15).Means("second size flag"),
    InLine  <&Tip::ThirdSize,           StrictFlag  >(16).Means("third size flag"),
    InLine  <&Tip::FourthSize,          StrictFlag  >(17).Means("fourth size flag"),
    InLine  <&Tip::CorrectionSection,   QuotedText  >(18).Means("section of its volume correction"),
    UnderKey<&Tip::TipChuteClearOffset, StrictReal  >("TipChuteClearOffset", "12.5")
        .Means("clearance above the tip chute", Unit::Millimetres)
        .OnlyRead(),
};
// clang-format on

}  // namespace

constexpr RecordTable<TipTypeRecord> tipTable = MakeTable(TableSection{tipTypeSection}, tipRows);

}  // namespace zolvane
