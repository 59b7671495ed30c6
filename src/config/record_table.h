// Record tables, described once: a table is a constant array of rows, and loading and saving are two loops
// over it that know no table.
//
// A row says where a member stands (a piece of the record line, or a key of the section), which member it is,
// and in which form. Rows are read and written in the order of the table, so the order of host calls is
// visible there. The oddities of single rows are named: OnlyRead, OnlySaved, SavedAs, In. Means says for
// people what the value is, and in which unit the file holds it.
#pragma once

#include <algorithm>
#include <array>
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
#include "config/conversions.h"
#include "config/field_forms.h"
#include "host/status.h"

namespace zolvane {

// Of a value as the file holds it, or as it goes to the instrument.
enum class Unit : std::uint8_t {
  None,
  Microlitres,
  Millimetres,
  HundredthMillimetres,
  MillimetresPerUnit,  // per motor step, or per file unit for the serial-dilute X and Y
  StepsPerFileUnit,
  FileUnits,  // of the serial-dilute X and Y, converted by the encoders' factor
  FileUnitsX,
  FileUnitsY,
  StepsZ,  // of a motor
  StepsS,
  StepsSDX,
  StepsSDY,
  CountsX,  // of the stage's motors
  CountsY,
};

template <class Record>
struct Field {
  using Reader = void (*)(std::string_view text, const StepFactors& factors, Record& record);
  using Writer = std::optional<std::string> (*)(const Record& record, const StepFactors& factors);

