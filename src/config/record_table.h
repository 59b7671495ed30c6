// Record tables, described once: a table is a constant array of rows, and loading and saving are two loops
// over it that know no table.
//
// A row says where a member stands (a piece of the record line, or a key of the section), which member it is,
// and in which form. Rows are read and written in the order of the table, so the order of host calls is
// visible there. The oddities of single rows are named: OnlyRead, OnlySaved, SavedAs, In. Means says for people
// what the value is, and in which unit the file holds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/configuration.h"
#include "config/field_forms.h"
#include "host/status.h"

namespace zolvane {

// Of a value as the file holds it.
enum class Unit : std::uint8_t {
  None,
  Millimetres,
  MillimetresPerUnit,  // per motor step, or per file unit for the serial-dilute X and Y
  FileUnits,           // of the serial-dilute X and Y, converted by the encoders' factor
  StepsPerFileUnit,
  Steps,   // of a motor, as the instrument takes them
  Counts,  // of the stage's motors
  Microlitres,
};

template <class Record>
struct Field {
  using Reader = void (*)(std::string_view text, const StepFactors& factors, Record& record);
  using Writer = std::optional<std::string> (*)(const Record& record, const StepFactors& factors);

  std::string_view Section;     // of a key that stands outside the table's own section
  std::string_view SectionKey;  // empty: a piece of the record line
  std::string_view Fallback;    // what a missing key reads as
  std::string_view Title;       // empty: the key's own name, or a value that is only kept
  std::string_view Values;      // which texts convert
  Unit FileUnit = Unit::None;
  std::size_t Piece = 0;  // place in the record line, from 0
  Reader Read = nullptr;
  Writer Write = nullptr;
  bool IsRead = true;
  bool IsSaved = true;

  // A piece of the record line. `Member` is a pointer to a member, or a captureless accessor of one.
  template <auto Member, class Form>
  static constexpr Field Line(std::size_t piece) {
    Field field = Of<Member, Form>();
    field.Piece = piece;
    return field;
  }

  // A key of the section, read with the given default.
  template <auto Member, class Form>
  static constexpr Field Key(std::string_view key, std::string_view fallback = "") {
    Field field = Of<Member, Form>();
    field.SectionKey = key;
    field.Fallback = fallback;
    return field;
  }

  constexpr Field Means(std::string_view title, Unit unit = Unit::None) const {
    Field field = *this;
    field.Title = title;
    field.FileUnit = unit;
    return field;
  }

  constexpr Field In(std::string_view section) const {
    Field field = *this;
    field.Section = section;
    return field;
  }

  constexpr Field OnlyRead() const {
    Field field = *this;
    field.IsSaved = false;
    return field;
  }

  constexpr Field OnlySaved() const {
    Field field = *this;
    field.IsRead = false;
    return field;
  }

  // The saved text is derived from the whole record instead of the member.
  constexpr Field SavedAs(Writer writer) const {
    Field field = *this;
    field.Write = writer;
    field.IsSaved = true;
    return field;
  }

  constexpr bool IsLinePiece() const { return SectionKey.empty(); }

