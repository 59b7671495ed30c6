// What the page and the operations make of a configuration.
#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

#include "config/tables/axes.h"
#include "config/tables/current_records.h"
#include "config/tables/devices.h"
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
    const auto before = file.Text.Find(write.Section, write.Key);
    if (before && !SameText(*before, write.Text)) {
      file.Add("page-changes", file.LineOf(write.Section, write.Key),
               Joined(Printable(NameOfPlace(write.Section, write.Key)), " is ", Shown(*before),
                      ", which fits no entry of the page: opening it makes ", Shown(write.Text), " of it"));
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

// Which lines a factor of 1 instead of 0 would give another value.
void AddZeroFactor(CheckedFile& file, const Script& now, const Script& with, std::string_view factor,
                   std::size_t line) {
  std::vector<std::string> missing;
  std::vector<std::string> wrong;
  for (std::size_t index = 0; index < std::min(now.size(), with.size()); ++index) {
    if (now[index].Value != with[index].Value) {
      (now[index].Value ? wrong : missing).push_back(now[index].Key);
    }
  }
  if (!missing.empty() || !wrong.empty()) {
    file.Add("zero-factor", line,
             Joined(factor, " is 0 or missing: of the upload ", CountOf(missing.size(), "line"), " fall out",
                    InBrackets(missing), " and ", CountOf(wrong.size(), "line"),
                    " are sent with a wrong value", InBrackets(wrong)));
  }
}

struct FactorAxis {
  std::string_view Name;
  AxisRecord AxisSlots::* Slot;
};

constexpr auto factorAxes = std::to_array<FactorAxis>(
    {{"Z", &AxisSlots::Z}, {"S", &AxisSlots::S}, {"SDX", &AxisSlots::SDX}, {"SDY", &AxisSlots::SDY}});

std::size_t LineOfAxis(const CheckedFile& file, const std::string& section, std::string_view axis) {
  const auto keyOf = [&](int number) {
    return Joined(FileSectionOf(section).BeforeNumber, WholeText(number));
  };
  for (int number = 1; const auto line = file.Text.Find(section, keyOf(number)); ++number) {
    const auto pieces = PiecesOf(*line);
    if (!pieces.empty() && WithoutQuotes(pieces.front()) == axis) {
      return file.LineOf(section, keyOf(number));
    }
  }
  return file.LineOf(section);
}

void CheckFactors(CheckedFile& file, const CurrentRecords& current, const Script& now) {
  const auto section = AxisSection(current);
  for (const auto& axis : factorAxes) {
    if ((current.Axes.*axis.Slot).UnitsPerStep == 0.0F) {
      const auto with = UploadWith(file, nothing, [&axis](const OperationContext& context) {
        (context.Config.Current.Axes.*axis.Slot).UnitsPerStep = 1.0F;
      });
      AddZeroFactor(file, now, with, Joined("the scale of the axis ", axis.Name),
                    LineOfAxis(file, section, axis.Name));
    }
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
    AddZeroFactor(file, now, with, key, file.LineOf(deviceTypeSection, key));
  }
}

// ---- What the upload looks for

void CheckPosition(CheckedFile& file, const Configuration& configuration, const PositionKeys& keys) {
  const auto found =
      FindByName(positionTable, configuration, &PositionRecord::PositionName, keys.PositionName);
  if (found.PositionName != keys.PositionName) {
    const auto section = PositionSection(configuration.Current);
    file.Add("missing-position", file.LineOf(section),
             Joined(Printable(Joined("[", section, "]")), " has no position ", keys.PositionName,
                    ": the upload sends 0 for ", keys.X, " and ", keys.Y));
  }
}

void CheckPositions(CheckedFile& file, const Configuration& configuration) {
  for (const auto positions : {std::span<const PositionKeys>{stagePositions},
                               std::span<const PositionKeys>{serialDilutePositions}}) {
    for (const auto& keys : positions) {
      CheckPosition(file, configuration, keys);
    }
  }
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
    file.Add(isSame ? "sent-twice" : "overridden", 0,
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
    CheckPositions(file, configuration);
    CheckItems(file, configuration);
    CheckRounding(file, configuration.Current, script);
  });
}

}  // namespace zolvane
