#include "custody/values/file_fields.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "config/tables/axes.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/plates.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"
#include "config/text.h"
#include "files/file_settings_service.h"
#include "operations/upload_script.h"
#include "page/page_controls.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// ---- Out of the record tables ----

// A text converts if the value that was there before is gone, whatever it was.
template <class Record>
bool Converts(const Field<Record>& field, std::string_view text, const StepFactors& factors) {
  Record zero;
  Record one;
  field.Read("0", factors, zero);
  field.Read("1", factors, one);
  field.Read(text, factors, zero);
  field.Read(text, factors, one);
  return zero == one;
}

template <class Record>
void AddFields(FileSection& section, const RecordTable<Record>& table) {
  for (const auto& field : table.Fields) {
    const auto isThere = [&](const FileField& known) {
      return field.IsLinePiece() ? known.Key.empty() && known.Piece == field.Piece
                                 : EqualIgnoringCase(known.Key, field.SectionKey);
    };
    if (!field.IsRead || std::ranges::any_of(section.Fields, isThere)) {
      continue;
    }
    section.Fields.push_back({.Key = std::string{field.SectionKey},
                              .Piece = field.Piece,
                              .Title = field.Title,
                              .Values = *field.Values,
                              .Of = field.FileUnit,
                              .IsSaved = field.IsSaved,
                              .Converts = [&field](std::string_view text, const StepFactors& factors) {
                                return Converts(field, text, factors);
                              }});
  }
}

template <class Record>
FileSection SectionOf(const RecordTable<Record>& table, std::string_view beforeNumber = "Item") {
  CurrentRecords anyNames;
  anyNames.Device.Name = std::string{'*'};  // GCC 12 warns wrongly about a literal here
  anyNames.Cage.Name = std::string{'*'};
  FileSection section{.Pattern = UpperCase(table.Section.Name(anyNames)),
                      .BeforeNumber = beforeNumber,
                      .BehindNumber = "",
                      .Pieces = table.Pieces,
                      .Fields = {}};
  AddFields(section, table);
  return section;
}

// ---- What no table holds ----

bool IsFlagText(std::string_view text, const StepFactors&) {
  return StrictBoolean(text).has_value();
}

FileField FlagUnder(std::string_view key, std::string_view title) {
  return {.Key = std::string{key}, .Title = title, .Values = StrictFlag::Values, .Converts = IsFlagText};
}

FileSection WithChecks(FileSection section) {
  for (const auto& row : checkRows) {
    section.Fields.push_back(FlagUnder(row.Key, row.Label));
  }
  return section;
}

FileSection HeadSection() {
  auto section = SectionOf(headTable);
  AddFields(section, headOffsetTable);
  return section;
}

FileSection PumpSection() {
  return {.Pattern = UpperCase(pumpSection),
          .BeforeNumber = {},
          .BehindNumber = {},
          .Fields = {FlagUnder(pumpModuleInstalledKey, pumpLabel.Caption)}};
}

FileSection CorrectionSection() {
  const auto anyText = [](std::string_view, const StepFactors&) { return true; };
  return {
      .Pattern = UpperCase(VolumeCorrectionSection("*", "*")),
      .BeforeNumber = "",
      .BehindNumber = "Item",
      .Pieces = correctionKeyPiece + 1,
      .Fields = {
          {.Key = "", .Piece = 0, .Title = "volume", .Converts = anyText},
          {.Key = "",
           .Piece = correctionFactorPiece,
           .Title = "correction factor",
           .Values = LeadingReal::Values,
           .Converts = anyText},
          {.Key = "", .Piece = correctionKeyPiece, .Title = "key of the instrument", .Converts = anyText}}};
}

