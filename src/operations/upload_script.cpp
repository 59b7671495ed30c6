#include "operations/upload_script.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "config/conversions.h"
#include "config/tables/current_records.h"
#include "config/tables/heads.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"
#include "config/text.h"
#include "host/instrument_link.h"
#include "operations/instrument_keys.h"

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

// The instrument takes the three serial-dilute distances and the nest positions in
// hundredths of a millimetre.
ValueText HundredthsText(double scale, double steps) {
  const auto millimetres = Product(scale, steps);
  return RoundedText(millimetres ? Product(*millimetres, 100.0) : std::nullopt);
}

template <class Record>
struct Command {
  std::string_view Key;
  ValueText (*Value)(const Record& record, const AxisScales& scales);
  Unit SentIn = Unit::StepsZ;
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

std::string SettingLine(std::string_view setting) {
  return std::string{settingStart}.append(setting).append(lineBreak);
}

std::string ScriptOf(std::span<const UploadLine> lines) {
  std::string script;
  for (const auto& line : lines) {
    if (line.Value) {
      script += SettingLine(std::string{line.Key}.append(" ").append(*line.Value));
    }
  }
  return script;
}

class ScriptBuilder {
 public:
  explicit ScriptBuilder(Configuration& configuration)
      : Config{configuration}, Scales{CurrentScales(configuration.Current)} {}

  Configuration& Config;
  const AxisScales Scales;
  std::string_view Group;  // of the lines that follow
  std::vector<UploadLine> Lines;

  void Append(std::string_view key, ValueText value, Unit sentIn) {
    Lines.push_back({.Group = Group, .Key = std::string{key}, .Value = std::move(value), .SentIn = sentIn});
  }

