#include "operations/upload_script.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "config/conversions.h"
#include "config/tables/current_records.h"
#include "config/tables/labware_tables.h"
#include "config/text.h"
#include "operations/instrument_keys.h"
#include "operations/table_walks.h"

namespace zolvane {
namespace {

using ValueText = std::optional<std::string>;

// Millimetres per step of the axes that the upload converts with. The members are held in single precision;
// every computation is made in double.
struct AxisScales {
  double Z = 0.0;
  double S = 0.0;
  double SDX = 0.0;
  double SDY = 0.0;
};

AxisScales CurrentScales(const CurrentRecords& current) {
  return {.Z = current.Axes.Z.UnitsPerStep,
          .S = current.Axes.S.UnitsPerStep,
          .SDX = current.Axes.SDX.UnitsPerStep,
          .SDY = current.Axes.SDY.UnitsPerStep};
}

// ---- Value texts ----

ValueText RoundedText(std::optional<double> value) {
  return value ? std::optional{PictureText(*value, NumberPicture::Whole)} : std::nullopt;
}

// The instrument takes the three serial-dilute distances and the nest positions in hundredths of a
// millimetre.
ValueText HundredthsText(double scale, double steps) {
  const auto millimetres = Product(scale, steps);
  return RoundedText(millimetres ? Product(*millimetres, 100.0) : std::nullopt);
}

template <class Record>
struct Command {
  std::string_view Key;
  ValueText (*Value)(const Record& record, const AxisScales& scales);
};

template <auto Member>
constexpr auto Integer =
    [](const auto& record, const AxisScales&) -> ValueText { return WholeText(record.*Member); };

template <auto Member>
constexpr auto Number =
    [](const auto& record, const AxisScales&) -> ValueText { return GeneralText(record.*Member); };

template <auto Member>
constexpr auto PerZStep = [](const auto& record, const AxisScales& scales) -> ValueText {
  return RoundedText(Quotient(record.*Member, scales.Z));
};

// These offsets are in steps of the S axis or the Z axis; all are converted with the Z scale.
template <auto Member>
constexpr auto TimesZStep = [](const auto& record, const AxisScales& scales) -> ValueText {
  return HundredthsText(scales.Z, record.*Member);
};

// ---- The script ----

class ScriptBuilder {
 public:
  explicit ScriptBuilder(Configuration& configuration)
      : Config{configuration}, Scales{CurrentScales(configuration.Current)} {}

  Configuration& Config;
  const AxisScales Scales;

  void Append(std::string_view key, const ValueText& value) {
    if (value) {
      text_.append("SET_CALIBRATION ").append(key).append(" ").append(*value).append(lineBreak);
    }
  }

  template <class Record>
  void AppendAll(std::span<const Command<Record>> commands, const Record& record) {
    for (const auto& command : commands) {
      Append(command.Key, command.Value(record, Scales));
    }
  }

  void AppendLines(std::string_view lines) { text_.append(lines); }

  std::string Finished() && {
    AppendLines("SET_CALIBRATION SAVE\r\n");
    return std::move(text_);
  }