  std::string_view Section;     // of a key that stands outside the table's own section
  std::string_view SectionKey;  // empty: a piece of the record line
  std::string_view Fallback;    // what a missing key reads as
  std::string_view Title;       // empty: the key's own name, or a value that is only kept
  const ValueTexts* Values = &BareText::Values;
  Unit FileUnit = Unit::None;
  std::size_t Piece = 0;  // place in the record line, from 0
  Reader Read = nullptr;
  Writer Write = nullptr;
  bool IsRead = true;
  bool IsSaved = true;

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
};

// ---- Rows ----

template <class Record, class Value>
Record RecordWith(Value Record::* member);

// A member in a form. `Member` is a pointer to a member, or a captureless accessor of one.
template <auto Member, class Form, class Record>
constexpr Field<Record> FieldOf() {
  Field<Record> field;
  field.Values = &Form::Values;
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

// A piece of the record line, counted from 0.
template <auto Member, class Form, class Record = decltype(RecordWith(Member))>
constexpr Field<Record> InLine(std::size_t piece) {
  auto field = FieldOf<Member, Form, Record>();
  field.Piece = piece;
  return field;
}

// A key of the section, read with the given default.
template <auto Member, class Form, class Record = decltype(RecordWith(Member))>
constexpr Field<Record> UnderKey(std::string_view key, std::string_view fallback = "") {
  auto field = FieldOf<Member, Form, Record>();
  field.SectionKey = key;
  field.Fallback = fallback;
  return field;
}

// ---- Tables ----

// Records of numbered lines know their number, their name, and whether their line could be read.
template <class Record>
concept ItemRecord = requires(Record record) {
  record.ID;
  record.Name;
  record.IsUnread;
};

// The section of a table: one for the whole file, or one that is named after the records in force.
class TableSection {
 public:
  using Naming = std::string (*)(const CurrentRecords& current);

  explicit constexpr TableSection(std::string_view name) : name_{name} {}
  explicit constexpr TableSection(Naming naming) : naming_{naming} {}

  std::string Name(const CurrentRecords& current) const {
    return naming_ != nullptr ? naming_(current) : std::string{name_};
  }

 private:
  std::string_view name_;
  Naming naming_ = nullptr;
};

template <class Record>
struct RecordTable {
  // Completes a record that has been loaded from this file.
  using Step = void (*)(Record& record, const Configuration& configuration, std::string_view file);

  TableSection Section;
  std::span<const Field<Record>> Fields;
  std::size_t Pieces = 0;  // length of the record line
  Step AfterLoading = nullptr;
};

// The length of the record line of these rows, or nullopt if one of its pieces has no row or several. Items
// are saved, so the rows that are saved count; other lines are only read.
template <class Record>
constexpr std::optional<std::size_t> PiecesOf(std::span<const Field<Record>> fields) {
  const auto counts = [](const Field<Record>& field) {
    return field.IsLinePiece() && (ItemRecord<Record> ? field.IsSaved : field.IsRead);
  };
  const auto pieces = static_cast<std::size_t>(std::ranges::count_if(fields, counts));
  for (std::size_t piece = 0; piece < pieces; ++piece) {
    const auto fills = [&](const Field<Record>& field) { return counts(field) && field.Piece == piece; };
    if (std::ranges::none_of(fields, fills)) {
      return std::nullopt;
    }
  }
  return pieces;
}

// Not defined: a table that would call it does not compile.
[[noreturn]] void RowsLeaveOutOrRepeatAPieceOfTheLine();

// The table of these rows. Does not compile unless every piece of the line has exactly one row.
template <class Record, std::size_t Count>
consteval RecordTable<Record> MakeTable(TableSection section, const std::array<Field<Record>, Count>& fields,
                                        typename RecordTable<Record>::Step afterLoading = nullptr) {
  if (const auto pieces = PiecesOf<Record>(fields)) {
    return {.Section = section, .Fields = fields, .Pieces = *pieces, .AfterLoading = afterLoading};
  }
  RowsLeaveOutOrRepeatAPieceOfTheLine();
}

// ---- Lines and keys ----

inline constexpr std::string_view installedKey = "Installed";  // holds the number of the item that is fitted

// The key of item n in a table's section.
std::string ItemKey(std::string_view item);

// Joins the fields with "," and writes them under the key. Empty fields at the end
// disappear, with their separators.
Status WriteFieldList(const SettingsFiles& settings, std::string_view section, std::string_view key,
                      std::span<const std::string> fields, std::string_view file);

// The pieces of an item's record line: none if it is missing, nullopt if it cannot be read.
std::optional<std::vector<std::string>> ReadRecordLine(const SettingsFiles& settings,
                                                       std::string_view section, std::string_view key,
                                                       std::string_view file);

// Fills the record from the pieces of its line and from the section's keys. What is missing or does not
// convert keeps the value that the record came with. The file is a path.
template <class Record>
void LoadInto(Record& record, const RecordTable<Record>& table, std::span<const std::string> pieces,
              const Configuration& configuration, std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  const auto section = table.Section.Name(configuration.Current);
  for (const auto& field : table.Fields) {
    if (!field.IsRead) {
      continue;
    }
    if (!field.IsLinePiece()) {
      const auto source = field.Section.empty() ? std::string_view{section} : field.Section;
      if (const auto text =
              configuration.Settings.ReadValue(source, field.SectionKey, file, field.Fallback)) {
        field.Read(*text, factors, record);
      }
    } else if (field.Piece < pieces.size()) {
      field.Read(pieces[field.Piece], factors, record);
    }
  }
}

// ---- Load and save ----
//
// A load never fails as a whole: what is missing or does not convert is empty, zero or false. It takes a
// file, or "" for ConfigFilePath. A save takes the file that it is given; a failed write is silent.

// The one record of a table without items.
template <class Record>
  requires(!ItemRecord<Record>)
Record Load(const RecordTable<Record>& table, const Configuration& configuration,
            std::string_view file = "") {
  Record record;
  LoadInto(record, table, {}, configuration, configuration.Settings.Resolved(file));
  return record;
}

template <ItemRecord Record>
Record LoadItem(const RecordTable<Record>& table, const Configuration& configuration, const std::string& item,
                std::string_view file) {
  const auto path = configuration.Settings.Resolved(file);
  const auto section = table.Section.Name(configuration.Current);
  const auto pieces = ReadRecordLine(configuration.Settings, section, ItemKey(item), path);
  Record record;
  record.ID = item;
  record.IsUnread = !pieces;
  LoadInto(record, table, pieces.value_or(std::vector<std::string>{}), configuration, path);
  if (table.AfterLoading != nullptr) {
    table.AfterLoading(record, configuration, path);
  }
  return record;
}

// The item with this number. A missing one is empty but for its number and the section's keys. Without
// a number: an empty record.
template <ItemRecord Record>
Record Load(const RecordTable<Record>& table, const Configuration& configuration, const std::string& item,
            std::string_view file = "") {
  return item.empty() ? Record{} : LoadItem(table, configuration, item, file);
}

// The item that the file says is fitted. The key "Item" without a number stands for it where it says nothing.
template <ItemRecord Record>
Record LoadInstalled(const RecordTable<Record>& table, const Configuration& configuration,
                     std::string_view file = "") {
  const auto path = configuration.Settings.Resolved(file);
  const auto section = table.Section.Name(configuration.Current);
  const auto item = configuration.Settings.ReadValue(section, installedKey, path);
  return LoadItem(table, configuration, item.value_or(""), file);
}

template <class Record>
void SaveKeys(const RecordTable<Record>& table, const Configuration& configuration, const Record& record,
              std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  const auto section = table.Section.Name(configuration.Current);
  for (const auto& field : table.Fields) {
    if (field.IsSaved && !field.IsLinePiece()) {
      if (const auto text = field.Write(record, factors)) {
        PassOver(configuration.Settings.WriteValue(section, field.SectionKey, file, *text));
      }
    }
  }
}

template <ItemRecord Record>
void SaveLine(const RecordTable<Record>& table, const Configuration& configuration, const Record& record,
              std::string_view file) {
  const auto factors = CurrentStepFactors(configuration.Current);
  std::vector<std::string> pieces(table.Pieces);
  for (const auto& field : table.Fields) {
    if (field.IsSaved && field.IsLinePiece()) {
      AssignIf(pieces[field.Piece], field.Write(record, factors));
    }
  }
  const auto section = table.Section.Name(configuration.Current);
  PassOver(WriteFieldList(configuration.Settings, section, ItemKey(record.ID), pieces, file));
}

// Writes the section's keys first, then the record line under the record's number. The keys are single keys,
// so saving several records leaves those of the last one.
template <ItemRecord Record>
void Save(const RecordTable<Record>& table, const Configuration& configuration, const Record& record,
          std::string_view file) {
  SaveKeys(table, configuration, record, file);
  SaveLine(table, configuration, record, file);
}

// The one record of a table without items is its keys.
template <class Record>
  requires(!ItemRecord<Record>)
void Save(const RecordTable<Record>& table, const Configuration& configuration, const Record& record,
          std::string_view file) {
  SaveKeys(table, configuration, record, file);
}

// ---- Walks ----

// Item numbers count in 16 bits; a table that is longer ends there.
inline constexpr int lastItemNumber = std::numeric_limits<std::int16_t>::max();

// Reads the values of numbered keys from 1 on and visits them with their number, up to the first empty one or
// until the visit says no. A value that cannot be read is left out and the walk goes on: one failed read must
// not cost the items behind it.
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

// Loads item 1, 2, ... of a file and stops at the first record that matches, or else at the first without
// a name: the record is compared first and tested for the end afterwards, so a nameless record can match.
// The record where the walk stopped is the result. A record whose line cannot be read is left out and the
// walk goes on: one failed read must not cut the table, nor give its place away as the end. If the first
// cannot be read the walk ends.
template <ItemRecord Record, class Matches>
Record WalkTo(const RecordTable<Record>& table, const Configuration& configuration, std::string_view file,
              Matches matches) {
  auto record = Load(table, configuration, "1", file);
  const auto isLeftOut = [&record](int item) { return record.IsUnread && item > 1; };
  for (int item = 1; isLeftOut(item) || (!matches(std::as_const(record)) && !record.Name.empty());) {
    if (++item > lastItemNumber) {
      break;
    }
    record = Load(table, configuration, WholeText(item), file);
  }
  return record;
}

// The first record of the configuration file that matches, or the end of its table.
template <ItemRecord Record, class Matches>
Record Find(const RecordTable<Record>& table, const Configuration& configuration, Matches matches) {
  return WalkTo(table, configuration, "", matches);
}

// The first record whose `member` equals the name, or the end of the table. Without a name: an empty record.
template <ItemRecord Record>
Record FindByName(const RecordTable<Record>& table, const Configuration& configuration,
                  std::string Record::* member, std::string_view name) {
  if (name.empty()) {
    return {};
  }
  return Find(table, configuration, [&](const Record& record) { return record.*member == name; });
}

// Visits the records before the end of the table: the first one without a name.
template <ItemRecord Record, class Visit>
void ForEach(const RecordTable<Record>& table, const Configuration& configuration, Visit visit,
             std::string_view file = "") {
  WalkTo(table, configuration, file, [&visit](const Record& record) {
    if (!record.Name.empty()) {
      visit(record);
    }
    return false;
  });
}

// Visits the records of the table and the nameless one at its end as well.
template <ItemRecord Record, class Visit>
void ForEachAndTheEnd(const RecordTable<Record>& table, const Configuration& configuration, Visit visit) {
  WalkTo(table, configuration, "", [&visit](const Record& record) {
    visit(record);
    return false;
  });
}

}  // namespace zolvane
