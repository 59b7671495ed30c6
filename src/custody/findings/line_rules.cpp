// Lines that stand twice, that nothing reads, or that are missing.
#include <set>

#include "config/item_lists.h"
#include "config/record_table.h"
#include "config/tables/axes.h"
#include "config/tables/devices.h"
#include "config/tables/modules.h"
#include "config/tables/stage.h"
#include "config/text.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

using SeenLine = SectionedText::SeenLine;
using LineKind = SectionedText::LineKind;

std::string LineNumber(std::size_t line) {
  return "line " + std::to_string(line);
}

std::string InSection(std::string_view section) {
  return Printable(Joined("[", section, "]"));
}

// ---- Sections that wait for another device or module

// They, and the lines in them that the add-in would come to: up to the first number that is missing or, but for
// an axis, has no name.
std::set<std::string> AskedOfOtherDevices(CheckedFile& file) {
  std::set<std::string> asked;
  const auto walk = [](const auto&...) { return true; };
  file.Run(
      [&](const OperationContext& context, const std::string& path) {
        const auto& settings = context.Config.Settings;
        auto chosen = context.Config;
        ForEach(
            deviceTable, context.Config,
            [&](const DeviceTypeRecord& device) {
              chosen.Current.Device = device;
              asked.insert(IndexedAs(CalibrationSection(chosen.Current), ""));
              asked.insert(IndexedAs(PositionSection(chosen.Current), ""));
              ForEach(calibrationTable, chosen, walk, path);
              ForEach(positionTable, chosen, walk, path);
              ForEach(
                  cageTable, context.Config,
                  [&](const CageTypeRecord& cage) {
                    chosen.Current.Cage = cage;
                    const auto section = AxisSection(chosen.Current);
                    asked.insert(IndexedAs(section, ""));
                    ForEachNumberedValue(settings, section, path, AxisKey, walk);
                  },
                  path);
            },
            path);
      },
      [&asked](auto section, auto key, auto, auto) { asked.insert(IndexedAs(section, key)); });
  return asked;
}

// ---- What is missing

void AddMissingKey(CheckedFile& file, const AskedPlace& place, const FileField* field) {
  const auto name = Printable(NameOfPlace(place.Section, place.Key));
  if (!place.Fallback.empty()) {
    file.Add("default-value", file.LineOf(place.Section),
             Joined(name, " is missing: the add-in takes ", place.Fallback));
  } else if (field != nullptr &&
             (field->Values.Kind == ValueKind::Whole || field->Values.Kind == ValueKind::Real)) {
    file.Add("missing-value", file.LineOf(place.Section), Joined(name, " is missing: the add-in takes 0"));
  } else {
    file.Add("missing-key", file.LineOf(place.Section),
             Joined(name, " is missing: the add-in takes it for empty"));
  }
}

void AddMissingSection(CheckedFile& file, std::string_view name, const FileSection& section) {
  const auto line = file.LineOf(name);
  const auto* const lacks = line == 0 ? " is missing" : " has no lines";
  if (section.IsCorrection()) {
    file.Add("missing-correction", line,
             Joined(InSection(name), lacks, ": the upload sends no volume correction of it"));
  } else {
    file.Add("missing-section", line,
             Joined(InSection(name), lacks, ": all that the add-in reads from it is empty, 0 or a default"));
  }
}

bool HoldsLines(const CheckedFile& file, std::string_view section) {
  return std::ranges::any_of(file.Lines, [&](const SeenLine& line) {
    return line.Is == LineKind::Key && line.Counts && EqualIgnoringCase(line.Section, section);
  });
}

// Places of one section stand together.
void AddMissing(CheckedFile& file) {
  std::string name;
  const FileSection* section = nullptr;
  bool isThere = false;
  for (const auto& [index, place] : file.Asked) {
    if (section == nullptr || !EqualIgnoringCase(place.Section, name)) {
      name = place.Section;
      section = &FileSectionOf(name);
      const bool isOfLines = !section->BeforeNumber.empty() || section->IsCorrection();
      isThere = isOfLines ? HoldsLines(file, name) : file.Text.HasSection(name);
      if (!isThere) {
        AddMissingSection(file, name, *section);
      }
    }
    const bool isLine = section->NumberIn(place.Key) || EqualIgnoringCase(place.Key, section->BeforeNumber);
    const bool mayLack = isLine || EqualIgnoringCase(place.Key, defaultKey);
    const auto* const field = section->FieldUnder(place.Key);
    const bool isOfFile = file.Is == CheckedFile::Kind::Configuration || (field != nullptr && field->IsSaved);
    if (isThere && isOfFile && !mayLack && !file.IsWrittenByPage(place.Section, place.Key) &&
        file.LineOf(place.Section, place.Key) == 0) {
      AddMissingKey(file, place, field);
    }
  }
}

// ---- What is there and not read

class LineRules {
 public:
  explicit LineRules(CheckedFile& file) : file_{file}, waiting_{AskedOfOtherDevices(file)} {
    for (const auto& [index, place] : file.Asked) {
      asked_.insert(IndexedAs(place.Section, ""));
    }
  }