 private:
  std::string text_;
};

std::string Joined(std::string_view first, std::string_view middle, std::string_view last) {
  return std::string{first}.append(middle).append(last);
}

// ---- Stage positions ----

void AppendPositions(ScriptBuilder& script, std::span<const PositionKeys> positions,
                     std::int32_t PositionRecord::*x, std::int32_t PositionRecord::*y) {
  for (const auto& keys : positions) {
    const auto position = LoadPosition(script.Config, "", keys.PositionName, "");
    script.Append(Joined(keys.InstrumentName, "", "_X"), WholeText(position.*x));
    script.Append(Joined(keys.InstrumentName, "", "_Y"), WholeText(position.*y));
  }
}

void AppendStagePositions(ScriptBuilder& script) {
  ReloadCurrentDevice(script.Config);
  AppendPositions(script, stagePositions, &PositionRecord::Field4, &PositionRecord::Field5);
}

// ---- Heights ----

using Z = ZCalibrationRecord;

constexpr std::array<Command<Z>, 18> heightCommands{{
    {"MountHeight", PerZStep<&Z::MountHeight>},
    {"StageHeightLower", PerZStep<&Z::StageHeightLower>},
    {"StageHeightUpper", PerZStep<&Z::StageHeightUpper>},
    {"HeadDepth_1ChShort", PerZStep<&Z::HeadDepth_1ch_Short>},
    {"HeadDepth_1ChLong", PerZStep<&Z::Headdepth_1ch_Long>},
    {"HeadDepth_8Ch", PerZStep<&Z::HeadDepth_8ch>},
    {"HeadDepth_12Ch", PerZStep<&Z::HeadDepth_12ch>},
    {"HeadDepth_96_384", PerZStep<&Z::HeadDepth_96_384>},
    {"HeadDepth_TeachTool_1Ch", PerZStep<&Z::HeadDepth_TeachTool_1Ch>},
    {"HeadDepth_TeachTool_96_384", PerZStep<&Z::HeadDepth_TeachTool_96_384>},
    {"NestDepth_Y", PerZStep<&Z::NestDepth_Y>},
    {"NestDepth_XY_6", PerZStep<&Z::NestDepth_XY_6>},
    {"TipMountDepth12", PerZStep<&Z::TipMountDepth12>},
    {"TipMountDepth30", PerZStep<&Z::TipMountDepth30>},
    {"TipMountDepth125", PerZStep<&Z::TipMountDepth125>},
    {"TipMountDepth300", PerZStep<&Z::TipMountDepth300>},
    {"TipMountDepth1250", PerZStep<&Z::TipMountDepth1250>},
    {"Delta_Z", Number<&Z::DeltaZ>},
}};

void AppendHeights(ScriptBuilder& script) {
  script.AppendAll<Z>(heightCommands, script.Config.Current.Heights);
}

// ---- Tip and head change ----

using H = HeadTypeRecord;

void AppendTipAndHeadChange(ScriptBuilder& script) {
  const auto cage = FindMicrotiterCage(script.Config);
  const auto isChangeHead = [](const H& head) { return head.Code == "MICROTITER" && head.Field5 == 96; };
  const auto head = FindRecord(Heads(script.Config), isChangeHead);
  if (!isChangeHead(head)) {
    return;
  }
  // Both changes happen at the head's one drop-off height.
  script.Append("TipChange_Z", GeneralText(head.Field14));
  script.Append("TipChange_S", WholeText(cage.Field7));
  script.Append("HeadChange_Z", GeneralText(head.Field14));
  script.Append("HeadChange_S", WholeText(cage.Field5));
  script.Append("AspirateOrigin_96_384", WholeText(head.Field12));
}

// ---- Serial-dilute heads and the teach tool ----

constexpr std::array<Command<H>, 5> shortHeadCommands{{
    {"HeadEject_SD_S", Integer<&H::Field10>},
    {"HeadLock_SD_S", Integer<&H::Field11>},
    {"SDHomeSensorSeekOffsetMM", TimesZStep<&H::SDHomeSensorSeekOffsetMM>},
    {"SDPreCollectHeightMM", TimesZStep<&H::SDPreCollectHeightMM>},
    {"SDRFIDReadHeightMM", TimesZStep<&H::SDRFIDReadHeightMM>},
}};

struct HeadRow {
  std::string_view Code;
  std::string_view ChannelCode;
  std::string_view InstrumentName;            // between "PickUp_" or "DropOff_" and "_Z"
  std::span<const Command<H>> OwnCommands{};  // in front of the two heights
};

constexpr std::array<HeadRow, 5> headRows{{
    {"SERIALDILUTE", "1_CH_SHORT", "1ChShort", shortHeadCommands},
    {"SERIALDILUTE", "1_CH_LONG", "1ChLong"},
    {"SERIALDILUTE", "8_CH", "8Ch"},
    {"SERIALDILUTE", "12_CH", "12Ch"},
    {"CALIBRATE", "1_CH_SHORT", "TeachTool"},
}};

void AppendSerialDiluteHeads(ScriptBuilder& script) {
  for (const auto& row : headRows) {
    const auto matches = [&row](const H& head) {
      return head.Code == row.Code && head.ChannelCode == row.ChannelCode;
    };
    const auto head = FindRecord(Heads(script.Config), matches);
    if (matches(head)) {
      script.AppendAll(row.OwnCommands, head);
      script.Append(Joined("PickUp_", row.InstrumentName, "_Z"), GeneralText(head.Field15));
      script.Append(Joined("DropOff_", row.InstrumentName, "_Z"), GeneralText(head.Field14));
    }
  }
}

// ---- Tip racks ----

using T = TipTypeRecord;

constexpr std::array<Command<T>, 3> smallRackCommands{{
    {"RackPickup_12_300_Z", PerZStep<&T::Field8>},
    {"RackEject_12_300_Z", PerZStep<&T::Field7>},
    {"ChuteEject_Z", Integer<&T::Field9>},
}};

constexpr std::array<Command<T>, 2> largeRackCommands{{
    {"RackPickup_1250_Z", PerZStep<&T::Field8>},
    {"RackEject_1250_Z", PerZStep<&T::Field7>},
}};

void AppendRack(ScriptBuilder& script, bool T::*sizeFlag, std::span<const Command<T>> commands) {
  const auto matches = [sizeFlag](const T& tip) { return tip.Code == "SERIALDILUTE" && tip.*sizeFlag; };
  const auto tip = FindRecord(Tips(script.Config), matches);
  if (matches(tip)) {
    script.AppendAll(commands, tip);
  }
}

void AppendTipRacks(ScriptBuilder& script) {
  AppendRack(script, &T::Field15, smallRackCommands);
  AppendRack(script, &T::Field14, largeRackCommands);
}

// ---- Tip eject and aspirate origin ----

void AppendTipEject(ScriptBuilder& script) {
  ForEachRecordAndTheEnd(Heads(script.Config), [&script](const H& head) {
    const auto keys = head.Code == "SERIALDILUTE" ? TipEjectKeysOf(head) : std::nullopt;
    if (!keys) {
      return;
    }
    const auto steps = Quotient(head.Field13, script.Scales.S);
    script.Append(keys->TipEject, steps ? std::optional{NegatedPictureText(*steps)} : std::nullopt);
    script.Append(keys->AspirateOrigin, WholeText(head.Field12));
  });
}

// ---- Nests ----

// A class of nests and the instrument's names of its three places.
struct NestRow {
  std::string_view Code;
  std::array<std::string_view, 3> Places;
};

constexpr std::array<NestRow, 2> nestRows{{
    {"NEST8", {"1A", "8B", "1C"}},
    {"NEST12", {"1E", "12D", "1F"}},
}};

void AppendNestHeights(ScriptBuilder& script) {
  ForEachRecord(Nests(script.Config), [&script](const NestTypeRecord& nest) {
    for (const auto& row : nestRows) {
      for (std::size_t place = 0; nest.Code == row.Code && place < row.Places.size(); ++place) {
        script.Append(Joined("Nest_", row.Places[place], "_Z"), WholeText(nest.Nests[place].Z));
      }
    }
  });
}

// Unlike the heights, only the first nest of each class has its positions sent.
void AppendNestPositions(ScriptBuilder& script, const NestRow& row) {
  const auto matches = [&row](const NestTypeRecord& nest) { return nest.Code == row.Code; };
  const auto nest = FindRecord(Nests(script.Config), matches);
  for (std::size_t place = 0; matches(nest) && place < row.Places.size(); ++place) {
    const auto& position = nest.Nests[place];
    script.Append(Joined("NEST_", row.Places[place], "_SD_X"), HundredthsText(script.Scales.SDX, position.X));
    script.Append(Joined("NEST_", row.Places[place], "_SD_Y"), HundredthsText(script.Scales.SDY, position.Y));
  }
}

void AppendSerialDiluteXY(ScriptBuilder& script) {
  AppendPositions(script, serialDilutePositions, &PositionRecord::X, &PositionRecord::Y);
  for (const auto& row : nestRows) {
    AppendNestPositions(script, row);
  }
}

// ---- Volume precision ----

// The 8- and 12-channel heads have no correction for 125 microlitres.
constexpr std::array<std::pair<std::string_view, std::string_view>, 11> correctedHeads{{
    {"1_CH_LONG", "12.5"},
    {"1_CH_LONG", "30"},
    {"1_CH_LONG", "125"},
    {"1_CH_LONG", "300"},
    {"1_CH_SHORT", "1250"},
    {"8_CH", "12.5"},
    {"8_CH", "30"},
    {"8_CH", "300"},
    {"12_CH", "12.5"},
    {"12_CH", "30"},
    {"12_CH", "300"},
}};

void AppendVolumePrecision(ScriptBuilder& script) {
  for (const auto& [headName, tipVolume] : correctedHeads) {
    script.AppendLines(BuildVolumeCorrection(script.Config, headName, tipVolume, ""));
  }
  ForEachRecord(Tips(script.Config), [&script](const T& tip) {
    if (!tip.Field18.empty()) {
      script.AppendLines(BuildVolumeCorrection(script.Config, "", "", tip.Field18));
    }
  });
}

std::string VolumeItemKey(int number) {
  return WholeText(number) + "Item";
}

// The line of one correction: its third piece is the instrument's key, its second the factor, sent in hundred
// thousandths. An item that is too short has no line.
std::string VolumeCorrectionLine(std::span<const std::string> pieces) {
  constexpr std::size_t factorPiece = 1;
  constexpr std::size_t keyPiece = 2;
  if (pieces.size() <= keyPiece) {
    return {};
  }
  const auto key = WithoutQuotes(pieces[keyPiece]);
  const auto value = RoundedText(Product(LeadingNumber(pieces[factorPiece]), 100000.0));
  if (key.empty() || !value) {
    return {};
  }
  return "SET_CALIBRATION " + key + " " + *value + "\r\n";
}

// ---- All groups ----

struct ScriptGroup {
  std::string_view Name;  // empty: goes on under the name of the group before
  void (*Append)(ScriptBuilder& script);
};

constexpr std::array<ScriptGroup, 9> scriptGroups{{
    {"Stage XY", AppendStagePositions},
    {"Heights", AppendHeights},
    {"", AppendTipAndHeadChange},
    {"", AppendSerialDiluteHeads},
    {"", AppendTipRacks},
    {"", AppendTipEject},
    {"", AppendNestHeights},
    {"SD XY", AppendSerialDiluteXY},
    {"Volume Precision", AppendVolumePrecision},
}};

}  // namespace

std::string BuildUploadScript(Configuration& configuration, const GroupAnnouncement& announce) {
  ScriptBuilder script{configuration};
  for (const auto& group : scriptGroups) {
    if (!group.Name.empty() && announce) {
      announce(group.Name);
    }
    group.Append(script);
  }
  return std::move(script).Finished();
}

std::string BuildVolumeCorrection(const Configuration& configuration, std::string_view headName,
                                  std::string_view tipVolume, std::string_view section) {
  const auto source =
      section.empty() ? Joined("VolumeCorrection_", headName, "_").append(tipVolume) : std::string{section};
  const auto& settings = configuration.Settings;
  std::string lines;
  const auto appendItem = [&](const std::string& item, int /*number*/) {
    lines += VolumeCorrectionLine(settings.SplitText(",", item));
    return true;
  };
  ForEachNumberedValue(settings, source, settings.ConfigFilePath(), VolumeItemKey, appendItem);
  return lines;
}

}  // namespace zolvane
