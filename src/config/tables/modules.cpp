#include "config/tables/modules.h"

#include <array>

namespace zolvane {
namespace {

using Cage = CageTypeRecord;

// clang-format off
constexpr std::array cageRows{
    InLine  <&Cage::Name,                 QuotedText >(0).Means("name"),
    InLine  <&Cage::Code,                 BareText   >(cageCodePiece).Means("class of the module"),
    InLine  <&Cage::Field2,               StrictFlag >(2),
    UnderKey<&Cage::CageReleaseBarHeight, LeadingLong>("CageReleaseBarHeight"),
    UnderKey<&Cage::CageReleaseHeight,    LeadingLong>("CageReleaseHeight"),
    InLine  <&Cage::Field3,               StrictFlag >(3),
    InLine  <&Cage::Field4,               StrictFlag >(4),
    InLine  <&Cage::HeadChangeS,          LeadingLong>(5).Means("head change S", Unit::StepsS),
    InLine  <&Cage::Field6,               LeadingLong>(6),
    InLine  <&Cage::TipChangeS,           LeadingLong>(7).Means("tip change S", Unit::StepsS),
    InLine  <&Cage::Field8,               LeadingLong>(8),
};
// clang-format on

}  // namespace

constexpr RecordTable<CageTypeRecord> cageTable = MakeTable(TableSection{cageTypeSection}, cageRows);

CageTypeRecord FindMicrotiterCage(const Configuration& configuration) {
  return Find(cageTable, configuration,
              [](const CageTypeRecord& cage) { return cage.Code == code::microtiter; });
}

}  // namespace zolvane