  void Check(const SeenLine& line) {
    if (line.Is == LineKind::Header) {
      CheckHeader(line);
    } else if (line.Is == LineKind::Key && !line.Section.empty()) {
      CheckKey(line);
    } else if (line.Is == LineKind::Key || line.Is == LineKind::NotUnderstood) {
      file_.Add("not-understood", line.Number,
                line.Section.empty() ? "the line stands in no section, so nothing reads it"
                                     : "the line is no key, header or comment, so nothing reads it");
    }
  }

 private:
  void CheckHeader(const SeenLine& line) {
    const auto index = IndexedAs(line.Section, "");
    section_ = &FileSectionOf(line.Section);
    isAsked_ = asked_.contains(index);
    isWaiting_ = waiting_.contains(index);
    isCounting_ = line.Counts;
    if (!line.Counts) {
      file_.Add("repeated-section", line.Number,
                Joined(InSection(line.Section), " stands here again: only the one in ",
                       LineNumber(file_.LineOf(line.Section)), " counts"));
    } else if (!isAsked_ && !isWaiting_) {
      file_.Add("unread-section", line.Number, Joined("nothing reads ", InSection(line.Section)));
    }
  }

  void CheckKey(const SeenLine& line) {
    if (!line.Counts && isCounting_) {
      file_.Add("repeated-key", line.Number,
                Joined(Printable(NameOfPlace(line.Section, line.Key)), " stands here again: only ",
                       LineNumber(file_.LineOf(line.Section, line.Key)), " counts"));
    } else if (line.Counts && isAsked_) {
      CheckAsked(line);
    } else if (line.Counts && isWaiting_ && !waiting_.contains(IndexedAs(line.Section, line.Key))) {
      AddPassedOver(line);
    }
  }

  void CheckAsked(const SeenLine& line) {
    const auto asked = file_.Asked.find(IndexedAs(line.Section, line.Key));
    const auto number = section_->NumberIn(line.Key);
    const auto name = Printable(NameOfPlace(line.Section, line.Key));
    if (asked == file_.Asked.end()) {
      AddPassedOver(line);
    } else if (number && !asked->second.IsByWalk) {
      file_.Add("only-listed", line.Number,
                Joined(name, " is offered by the page, but no operation reads it"));
    } else if (number && *number == EndOf(line).Number) {
      file_.Add("gap", line.Number,
                Joined(name, line.Value.empty() ? " is empty" : " has no name",
                       ": the numbered lines end before it"));
    } else if (number && *number > EndOf(line).Number) {
      file_.Add(
          "gap", line.Number,
          Joined(name, " is read only while it is installed: nothing else comes to it, as ", EndText(line)));
    }
  }

  void AddPassedOver(const SeenLine& line) {
    const auto name = Printable(NameOfPlace(line.Section, line.Key));
    if (section_->NumberIn(line.Key)) {
      file_.Add("gap", line.Number, Joined(name, " is never seen, as ", EndText(line)));
    } else {
      file_.Add("unread-key", line.Number, Joined("nothing reads ", name));
    }
  }

  // Why no walk comes to it.
  std::string EndText(const SeenLine& line) {
    if (section_->NumberIn(line.Key).value_or(0) < firstNumber) {
      return "the numbers begin with 1";
    }
    const auto end = EndOf(line);
    return end.IsThere ? Joined(KeyOf(end.Number), " is empty or has no name")
                       : Joined("there is no ", KeyOf(end.Number));
  }

  std::string KeyOf(int number) const {
    return Joined(section_->BeforeNumber, WholeText(number), section_->BehindNumber);
  }

  // Where the numbered lines of a section end: at the first number that it lacks, or at a line behind which nothing is
  // asked for.
  struct End {
    int Number = firstNumber;
    bool IsThere = false;
  };

  End EndOf(const SeenLine& line) {
    const auto [place, isNew] = ends_.try_emplace(IndexedAs(line.Section, ""));
    auto& end = place->second;
    const auto isThere = [&](int number) { return file_.LineOf(line.Section, KeyOf(number)) != 0; };
    while (isNew && isThere(end.Number) && !end.IsThere) {
      end.IsThere = end.Number < lastItemNumber && !IsWalkedTo(line.Section, KeyOf(end.Number + 1));
      end.Number += end.IsThere ? 0 : 1;
    }
    return end;
  }

  bool IsWalkedTo(std::string_view section, std::string_view key) const {
    const auto index = IndexedAs(section, key);
    const auto asked = file_.Asked.find(index);
    return (asked != file_.Asked.end() && asked->second.IsByWalk) || waiting_.contains(index);
  }

  static constexpr int firstNumber = 1;

  CheckedFile& file_;
  const FileSection* section_ = nullptr;
  std::set<std::string> asked_;
  std::set<std::string> waiting_;
  std::map<std::string, End> ends_;
  bool isAsked_ = false;
  bool isWaiting_ = false;
  bool isCounting_ = false;  // the section is the first of its name
};

}  // namespace

void CheckLines(CheckedFile& file) {
  AddMissing(file);
  LineRules rules{file};
  for (const auto& line : file.Lines) {
    rules.Check(line);
  }
}

}  // namespace zolvane