const std::vector<FileSection>& AllSections() {
  static const std::vector<FileSection> sections{WithChecks(SectionOf(deviceTable)),
                                                 SectionOf(cageTable),
                                                 SectionOf(axisTable, "Axis"),
                                                 HeadSection(),
                                                 SectionOf(tipTable),
                                                 SectionOf(nestTable),
                                                 SectionOf(nestCalibrationTable),
                                                 SectionOf(heightTable),
                                                 SectionOf(calibrationTable),
                                                 SectionOf(positionTable),
                                                 SectionOf(plateTable),
                                                 PumpSection(),
                                                 CorrectionSection()};
  return sections;
}

// A * stands for any text.
bool Matches(std::string_view pattern, std::string_view name) {
  const auto star = pattern.find('*');
  if (star == std::string_view::npos) {
    return pattern == name;
  }
  const auto start = pattern.substr(0, star);
  if (!name.starts_with(start)) {
    return false;
  }
  const auto rest = pattern.substr(star + 1);
  for (auto at = start.size(); at <= name.size(); ++at) {
    if (Matches(rest, name.substr(at))) {
      return true;
    }
  }
  return false;
}

std::vector<FileSection>::const_iterator SectionNamed(std::string_view name) {
  const auto upperName = UpperCase(Trimmed(name));
  return std::ranges::find_if(
      AllSections(), [&](const FileSection& section) { return Matches(section.Pattern, upperName); });
}

constexpr std::string_view betweenKeyAndPiece = " field ";

}  // namespace

std::optional<int> FileSection::NumberIn(std::string_view key) const {
  const auto around = BeforeNumber.size() + BehindNumber.size();
  if (around == 0 || key.size() <= around) {
    return std::nullopt;
  }
  const auto digits = key.substr(BeforeNumber.size(), key.size() - around);
  int number = -1;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isAskedFor = number >= 0 && number <= lastItemNumber &&
                          EqualIgnoringCase(key, Joined(BeforeNumber, WholeText(number), BehindNumber));
  return isAskedFor ? std::optional{number} : std::nullopt;
}

const FileField* FileSection::FieldUnder(std::string_view key) const {
  const auto found = std::ranges::find_if(Fields, [key](const FileField& field) {
    return !field.Key.empty() && EqualIgnoringCase(field.Key, key);
  });
  return found == Fields.end() ? nullptr : &*found;
}

const FileField* FileSection::FieldAt(std::size_t piece) const {
  const auto found = std::ranges::find_if(
      Fields, [piece](const FileField& field) { return field.Key.empty() && field.Piece == piece; });
  return found == Fields.end() ? nullptr : &*found;
}

const FileSection& FileSectionOf(std::string_view name) {
  const auto found = SectionNamed(name);
  return found == AllSections().end() ? AllSections().back() : *found;
}

bool IsKnownSection(std::string_view name) {
  return SectionNamed(name) != AllSections().end();
}

std::string NameOfPlace(std::string_view section, std::string_view key) {
  return Joined("[", section, "] ", key);
}

std::string NameOfPlace(std::string_view section, std::string_view key, std::size_t piece,
                        std::string_view title) {
  const auto number = WholeText(static_cast<std::int32_t>(piece) + 1);
  const auto place = Joined(NameOfPlace(section, key), betweenKeyAndPiece, number);
  return title.empty() ? place : Joined(place, " (", title, ")");
}

std::optional<NamedPlace> PlaceNamed(std::string_view name) {
  const auto end = name.find("] ");
  if (!name.starts_with('[') || end == std::string_view::npos) {
    return std::nullopt;
  }
  NamedPlace place{.Section = std::string{name.substr(1, end - 1)}, .Key = {}, .Piece = {}};
  const auto rest = name.substr(end + 2);
  const auto between = rest.rfind(betweenKeyAndPiece);
  place.Key = rest.substr(0, between);
  if (between != std::string_view::npos) {
    const auto digits = rest.substr(between + betweenKeyAndPiece.size());
    std::size_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    place.Piece = number > 0 ? std::optional{number - 1} : std::nullopt;
  }
  return place;
}

std::vector<std::string> PiecesOf(std::string_view line) {
  static FileSettingsService service;
  return service.SplitText(",", line).value_or(std::vector<std::string>{});
}

}  // namespace zolvane
