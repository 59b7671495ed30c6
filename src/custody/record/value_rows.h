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

// What a text of a value says: in "mm" if that is known, else in "counts" or "steps" of the motor, or without a
// unit.
struct Quantity {
  double Number = 0.0;
  std::string Unit;
};

// One value.
struct ValueRow {
  std::string Name;
  Description Meaning;
  std::optional<Value> InFile;        // as left; empty: an upload would not send it
  std::optional<Value> OnInstrument;  // as left; empty: it was not asked for

  // As left: the instrument's text if it gave one, else the file's.
  std::optional<std::string> Now{};
  std::optional<Quantity> At{};  // empty if that is no number, or none that can be drawn

  // As found, if the last operation changed it on the instrument or else in the file.
  std::optional<std::string> Before{};
  std::optional<double> WasAt{};  // in the unit of At

  // What is drawn of it; 0 if that is nothing.
  double Number() const { return At ? At->Number : 0.0; }
  double Moved() const { return At && WasAt ? At->Number - *WasAt : 0.0; }
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

}  // namespace zolvane