 private:
  template <auto Member, class Form>
  static constexpr Field Of() {
    Field field;
    field.Values = Form::Values;
    field.Read = [](std::string_view text, const StepFactors& factors, Record& record) {
      AssignIf(std::invoke(Member, record), Form::Read(text, factors));
    };
    constexpr bool canWrite = requires(const Record& record, const StepFactors& factors) {
      Form::Write(std::invoke(Member, record), factors);
    };
    field.IsSaved = canWrite;
    if constexpr (canWrite) {
      field.Write = [](const Record& record, const StepFactors& factors) {
        return Form::Write(std::invoke(Member, record), factors);
      };
    }
    return field;
  }
};

// True when the saved rows fill every piece of a line of that length exactly once: a forgotten or doubled
// piece is a compile error where a table asserts it.
template <class Record>
constexpr bool CoversLine(std::span<const Field<Record>> fields, std::size_t pieces) {
  for (std::size_t piece = 0; piece < pieces; ++piece) {
    int rows = 0;
    for (const auto& field : fields) {
      rows += field.IsLinePiece() && field.IsSaved && field.Piece == piece ? 1 : 0;
    }
    if (rows != 1) {
      return false;
    }
  }
  return true;
}

template <class Record>
struct RecordTable {
  std::span<const Field<Record>> Fields;
  std::size_t Pieces = 0;                   // length of the record line
  std::string Record::*Identity = nullptr;  // the member that carries the item number
};

// Joins the fields with "," and writes them under the key. Trailing empty fields disappear with their
// separators.
Status WriteFieldList(const SettingsFiles& settings, std::string_view section, std::string_view key,
                      std::span<const std::string> fields, std::string_view file);

// The pieces of the record line of an item: none when it is missing, nullopt when it cannot be read.
std::optional<std::vector<std::string>> ReadRecordLine(const SettingsFiles& settings,
                                                       std::string_view section, std::string_view key,
                                                       std::string_view file);

// Fills the record from the pieces of its line and from the section's keys. What is missing or does not
// convert keeps the value that the record came with.
template <class Record>
void LoadInto(Record& record, std::span<const Field<Record>> fields, std::span<const std::string> pieces,
              const Configuration& configuration, std::string_view section, std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  for (const auto& field : fields) {
    if (!field.IsRead) {
      continue;
    }
    if (!field.IsLinePiece()) {
      const auto source = field.Section.empty() ? section : field.Section;
      if (const auto text =
              configuration.Settings.ReadValue(source, field.SectionKey, file, field.Fallback)) {
        field.Read(*text, factors, record);
      }
    } else if (field.Piece < pieces.size()) {
      field.Read(pieces[field.Piece], factors, record);
    }
  }
}

// A fresh record from the line and keys of an item. An empty file means ConfigFilePath.
template <class Record>
Record LoadRecord(const RecordTable<Record>& table, const Configuration& configuration,
                  std::string_view section, const std::string& item, std::string_view file) {
  const auto path = configuration.Settings.Resolved(file);
  const auto pieces = ReadRecordLine(configuration.Settings, section, ItemKey(item), path);
  Record record;
  record.*table.Identity = item;
  record.IsUnread = !pieces;
  LoadInto<Record>(record, table.Fields, pieces.value_or(std::vector<std::string>{}), configuration, section,
                   path);
  return record;
}

// The same for tables that know an installed record: an empty item stands for it and receives its number.
template <class Record>
Record LoadInstalledOr(const RecordTable<Record>& table, const Configuration& configuration,
                       std::string_view section, std::string& item, std::string_view file) {
  if (item.empty()) {
    const auto path = configuration.Settings.Resolved(file);
    AssignIf(item, configuration.Settings.ReadValue(section, "Installed", path));
  }
  return LoadRecord(table, configuration, section, item, file);
}

// Writes the section keys of the rows, in their order.
template <class Record>
void SaveKeys(const Record& record, std::span<const Field<Record>> fields, const Configuration& configuration,
              std::string_view section, std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  for (const auto& field : fields) {
    if (field.IsSaved && !field.IsLinePiece()) {
      if (const auto text = field.Write(record, factors)) {
        PassOver(configuration.Settings.WriteValue(section, field.SectionKey, file, *text));
      }
    }
  }
}

// Writes the section keys first, then the record line under the record's item number.
template <class Record>
void SaveRecord(const RecordTable<Record>& table, const Record& record, const Configuration& configuration,
                std::string_view section, std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  std::vector<std::string> pieces(table.Pieces);
  for (const auto& field : table.Fields) {
    if (field.IsSaved && field.IsLinePiece()) {
      AssignIf(pieces[field.Piece], field.Write(record, factors));
    }
  }
  SaveKeys<Record>(record, table.Fields, configuration, section, file);
  PassOver(WriteFieldList(configuration.Settings, section, ItemKey(record.*table.Identity), pieces, file));
}

// Item numbers count in 16 bits; a table that is longer ends there.
inline constexpr int lastItemNumber = std::numeric_limits<std::int16_t>::max();

// Reads the values of numbered keys from 1 on and visits them with their number, up to the first empty one or until
// the visit says no. A value that cannot be read is left out and the walk goes on: one failed read must not cost the
// items behind it.
template <class KeyOf, class Visit>
void ForEachNumberedValue(const SettingsFiles& settings, std::string_view section, std::string_view file,
                          KeyOf keyOf, Visit visit) {
  std::string value;
  for (int number = 1; number <= lastItemNumber; ++number) {
    const auto read = settings.ReadValue(section, keyOf(number), file);
    AssignIf(value, read);
    if (value.empty() || (read && !visit(value, number))) {
      return;
    }
  }
}

// Loads item 1, 2, ... and stops at the first record that matches, or else at the first without a name: the
// record is compared first and tested for the end afterwards, so a nameless record can match. The record
// where the walk stopped is the result. A record whose line cannot be read is left out and the walk goes on: one failed
// read must not cut the table, nor give its place away as the end. Where the first cannot be read the walk ends.
template <class Load, class Matches>
auto FindRecord(Load load, Matches matches) {
  auto record = load(std::string{"1"});
  const auto isLeftOut = [&record](int item) { return record.IsUnread && item > 1; };
  for (int item = 1; isLeftOut(item) || (!matches(std::as_const(record)) && !record.Name.empty());) {
    if (++item > lastItemNumber) {
      break;
    }
    record = load(WholeText(item));
  }
  return record;
}

// Visits the records before the end of the table: the first one without a name.
template <class Load, class Visit>
void ForEachRecord(Load load, Visit visit) {
  FindRecord(std::move(load), [&visit](const auto& record) {
    if (!record.Name.empty()) {
      visit(record);
    }
    return false;
  });
}

// Visits the records of the table and the nameless one at its end as well.
template <class Load, class Visit>
void ForEachRecordAndTheEnd(Load load, Visit visit) {
  FindRecord(std::move(load), [&visit](const auto& record) {
    visit(record);
    return false;
  });
}

// Loads an item from the file; without an item, the first record whose `member` equals the name. The lookup
// always searches the configuration file and gives the end record when nothing matches. Without item and
// name: an empty record.
template <class Record>
Record LoadByItemOrName(const RecordTable<Record>& table, const Configuration& configuration,
                        std::string_view section, const std::string& item, std::string Record::*member,
                        std::string_view name, std::string_view file) {
  if (!item.empty()) {
    return LoadRecord(table, configuration, section, item, file);
  }
  if (name.empty()) {
    return {};
  }
  return FindRecord(
      [&](const std::string& number) { return LoadRecord(table, configuration, section, number, ""); },
      [&](const Record& record) { return record.*member == name; });
}

}  // namespace zolvane
