#include "config/tables/nests.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zolvane {
namespace {

using Nest = NestTypeRecord;

// A member of one of the three places.
template <std::size_t Place, auto Member>
constexpr auto inPlace = [](auto& nest) -> auto& { return nest.Nests[Place].*Member; };

template <std::size_t Place, auto Member, class Form>
constexpr Field<Nest> InGroup(std::size_t piece) {
  constexpr std::size_t piecesOfAPlace = 6;
  constexpr std::size_t firstPlace = 2;
  return InLine<inPlace<Place, Member>, Form, Nest>(firstPlace + (piecesOfAPlace * Place) + piece);
}

// The pieces of one place. The label stands before the code in the line.
// clang-format off
template <std::size_t Place>
constexpr std::array placeRows{
    InGroup<Place, &NestPosition::Label,   QuotedText      >(0).Means("label of the place"),
    InGroup<Place, &NestPosition::Code,    BareText        >(1).Means("layout of the head in it"),
    InGroup<Place, &NestPosition::Setting, LeadingShort    >(2),
    InGroup<Place, &NestPosition::X,       SDStepsByPicture>(3).Means("X", Unit::FileUnitsX),
    InGroup<Place, &NestPosition::Y,       SDStepsByPicture>(4).Means("Y", Unit::FileUnitsY),
    InGroup<Place, &NestPosition::Z,       NestZSteps      >(5).Means("Z", Unit::Millimetres),
};

constexpr std::array nestRows{
    InLine<&Nest::Name, QuotedText>(0).Means("name"),
    InLine<&Nest::Code, BareText  >(1).Means("class of the nest"),
};
// clang-format on

template <std::size_t... Counts>
constexpr std::array<Field<Nest>, (Counts + ...)> OneAfterAnother(
    const std::array<Field<Nest>, Counts>&... groups) {
  std::array<Field<Nest>, (Counts + ...)> rows;
  auto next = rows.begin();
  ((next = std::ranges::copy(groups, next).out), ...);
  return rows;
}

constexpr auto allNestRows = OneAfterAnother(nestRows, placeRows<0>, placeRows<1>, placeRows<2>);

using Taught = NestCalibrationRecord;

// clang-format off
constexpr std::array nestCalibrationRows{
    InLine<&Taught::Name,   BareText        >(0).Means("name"),
    InLine<&Taught::Value1, SDStepsByPicture>(1).Means("", Unit::FileUnits),
    InLine<&Taught::Value2, SDStepsByPicture>(2).Means("", Unit::FileUnits),
    InLine<&Taught::Value3, SDStepsByPicture>(3).Means("", Unit::FileUnits),
    InLine<&Taught::Value4, SDStepsByPicture>(4).Means("", Unit::FileUnits),
    InLine<&Taught::Value5, SDStepsByPicture>(5).Means("", Unit::FileUnits),
    InLine<&Taught::Value6, SDStepsByPicture>(6).Means("", Unit::FileUnits),
};
// clang-format on

}  // namespace

constexpr RecordTable<NestTypeRecord> nestTable = MakeTable(TableSection{nestTypeSection}, allNestRows);
constexpr RecordTable<NestCalibrationRecord> nestCalibrationTable =
    MakeTable(TableSection{nestCalibrationSection}, nestCalibrationRows);

}  // namespace zolvane
