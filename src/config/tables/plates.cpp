#include "config/tables/plates.h"

#include <array>

namespace zolvane {
namespace {

using Plate = PlateTypeRecord;

// clang-format off
constexpr std::array plateRows{
    InLine  <&Plate::Name,     QuotedText >( 0).Means("name"),
    InLine  <&Plate::Field2,   BareText   >( 1),
    InLine  <&Plate::Field3,   StrictShort>( 2),
    InLine  <&Plate::Field4,   StrictShort>( 3),
    InLine  <&Plate::Field5,   StrictReal >( 4),
    InLine  <&Plate::Field6,   StrictReal >( 5),
    InLine  <&Plate::Field7,   StrictReal >( 6),
    InLine  <&Plate::Field8,   StrictReal >( 7),
    InLine  <&Plate::Field9,   StrictReal >( 8),
    InLine  <&Plate::Field10,  StrictReal >( 9),
    InLine  <&Plate::Field11,  BareText   >(10),
    InLine  <&Plate::Field12,  StrictReal >(11),
    InLine  <&Plate::Field13,  StrictReal >(12),
    InLine  <&Plate::Field14,  StrictReal >(13),
    InLine  <&Plate::Field15,  StrictFlag >(14),
    UnderKey<&Plate::SBSA1Xmm, StrictReal >("SBSA1Xmm").Means("", Unit::Millimetres),
    UnderKey<&Plate::SBSA1Ymm, StrictReal >("SBSA1Ymm").Means("", Unit::Millimetres),
    InLine  <&Plate::Field16,  StrictFlag >(15),
    InLine  <&Plate::Field17,  StrictFlag >(16),
    InLine  <&Plate::Field18,  StrictFlag >(17),
    InLine  <&Plate::Field19,  StrictFlag >(18),
    InLine  <&Plate::Field20,  StrictFlag >(19),
    InLine  <&Plate::Field21,  StrictFlag >(20),
};
// clang-format on

}  // namespace

constexpr RecordTable<PlateTypeRecord> plateTable = MakeTable(TableSection{plateTypeSection}, plateRows);

}  // namespace zolvane
