#include "config/tables/nest_table.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zolvane {
namespace {

using NestType = Field<NestTypeRecord>;
constexpr std::size_t placeFields = 6;

// A member of one of the three places.
template <std::size_t Place, auto Member>
constexpr auto inPlace = [](auto& nest) -> auto& {
  return nest.Nests[Place].*Member;
};

// The six pieces of one place. The label stands before the code in the line.
template <std::size_t Place>
constexpr std::array<NestType, placeFields> PlaceFields() {
  constexpr std::size_t base = 2 + placeFields * Place;
  return {
      NestType::Line<inPlace<Place, &NestPosition::Label>, QuotedText>(base).Means("label of the place"),
      NestType::Line<inPlace<Place, &NestPosition::Code>, BareText>(base + 1).Means(
          "layout of the head in it"),
      NestType::Line<inPlace<Place, &NestPosition::Setting>, RoundedWhole<std::int16_t>>(base + 2),
      NestType::Line<inPlace<Place, &NestPosition::X>, SDStepsByPicture>(base + 3).Means("X",
                                                                                         Unit::FileUnits),
      NestType::Line<inPlace<Place, &NestPosition::Y>, SDStepsByPicture>(base + 4).Means("Y",
                                                                                         Unit::FileUnits),
      NestType::Line<inPlace<Place, &NestPosition::Z>, NestZSteps>(base + 5).Means("Z", Unit::Millimetres),
  };
}

constexpr std::array<NestType, 20> NestFields() {
  std::array<NestType, 20> fields{
      NestType::Line<&NestTypeRecord::Name, QuotedText>(0).Means("name"),
      NestType::Line<&NestTypeRecord::Code, BareText>(1).Means("class of the nest")};
  std::size_t next = 2;
  for (const auto& place : {PlaceFields<0>(), PlaceFields<1>(), PlaceFields<2>()}) {
    for (const auto& field : place) {
      fields[next++] = field;
    }
  }
  return fields;
}

constexpr auto nestFields = NestFields();

}  // namespace

static_assert(CoversLine<NestTypeRecord>(nestFields, 20));

constexpr RecordTable<NestTypeRecord> nestTable{nestFields, 20, &NestTypeRecord::ID};

NestTypeRecord LoadNestType(const Configuration& configuration, std::string& item, std::string_view file) {
  return LoadInstalledOr(nestTable, configuration, nestTypeSection, item, file);
}

void SaveNestType(const Configuration& configuration, const NestTypeRecord& record, std::string_view file) {
  SaveRecord(nestTable, record, configuration, nestTypeSection, file);
}

}  // namespace zolvane
