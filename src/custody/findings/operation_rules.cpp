// What the page and the operations make of a configuration.
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <span>

#include "config/tables/axes.h"
#include "config/tables/current_records.h"
#include "config/tables/devices.h"
#include "config/tables/modules.h"
#include "config/tables/stage.h"
#include "config/text.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "custody/values/values.h"
#include "operations/instrument_keys.h"
#include "operations/upload_script.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// ---- The page

void CheckPage(CheckedFile& file) {
  for (const auto& write : file.PageWrites) {
    if (file.Changes(write)) {
      const auto before = file.Text.Find(write.Section, write.Key);
      const auto line = file.LineOf(write.Section, write.Key);
      file.Add("page-changes", before ? line : file.LineOf(write.Section),
               Joined(Printable(NameOfPlace(write.Section, write.Key)),
                      before ? Joined(" is ", Shown(*before), ", which fits no entry of the page")
                             : std::string{" is missing"},
                      ": opening the page makes ", Shown(write.Text), " of it"));
    }
  }
}

// ---- Factors that are zero

using Script = std::vector<UploadLine>;
using Change = std::function<void(const OperationContext& context)>;

// The upload, with changes before and behind the loading of the records.
Script UploadWith(CheckedFile& file, const Change& ofFile, const Change& ofRecords) {
  Script script;
  file.Run([&](const OperationContext& context, const std::string&) {
    ofFile(context);
    RefreshCurrentRecords(context.Config);
    ofRecords(context);
    script = BuildUploadLines(context.Config, nullptr);
  });
  return script;
}

constexpr auto nothing = [](const OperationContext&) {};

std::string InBrackets(const std::vector<std::string>& keys) {
  std::string list;
  for (const auto& key : keys) {
    list += Joined(list.empty() ? " (" : ", ", Printable(key));
  }
  return list.empty() ? list : list + ")";
}

// Lines of the upload that a factor has a part in.
struct Touched {
  std::vector<std::string> Missing;  // not sent, as it is 0
  std::vector<std::string> Sent;
};

// Those that another factor gives another value.
Touched TouchedBy(const Script& now, const Script& with) {
  Touched touched;
  for (std::size_t index = 0; index < std::min(now.size(), with.size()); ++index) {
    if (now[index].Value != with[index].Value) {
      (now[index].Value ? touched.Sent : touched.Missing).push_back(now[index].Key);
    }
  }
  return touched;
}

void AddZeroFactor(CheckedFile& file, const Touched& lines, std::string_view factor, std::size_t line) {
  if (!lines.Missing.empty() || !lines.Sent.empty()) {
    file.Add("zero-factor", line,
             Joined(factor, " is 0 or missing: the upload leaves out ", CountOf(lines.Missing.size(), "line"),
                    InBrackets(lines.Missing), " and sends ", CountOf(lines.Sent.size(), "line"),
                    " with a wrong value", InBrackets(lines.Sent)));
  }
}

struct FactorAxis {
  std::string_view Name;
  AxisRecord AxisSlots::* Slot;
};

constexpr auto factorAxes = std::to_array<FactorAxis>(
    {{"Z", &AxisSlots::Z}, {"S", &AxisSlots::S}, {"SDX", &AxisSlots::SDX}, {"SDY", &AxisSlots::SDY}});

struct AxisLine {
  std::size_t Number = 0;
  bool HasScale = true;
};

AxisLine LineOfAxis(const CheckedFile& file, const std::string& section, std::string_view axis) {
  constexpr std::size_t scalePiece = 1;
  for (int number = 1; const auto line = file.Text.Find(section, AxisKey(number)); ++number) {
    const auto pieces = PiecesOf(*line);
    if (!pieces.empty() && WithoutQuotes(pieces.front()) == axis) {
      return {.Number = file.LineOf(section, AxisKey(number)),
              .HasScale = pieces.size() > scalePiece && StrictNumber(pieces[scalePiece])};
    }
  }
  return {.Number = file.LineOf(section)};
}

void CheckScale(CheckedFile& file, const CurrentRecords& current, const FactorAxis& axis, const Script& now) {
  const auto line = LineOfAxis(file, AxisSection(current), axis.Name);
  const auto scale = (current.Axes.*axis.Slot).UnitsPerStep;
  if (scale != 0.0F && line.HasScale) {
    return;
  }
  const auto lines = TouchedBy(now, UploadWith(file, nothing, [&](const OperationContext& context) {
                                 (context.Config.Current.Axes.*axis.Slot).UnitsPerStep = scale + 1.0F;
                               }));
  if (scale == 0.0F) {
    AddZeroFactor(file, lines, Joined("the scale of the axis ", axis.Name), line.Number);
  } else {
    file.Add("inherited-factor", line.Number,
             Joined("the scale of the axis ", axis.Name,
                    " is missing or no number: the add-in keeps what it had before, and sends ",
                    CountOf(lines.Sent.size(), "line"), " by it", InBrackets(lines.Sent)));
  }
}

// The last line of an axis counts.
void CheckAxisNames(CheckedFile& file, const std::string& section) {
  std::map<std::string, int> numbers;
  for (int number = 1; const auto line = file.Text.Find(section, AxisKey(number)); ++number) {
    const auto pieces = PiecesOf(*line);
    const auto axis = pieces.empty() ? std::string{} : WithoutQuotes(pieces.front());
    const auto [first, isNew] = numbers.try_emplace(axis, number);
    if (!isNew) {
      file.Add("repeated-name", file.LineOf(section, AxisKey(number)),
               Joined(Printable(NameOfPlace(section, AxisKey(number))), ": the axis ", Shown(axis),
                      " stands in ", AxisKey(first->second), " already, and the add-in takes it from here"));
    }
  }
}

