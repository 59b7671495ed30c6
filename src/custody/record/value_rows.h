// The values of an upload in all states of a record, side by side: what its tables and drawings are made of.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/record/record.h"
#include "custody/values/descriptions.h"
#include "custody/values/sides.h"
#include "custody/values/values.h"

namespace zolvane {

// One value. A state that does not have it, or was not asked for it, is empty.
struct ValueRow {
  std::string Name;
  Description Meaning;
  std::optional<Value> FoundInFile;
  std::optional<Value> FoundOnInstrument;
  std::optional<Value> LeftInFile;
  std::optional<Value> LeftOnInstrument;

  // As left: the instrument's text if it gave one, else the file's.
  std::optional<std::string> Now() const;

  // As found, if the last operation changed it on the instrument or else in the file.
  std::optional<std::string> Before() const;
};

// What an upload would send of the two configurations, and what is known of its values.
struct Faces {
  explicit Faces(const RecordContent& content);

  WireFace Left;
  std::optional<WireFace> Found;  // of a configuration that the last operation changed
  Descriptions Meanings;
};

// In the order of the upload; what only the instrument has comes behind.
std::vector<ValueRow> RowsOf(const RecordContent& content, const Faces& faces);

const ValueRow* FindRow(const std::vector<ValueRow>& rows, std::string_view name);

// What a text of a value says: in "mm" if that is known, else in "counts" or "steps" of the motor, or without a
// unit.
struct Quantity {
  double Number = 0.0;
  std::string Unit;
};

// Empty if the text is no number, or none that can be drawn.
std::optional<Quantity> QuantityOf(const Faces& faces, std::string_view name, std::string_view text);

}  // namespace zolvane
