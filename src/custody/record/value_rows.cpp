#include "custody/record/value_rows.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "config/conversions.h"

namespace zolvane {
namespace {

std::optional<Value> ValueIn(const Values* values, std::string_view name) {
  const auto* value = values == nullptr ? nullptr : values->Find(name);
  return value == nullptr ? std::nullopt : std::optional{*value};
}

const Values* InstrumentOf(const RecordedState& state) {
  return state.Instrument ? &*state.Instrument : nullptr;
}

std::optional<std::string> TextOf(const std::optional<Value>& value) {
  return value ? value->Text : std::nullopt;
}

bool IsChanged(const std::optional<Value>& found, const std::optional<Value>& left) {
  const auto before = TextOf(found);
  const auto now = TextOf(left);
  return before && now && !SameText(*before, *now);
}

void AddNames(std::vector<std::string>& names, std::set<std::string>& known, const Values* values) {
  for (const auto& name : values == nullptr ? std::vector<std::string>{} : NamesOf(*values)) {
    if (known.insert(name).second) {
      names.push_back(name);
    }
  }
}

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

}  // namespace

std::optional<std::string> ValueRow::Now() const {
  const auto onInstrument = TextOf(LeftOnInstrument);
  return onInstrument ? onInstrument : TextOf(LeftInFile);
}

std::optional<std::string> ValueRow::Before() const {
  if (IsChanged(FoundOnInstrument, LeftOnInstrument)) {
    return TextOf(FoundOnInstrument);
  }
  return IsChanged(FoundInFile, LeftInFile) ? TextOf(FoundInFile) : std::nullopt;
}

Faces::Faces(const RecordContent& content)
    : Left{WireFaceOfFile(content.Left.Configuration)}, Meanings{Left} {
  if (content.Last && content.Last->Found.Configuration != content.Left.Configuration) {
    Found = WireFaceOfFile(content.Last->Found.Configuration);
  }
}

std::vector<ValueRow> RowsOf(const RecordContent& content, const Faces& faces) {
  const auto* foundInFile = faces.Found ? &faces.Found->Lines : nullptr;
  const auto* foundOnInstrument = content.Last ? InstrumentOf(content.Last->Found) : nullptr;
  const auto* leftOnInstrument = InstrumentOf(content.Left);
  std::vector<std::string> names;
  std::set<std::string> known;
  for (const auto* values : {&faces.Left.Lines, leftOnInstrument, foundInFile, foundOnInstrument}) {
    AddNames(names, known, values);
  }
  std::vector<ValueRow> rows;
  for (const auto& name : names) {
    rows.push_back({.Name = name,
                    .Meaning = faces.Meanings.Of(name),
                    .FoundInFile = ValueIn(foundInFile, name),
                    .FoundOnInstrument = ValueIn(foundOnInstrument, name),
                    .LeftInFile = ValueIn(&faces.Left.Lines, name),
                    .LeftOnInstrument = ValueIn(leftOnInstrument, name)});
  }
  return rows;
}

const ValueRow* FindRow(const std::vector<ValueRow>& rows, std::string_view name) {
  const auto found = std::ranges::find(rows, name, &ValueRow::Name);
  return found == rows.end() ? nullptr : &*found;
}

std::optional<Quantity> QuantityOf(const Faces& faces, std::string_view name, std::string_view text) {
  constexpr double largest = 1e12;
  const auto millimetres = faces.Meanings.Millimetres(name, text);
  const auto number = millimetres ? millimetres : StrictNumber(text);
  if (!number || !(std::abs(*number) <= largest)) {
    return std::nullopt;
  }
  return Quantity{.Number = *number, .Unit = millimetres ? "mm" : UnitWord(faces.Meanings.Of(name).Of)};
}

}  // namespace zolvane