  template <class Record>
  void AppendAll(std::span<const Command<Record>> commands, const Record& record) {
    for (const auto& command : commands) {
      Append(command.Key, command.Value(record, Scales), command.SentIn);
    }
  }
};

// ---- Stage positions ----

struct Coordinate {
  std::int32_t PositionRecord::* Member;
  Unit SentIn;
};

// A position that the file lacks is the empty record at the end of the table, and is sent as 0, 0.
void AppendPositions(ScriptBuilder& script, std::span<const PositionKeys> positions, const Coordinate& x,
                     const Coordinate& y) {
  for (const auto& keys : positions) {
    const auto position =
        FindByName(positionTable, script.Config, &PositionRecord::PositionName, keys.PositionName);
    script.Append(keys.X, WholeText(position.*x.Member), x.SentIn);
    script.Append(keys.Y, WholeText(position.*y.Member), y.SentIn);
  }
}

void AppendStagePositions(ScriptBuilder& script) {
  ReloadCurrentDevice(script.Config);
  AppendPositions(script, stagePositions, {&PositionRecord::StageX, Unit::CountsX},
                  {&PositionRecord::StageY, Unit::CountsY});
}

// ---- Heights ----

using Heights = ZCalibrationRecord;

constexpr auto heightCommands = std::to_array<Command<Heights>>({
    {"MountHeight", PerZStep<&Heights::MountHeight>},
    {"StageHeightLower", PerZStep<&Heights::StageHeightLower>},
    {"StageHeightUpper", PerZStep<&Heights::StageHeightUpper>},
    {"HeadDepth_1ChShort", PerZStep<&Heights::HeadDepth_1ch_Short>},
    {"HeadDepth_1ChLong", PerZStep<&Heights::Headdepth_1ch_Long>},
    {"HeadDepth_8Ch", PerZStep<&Heights::HeadDepth_8ch>},
    {"HeadDepth_12Ch", PerZStep<&Heights::HeadDepth_12ch>},
    {"HeadDepth_96_384", PerZStep<&Heights::HeadDepth_96_384>},
    {"HeadDepth_TeachTool_1Ch", PerZStep<&Heights::HeadDepth_TeachTool_1Ch>},
    {"HeadDepth_TeachTool_96_384", PerZStep<&Heights::HeadDepth_TeachTool_96_384>},
    {"NestDepth_Y", PerZStep<&Heights::NestDepth_Y>},
    {"NestDepth_XY_6", PerZStep<&Heights::NestDepth_XY_6>},
    {"TipMountDepth12", PerZStep<&Heights::TipMountDepth12>},
    {"TipMountDepth30", PerZStep<&Heights::TipMountDepth30>},
    {"TipMountDepth125", PerZStep<&Heights::TipMountDepth125>},
    {"TipMountDepth300", PerZStep<&Heights::TipMountDepth300>},
    {"TipMountDepth1250", PerZStep<&Heights::TipMountDepth1250>},
    {"Delta_Z", Number<&Heights::DeltaZ>, Unit::None},
});

void AppendHeights(ScriptBuilder& script) {
  script.AppendAll<Heights>(heightCommands, script.Config.Current.Heights);
}

// ---- Tip and head change ----

void AppendTipAndHeadChange(ScriptBuilder& script) {
  const auto cage = FindMicrotiterCage(script.Config);
  const auto isChangeHead = [](const HeadTypeRecord& head) {
    return head.Code == code::microtiter && head.Channels == 96;
  };
  const auto head = Find(headTable, script.Config, isChangeHead);
  if (!isChangeHead(head)) {
    return;
  }
  // Both changes happen at the head's one drop-off height.
  script.Append("TipChange_Z", GeneralText(head.DropOffZ), Unit::StepsZ);
  script.Append("TipChange_S", WholeText(cage.TipChangeS), Unit::StepsS);
  script.Append("HeadChange_Z", GeneralText(head.DropOffZ), Unit::StepsZ);
  script.Append("HeadChange_S", WholeText(cage.HeadChangeS), Unit::StepsS);
  script.Append("AspirateOrigin_96_384", WholeText(head.AspirateOrigin), Unit::StepsS);
}

// ---- Serial-dilute heads and the teach tool ----

constexpr auto shortHeadCommands = std::to_array<Command<HeadTypeRecord>>({
    {"HeadEject_SD_S", Integer<&HeadTypeRecord::HeadEjectS>, Unit::StepsS},
    {"HeadLock_SD_S", Integer<&HeadTypeRecord::HeadLockS>, Unit::StepsS},
    {"SDHomeSensorSeekOffsetMM", TimesZStep<&HeadTypeRecord::SDHomeSensorSeekOffsetMM>,
     Unit::HundredthMillimetres},
    {"SDPreCollectHeightMM", TimesZStep<&HeadTypeRecord::SDPreCollectHeightMM>, Unit::HundredthMillimetres},
    {"SDRFIDReadHeightMM", TimesZStep<&HeadTypeRecord::SDRFIDReadHeightMM>, Unit::HundredthMillimetres},
});

struct HeadRow {
  std::string_view Code;
  std::string_view ChannelCode;
  std::string_view PickUpKey;
  std::string_view DropOffKey;
  std::span<const Command<HeadTypeRecord>> OwnCommands{};  // in front of the two heights
};

constexpr auto headRows = std::to_array<HeadRow>({
    {code::serialDilute, channel_layout::oneShort, "PickUp_1ChShort_Z", "DropOff_1ChShort_Z",
     shortHeadCommands},
    {code::serialDilute, channel_layout::oneLong, "PickUp_1ChLong_Z", "DropOff_1ChLong_Z"},
    {code::serialDilute, channel_layout::eight, "PickUp_8Ch_Z", "DropOff_8Ch_Z"},
    {code::serialDilute, channel_layout::twelve, "PickUp_12Ch_Z", "DropOff_12Ch_Z"},
    {code::calibrate, channel_layout::oneShort, "PickUp_TeachTool_Z", "DropOff_TeachTool_Z"},
});

void AppendSerialDiluteHeads(ScriptBuilder& script) {
  for (const auto& row : headRows) {
    const auto matches = [&row](const HeadTypeRecord& head) {
      return head.Code == row.Code && head.ChannelCode == row.ChannelCode;
    };
    const auto head = Find(headTable, script.Config, matches);
    if (matches(head)) {
      script.AppendAll(row.OwnCommands, head);
      script.Append(row.PickUpKey, GeneralText(head.PickUpZ), Unit::StepsZ);
      script.Append(row.DropOffKey, GeneralText(head.DropOffZ), Unit::StepsZ);
    }
  }
}

// ---- Tip racks ----

constexpr auto smallRackCommands = std::to_array<Command<TipTypeRecord>>({
    {"RackPickup_12_300_Z", PerZStep<&TipTypeRecord::RackPickUpZ>},
    {"RackEject_12_300_Z", PerZStep<&TipTypeRecord::RackEjectZ>},
    {"ChuteEject_Z", Integer<&TipTypeRecord::ChuteEjectZ>},
});

constexpr auto largeRackCommands = std::to_array<Command<TipTypeRecord>>({
    {"RackPickup_1250_Z", PerZStep<&TipTypeRecord::RackPickUpZ>},
    {"RackEject_1250_Z", PerZStep<&TipTypeRecord::RackEjectZ>},
});

void AppendRack(ScriptBuilder& script, bool TipTypeRecord::* sizeFlag,
                std::span<const Command<TipTypeRecord>> commands) {
  const auto matches = [sizeFlag](const TipTypeRecord& tip) {
    return tip.Code == code::serialDilute && tip.*sizeFlag;
  };
  const auto tip = Find(tipTable, script.Config, matches);
  if (matches(tip)) {
    script.AppendAll(commands, tip);
  }
}

void AppendTipRacks(ScriptBuilder& script) {
  AppendRack(script, &TipTypeRecord::SecondSize, smallRackCommands);
  AppendRack(script, &TipTypeRecord::FirstSize, largeRackCommands);
}

// ---- Tip eject and aspirate origin ----

void AppendTipEject(ScriptBuilder& script) {
  ForEachAndTheEnd(headTable, script.Config, [&script](const HeadTypeRecord& head) {
    const auto keys = head.Code == code::serialDilute ? TipEjectKeysOf(head) : std::nullopt;
    if (!keys) {
      return;
    }
    const auto steps = Quotient(head.TipEjectS, script.Scales.S);
    script.Append(keys->TipEject, steps ? std::optional{NegatedPictureText(*steps)} : std::nullopt,
                  Unit::StepsS);
    script.Append(keys->AspirateOrigin, WholeText(head.AspirateOrigin), Unit::StepsS);
  });
}

// ---- Nests ----

struct NestPlaceKeys {
  std::string_view Z;
  std::string_view SDX;
  std::string_view SDY;
};

// A class of nests and the keys of its three places.
struct NestRow {
  std::string_view Code;
  std::array<NestPlaceKeys, 3> Places;
};

constexpr auto nestRows = std::to_array<NestRow>({
    {code::nest8,
     {{{"Nest_1A_Z", "NEST_1A_SD_X", "NEST_1A_SD_Y"},
       {"Nest_8B_Z", "NEST_8B_SD_X", "NEST_8B_SD_Y"},
       {"Nest_1C_Z", "NEST_1C_SD_X", "NEST_1C_SD_Y"}}}},
    {code::nest12,
     {{{"Nest_1E_Z", "NEST_1E_SD_X", "NEST_1E_SD_Y"},
       {"Nest_12D_Z", "NEST_12D_SD_X", "NEST_12D_SD_Y"},
       {"Nest_1F_Z", "NEST_1F_SD_X", "NEST_1F_SD_Y"}}}},
});

void AppendNestHeights(ScriptBuilder& script) {
  ForEach(nestTable, script.Config, [&script](const NestTypeRecord& nest) {
    for (const auto& row : nestRows) {
      for (std::size_t place = 0; nest.Code == row.Code && place < row.Places.size(); ++place) {
        script.Append(row.Places[place].Z, WholeText(nest.Nests[place].Z), Unit::StepsZ);
      }
    }
  });
}

// Unlike the heights, only the first nest of each class has its positions sent.
void AppendNestPositions(ScriptBuilder& script, const NestRow& row) {
  const auto matches = [&row](const NestTypeRecord& nest) { return nest.Code == row.Code; };
  const auto nest = Find(nestTable, script.Config, matches);
  for (std::size_t place = 0; matches(nest) && place < row.Places.size(); ++place) {
    const auto& position = nest.Nests[place];
    const auto& keys = row.Places[place];
    script.Append(keys.SDX, HundredthsText(script.Scales.SDX, position.X), Unit::HundredthMillimetres);
    script.Append(keys.SDY, HundredthsText(script.Scales.SDY, position.Y), Unit::HundredthMillimetres);
  }
}

void AppendSerialDiluteXY(ScriptBuilder& script) {
  AppendPositions(script, serialDilutePositions, {&PositionRecord::X, Unit::StepsSDX},
                  {&PositionRecord::Y, Unit::StepsSDY});
  for (const auto& row : nestRows) {
    AppendNestPositions(script, row);
  }
}

// ---- Volume precision ----

// The 8- and 12-channel heads have no correction for 125 microlitres.
constexpr auto correctedHeads = std::to_array<std::pair<std::string_view, std::string_view>>({
    {channel_layout::oneLong, "12.5"},
    {channel_layout::oneLong, "30"},
    {channel_layout::oneLong, "125"},
    {channel_layout::oneLong, "300"},
    {channel_layout::oneShort, "1250"},
    {channel_layout::eight, "12.5"},
    {channel_layout::eight, "30"},
    {channel_layout::eight, "300"},
    {channel_layout::twelve, "12.5"},
    {channel_layout::twelve, "30"},
    {channel_layout::twelve, "300"},
});

std::string VolumeItemKey(int number) {
  return WholeText(number) + "Item";
}

void AppendCorrection(ScriptBuilder& script, std::span<const std::string> pieces) {
  if (const auto correction = CorrectionIn(pieces)) {
    script.Append(correction->Key, correction->Sent, Unit::None);
  }
}

void AppendCorrections(ScriptBuilder& script, std::string_view section) {
  const auto& settings = script.Config.Settings;
  const auto appendItem = [&](const std::string& item, int /*number*/) {
    AppendCorrection(script, settings.SplitText(",", item));
    return true;
  };
  ForEachNumberedValue(settings, section, settings.ConfigFilePath(), VolumeItemKey, appendItem);
}

void AppendVolumePrecision(ScriptBuilder& script) {
  for (const auto& [headName, tipVolume] : correctedHeads) {
    AppendCorrections(script, VolumeCorrectionSection(headName, tipVolume));
  }
  ForEach(tipTable, script.Config, [&script](const TipTypeRecord& tip) {
    if (!tip.CorrectionSection.empty()) {
      AppendCorrections(script, tip.CorrectionSection);
    }
  });
}

// ---- All groups ----

struct ScriptGroup {
  std::string_view Name;  // empty: goes on under the name of the group before
  void (*Append)(ScriptBuilder& script);
};

constexpr auto scriptGroups = std::to_array<ScriptGroup>({
    {"Stage XY", AppendStagePositions},
    {"Heights", AppendHeights},
    {"", AppendTipAndHeadChange},
    {"", AppendSerialDiluteHeads},
    {"", AppendTipRacks},
    {"", AppendTipEject},
    {"", AppendNestHeights},
    {"SD XY", AppendSerialDiluteXY},
    {"Volume Precision", AppendVolumePrecision},
});

}  // namespace

