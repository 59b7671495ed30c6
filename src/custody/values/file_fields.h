// The fields of the file as the record tables have them, without their record types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/record_table.h"

namespace zolvane {

struct FileField {
  std::string Key{};  // empty: a piece of the section's numbered lines
  std::size_t Piece = 0;
  std::string_view Title{};
  ValueTexts Values = BareText::Values;
  Unit Of = Unit::None;
  bool IsSaved = true;  // a backup holds it

  // Loading takes the text; else the value stays empty or zero.
  std::function<bool(std::string_view text, const StepFactors& factors)> Converts;
};

// A section with numbered lines ("Item3", "Axis1", "2Item"), keys, or both.
struct FileSection {
  std::string Pattern;  // its name in upper case, with * for the names of devices and modules
  std::string_view BeforeNumber;
  std::string_view BehindNumber;
  std::size_t Pieces = 0;  // of a line
  std::vector<FileField> Fields;

  // The number of a line's key, as the add-in asks for it. Returns nullopt for any other key.
  std::optional<int> NumberIn(std::string_view key) const;

  // Of volume corrections.
  bool IsCorrection() const { return !BehindNumber.empty(); }

  // Of axes: a number that is missing or does not convert keeps the value of the line before.
  bool IsOfAxes() const { return BeforeNumber == "Axis"; }

  const FileField* FieldUnder(std::string_view key) const;
  const FileField* FieldAt(std::size_t piece) const;
};

// Tips can name any section for their volume correction, so every name that no table knows is taken for one.
const FileSection& FileSectionOf(std::string_view name);

// Whether it is a section of the add-in by its name alone: that of a table, or of a volume correction of a head.
bool IsKnownSection(std::string_view name);

// "[HeadType] Item3", and of a piece of a line "[HeadType] Item3 field 4 (tip volume)".
std::string NameOfPlace(std::string_view section, std::string_view key);
std::string NameOfPlace(std::string_view section, std::string_view key, std::size_t piece,
                        std::string_view title);

struct NamedPlace {
  std::string Section;
  std::string Key;
  std::optional<std::size_t> Piece;
};
std::optional<NamedPlace> PlaceNamed(std::string_view name);

// The pieces of a line, as the settings service splits it.
std::vector<std::string> PiecesOf(std::string_view line);

}  // namespace zolvane
