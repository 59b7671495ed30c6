#include "custody/record/value_rows.h"

#include <algorithm>
#include <cmath>

#include "config/conversions.h"

namespace zolvane {
namespace {

const char* UnitWord(Unit unit) {
  switch (unit) {
    case Unit::CountsX:
    case Unit::CountsY:
      return "counts";
    case Unit::StepsZ:
    case Unit::StepsS:
    case Unit::StepsSDX:
    case Unit::StepsSDY:
      return "steps";
    default:
      return "";
  }
}

std::optional<Quantity> QuantityOf(const Faces& faces, std::string_view name,
                                   const std::optional<std::string>& text) {
  constexpr double largest = 1e12;
  const auto millimetres = text ? faces.Meanings.Millimetres(name, *text) : std::nullopt;
  const auto number = millimetres || !text ? millimetres : StrictNumber(*text);
  if (!number || !(std::abs(*number) <= largest)) {
    return std::nullopt;
  }
  return Quantity{.Number = *number, .Unit = millimetres ? "mm" : UnitWord(faces.Meanings.Of(name).Of)};
}

std::optional<Value> ValueIn(const Values& values, std::string_view name) {
  const auto* const value = values.Find(name);
  return value != nullptr ? std::optional{*value} : std::nullopt;
}

bool IsChanged(const std::optional<std::string>& found, const std::optional<std::string>& left) {
  return found && left && !SameText(*found, *left);
}

// The values of a side at two moments.
struct FoundAndLeft {
  Values Found;
  Values Left;
};

ValueRow RowOf(const std::string& name, const FoundAndLeft& file, const FoundAndLeft& instrument,
               const Faces& faces) {
  ValueRow row{.Name = name,
               .Meaning = faces.Meanings.Of(name),
               .InFile = ValueIn(file.Left, name),
               .OnInstrument = ValueIn(instrument.Left, name)};
  for (const auto* side : {&file, &instrument}) {
    const auto found = side->Found.TextOf(name);
    const auto left = side->Left.TextOf(name);
    row.Now = left ? left : row.Now;
    row.Before = IsChanged(found, left) ? found : row.Before;
  }
  row.At = QuantityOf(faces, name, row.Now);
  const auto before = QuantityOf(faces, name, row.Before);
  row.WasAt = before ? std::optional{before->Number} : std::nullopt;
  return row;
}

}  // namespace

Faces::Faces(const RecordContent& content)
    : Left{WireFaceOfFile(content.Left.Configuration)}, Meanings{Left} {
  const auto found = content.Last ? content.Last->Found.Configuration : std::nullopt;
  if (found && *found != content.Left.Configuration) {
    Found = WireFaceOfFile(*found);
  }
}

std::vector<ValueRow> RowsOf(const RecordContent& content, const Faces& faces) {
  const FoundAndLeft file{.Found = faces.Found ? faces.Found->Lines : Values{}, .Left = faces.Left.Lines};
  const FoundAndLeft instrument{
      .Found = content.Last ? content.Last->Found.Instrument.value_or(Values{}) : Values{},
      .Left = content.Left.Instrument.value_or(Values{})};
  Values all;
  for (const auto* values : {&file.Left, &instrument.Left, &file.Found, &instrument.Found}) {
    std::ranges::for_each(values->InOrder(), [&all](const Value& value) { all.Add(value); });
  }
  std::vector<ValueRow> rows;
  for (const auto& value : all.InOrder()) {
    rows.push_back(RowOf(value.Name, file, instrument, faces));
  }
  return rows;
}

const ValueRow* FindRow(const std::vector<ValueRow>& rows, std::string_view name) {
  const auto found = std::ranges::find(rows, name, &ValueRow::Name);
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace zolvane