std::vector<UploadLine> BuildUploadLines(Configuration& configuration, const GroupAnnouncement& announce) {
  ScriptBuilder script{configuration};
  for (const auto& group : scriptGroups) {
    if (!group.Name.empty()) {
      script.Group = group.Name;
      if (announce) {
        announce(group.Name);
      }
    }
    group.Append(script);
  }
  return std::move(script.Lines);
}

std::string BuildUploadScript(Configuration& configuration, const GroupAnnouncement& announce) {
  return ScriptOf(BuildUploadLines(configuration, announce)) + SettingLine("SAVE");
}

std::optional<VolumeCorrection> CorrectionIn(std::span<const std::string> pieces) {
  const auto key = pieces.size() > correctionKeyPiece ? WithoutQuotes(pieces[correctionKeyPiece]) : "";
  if (key.empty()) {
    return std::nullopt;
  }
  const auto factor = LeadingNumber(pieces[correctionFactorPiece]);
  return VolumeCorrection{factor, key, RoundedText(Product(factor, 100000.0))};
}

std::string VolumeCorrectionSection(std::string_view headName, std::string_view tipVolume) {
  return std::string{"VolumeCorrection_"}.append(headName).append("_").append(tipVolume);
}

std::string BuildVolumeCorrection(Configuration& configuration, std::string_view section) {
  ScriptBuilder script{configuration};
  AppendCorrections(script, section);
  return ScriptOf(script.Lines);
}

}  // namespace zolvane