void CheckFactors(CheckedFile& file, const CurrentRecords& current, const Script& now) {
  CheckAxisNames(file, AxisSection(current));
  for (const auto& axis : factorAxes) {
    CheckScale(file, current, axis, now);
  }
  if (SDXYStepFactor(current.Device) == 0.0) {
    const auto key = current.Device.SDXYEncoderStatus ? stepFactorOnKey : stepFactorOffKey;
    const auto with = UploadWith(
        file,
        [key](const OperationContext& context) {
          const auto& settings = context.Config.Settings;
          PassOver(settings.WriteValue(deviceTypeSection, key, settings.ConfigFilePath(), "1"));
        },
        nothing);
    AddZeroFactor(file, TouchedBy(now, with), key, file.LineOf(deviceTypeSection, key));
  }
}

// ---- What the upload looks for

// "1612 for STAGE1_X".
std::string SentFor(const Script& script, std::string_view key) {
  const auto line = std::ranges::find(script, key, &UploadLine::Key);
  return Joined(line == script.end() ? "nothing" : line->Value.value_or("nothing"), " for ", key);
}

void CheckPosition(CheckedFile& file, const Configuration& configuration, const PositionKeys& keys,
                   const Script& script) {
  const auto found =
      FindByName(positionTable, configuration, &PositionRecord::PositionName, keys.PositionName);
  if (found.PositionName != keys.PositionName) {
    const auto section = PositionSection(configuration.Current);
    file.Add("missing-position", file.LineOf(section),
             Joined(Printable(Joined("[", section, "]")), " has no position ", keys.PositionName,
                    ": the upload sends ", SentFor(script, keys.X), " and ", SentFor(script, keys.Y)));
  }
}

// The first one of a name counts.
void CheckPositionNames(CheckedFile& file, const Configuration& configuration) {
  const auto section = PositionSection(configuration.Current);
  std::map<std::string, std::string> known;
  ForEach(positionTable, configuration, [&](const PositionRecord& position) {
    const auto key = ItemKey(position.ID);
    const auto [first, isNew] = known.try_emplace(position.PositionName, key);
    if (!isNew) {
      file.Add("repeated-name", file.LineOf(section, key),
               Joined(Printable(NameOfPlace(section, key)), ": the place ", Shown(position.PositionName),
                      " stands in ", first->second, " already, and the upload takes it from there"));
    }
  });
}

void CheckPositions(CheckedFile& file, const Configuration& configuration, const Script& script) {
  CheckPositionNames(file, configuration);
  for (const auto positions : {std::span<const PositionKeys>{stagePositions},
                               std::span<const PositionKeys>{serialDilutePositions}}) {
    for (const auto& keys : positions) {
      CheckPosition(file, configuration, keys, script);
    }
  }
}

// The module of the 96 and 384 channels is found by its class, and else sent as 0.
void CheckTipChange(CheckedFile& file, const Configuration& configuration, const Script& script) {
  constexpr std::string_view key = "TipChange_S";
  const bool isSent = std::ranges::find(script, key, &UploadLine::Key) != script.end();
  if (isSent && FindMicrotiterCage(configuration).Code != code::microtiter) {
    file.Add(
        "missing-class", file.LineOf(cageTypeSection),
        Joined(Printable(Joined("[", cageTypeSection, "]")), " has no module of the class ", code::microtiter,
               ": the upload sends ", SentFor(script, key), " and ", SentFor(script, "HeadChange_S")));
  }
}

// Where a volume correction names that key, the last time; 0 if none does.
std::size_t LineOfCorrection(const CheckedFile& file, std::string_view key) {
  std::size_t found = 0;
  for (const auto& line : file.Lines) {
    if (line.Counts && line.Is == SectionedText::LineKind::Key &&
        FileSectionOf(line.Section).IsCorrection()) {
      const auto correction = CorrectionIn(PiecesOf(line.Value));
      found = correction && correction->Key == key ? line.Number : found;
    }
  }
  return found;
}

void CheckOverridden(CheckedFile& file, const Script& script) {
  Values lines;
  for (const auto& line : script) {
    if (line.Value) {
      lines.Add({.Name = line.Key, .Text = line.Value});
    }
  }
  for (const auto& earlier : lines.Overridden()) {
    const auto first = earlier.Text.value_or("");
    const auto last = lines.TextOf(earlier.Name).value_or("");
    const bool isSame = SameText(first, last);
    file.Add(isSame ? "sent-twice" : "overridden", LineOfCorrection(file, earlier.Name),
             Joined("the upload sends ", Printable(earlier.Name), " more than once: ",
                    isSame ? "each time " : Joined(Shown(first), ", and at the end "), Shown(last)));
  }
}

}  // namespace

void CheckOperations(CheckedFile& file) {
  CheckPage(file);
  file.Run([&file](const OperationContext& context, const std::string&) {
    auto& configuration = context.Config;
    RefreshCurrentRecords(configuration);
    const auto script = BuildUploadLines(configuration, nullptr);
    CheckFactors(file, configuration.Current, script);
    CheckOverridden(file, script);
    CheckPositions(file, configuration, script);
    CheckTipChange(file, configuration, script);
    CheckItems(file, configuration);
    CheckRounding(file, configuration.Current, script);
  });
}

}  // namespace zolvane
