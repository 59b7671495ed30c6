#include "operations/download.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "config/conversions.h"
#include "config/tables/height_tables.h"
#include "config/tables/labware_tables.h"
#include "config/text.h"
#include "operations/confirmation.h"
#include "operations/instrument_command.h"
#include "operations/instrument_keys.h"
#include "operations/table_walks.h"

namespace zolvane {
namespace {

constexpr std::string_view downloadStatus = "Downloading Data from Zolvane";

void ShowStep(const OperationContext& context, std::string_view step) {
  PassOver(context.Host.SetStatusText(std::string{downloadStatus}.append("...").append(step)));
}

// ---- Replies and their way into a field ----

// The value of a reply: what stands after its first "=", or the whole reply. Nothing when the instrument does
// not know the key, and then the field keeps the value that it had in the file.
std::optional<double> ReplyValue(std::string_view reply) {
  const auto text = StrippedReply(reply);
  if (text.find("SYNTAX_ERROR") != std::string::npos) {
    return std::nullopt;
  }
  const auto sign = text.find('=');
  return LeadingNumber(sign == std::string::npos ? text : text.substr(sign + 1));
}

void StoreLong(std::int32_t& field, double value) {
  AssignIf(field, RoundHalfToEven<std::int32_t>(value));
}

void StoreReal(double& field, double value) {
  field = value;
}

// In the axis' units, with two decimals.
std::optional<double> Scaled(double value, double scale) {
  const auto product = Product(value, scale);
  return product ? PictureValue(*product, NumberPicture::Hundredths) : std::nullopt;
}

// The instrument reports tip eject as a negative count; the file keeps it positive.
void StoreEject(double& field, double value, double scale) {
  const auto scaled = Scaled(value, scale);
  AssignIf(field, scaled ? std::optional{std::abs(*scaled)} : std::nullopt);
}

void StoreScaledLong(std::int32_t& field, double value, double scale) {
  const auto scaled = Scaled(value, scale);
  AssignIf(field, scaled ? RoundHalfToEven<std::int32_t>(*scaled) : std::nullopt);
}

// ---- Queries ----

// The queries of one record. They are asked while the ones before were answered; the first that is not ends
// them.
class Queries {
 public:
  explicit Queries(const OperationContext& context) : context_{context} {}

  // Sends one query; false when it, or one before it, was not answered.
  bool Send(std::string_view key) {
    if (isAnswered_) {
      SendInstrumentCommand(context_, std::string{"GET_CALIBRATION "}.append(key), reply_, isAnswered_);
    }
    return isAnswered_;
  }

  // Hands the value of the last reply to `store`, unless the instrument does not know the key.
  template <class Store>
  void Take(Store store) {
    if (const auto value = ReplyValue(reply_)) {
      store(*value);
    }
  }

  template <class Store>
  void Ask(std::string_view key, Store store) {
    if (Send(key)) {
      Take(store);
    }
  }

  void AskLong(std::string_view key, std::int32_t& field) {
    Ask(key, [&field](double value) { StoreLong(field, value); });
  }

  void AskReal(std::string_view key, double& field) {
    Ask(key, [&field](double value) { StoreReal(field, value); });
  }

  bool AllAnswered() const { return isAnswered_; }

 private:
  const OperationContext& context_;
  std::string reply_;
  bool isAnswered_ = true;
};

std::string ConfigFile(const OperationContext& context) {
  return context.Config.Settings.ConfigFilePath();
}

// X and Y of one position: the record is loaded once X was answered and saved once Y was. False on a failed
// send.
bool AskPosition(const OperationContext& context, const PositionKeys& keys, std::int32_t PositionRecord::*x,
                 std::int32_t PositionRecord::*y) {
  Queries queries{context};
  if (!queries.Send(std::string{keys.InstrumentName} + "_X")) {
    return false;
  }
  auto position = LoadPosition(context.Config, "", keys.PositionName, "");
  queries.Take([&](double value) { StoreLong(position.*x, value); });
  queries.AskLong(std::string{keys.InstrumentName} + "_Y", position.*y);
  if (queries.AllAnswered()) {
    SavePosition(context.Config, position, ConfigFile(context));
  }
  return queries.AllAnswered();
}

// ---- Tip and head change ----

void AskTipAndHeadChange(const OperationContext& context, HeadTypeRecord head, CageTypeRecord& cage) {
  Queries queries{context};
  queries.AskReal("TipChange_Z", head.Field14);
  queries.AskLong("TipChange_S", cage.Field7);
  queries.AskReal("HeadChange_Z", head.Field14);
  queries.AskLong("HeadChange_S", cage.Field5);
  queries.AskLong("AspirateOrigin_96_384", head.Field12);
  if (queries.AllAnswered()) {
    SaveHeadType(context.Config, head, ConfigFile(context));
    SaveCageType(context.Config, cage, ConfigFile(context));
  }
}

// ---- Liquid handling ----

// A calibration head asks by its own name and a serial-dilute head for the teach tool: the other way round
// from the upload's naming, and the pairing that instruments in the field answer to.
std::string HeadHeightName(const HeadTypeRecord& head) {
  return head.Code == "CALIBRATE" ? Replaced(head.ChannelCode, "_", "") : "TeachTool";
}

void AskHeadHeights(const OperationContext& context, HeadTypeRecord& head) {
  const auto name = HeadHeightName(head);
  Queries queries{context};
  queries.AskReal("PickUp_" + name + "_Z", head.Field15);
  queries.AskReal("DropOff_" + name + "_Z", head.Field14);
}

void AskTipEject(const OperationContext& context, HeadTypeRecord& head) {
  if (head.Code != "SERIALDILUTE" || !context.Host.MayGoOn()) {
    return;
  }
  if (const auto keys = TipEjectKeysOf(head)) {
    const double scale = context.Config.Current.Axes.S.UnitsPerStep;
    Queries queries{context};
    queries.Ask(keys->TipEject, [&](double value) { StoreEject(head.Field13, value, scale); });
    queries.AskLong(keys->AspirateOrigin, head.Field12);
  }
}

void AskLiquidHandling(const OperationContext& context, HeadTypeRecord head) {
  Queries queries{context};
  queries.AskLong("HeadEject_SD_S", head.Field10);
  queries.AskLong("HeadLock_SD_S", head.Field11);
  if (queries.AllAnswered()) {
    AskHeadHeights(context, head);
    AskTipEject(context, head);
  }
  if (context.Host.MayGoOn()) {
    SaveHeadType(context.Config, head, ConfigFile(context));
  }
}

// ---- Tip data ----

// Tips of all sizes are filled from the rack of the small ones: the instrument does not give the large rack
// back.
void AskTipData(const OperationContext& context, TipTypeRecord tip) {
  const bool isSmall = tip.Field15 || tip.Field16 || tip.Field17;
  const double scale = context.Config.Current.Axes.Z.UnitsPerStep;
  Queries queries{context};
  if (isSmall) {
    queries.AskLong("ChuteEject_Z", tip.Field9);
  }
  if (isSmall || tip.Field14) {
    queries.Ask("RackPickup_12_300_Z", [&](double value) { StoreScaledLong(tip.Field8, value, scale); });
    queries.Ask("RackEject_12_300_Z", [&](double value) { StoreScaledLong(tip.Field7, value, scale); });
  }
  if (context.Host.MayGoOn()) {
    SaveTipType(context.Config, tip, ConfigFile(context));
  }
}

void DownloadStagePositions(const OperationContext& context) {
  ShowStep(context, "Stage XY");
  for (const auto& keys : stagePositions) {
    DownloadPosition(context, keys.InstrumentName, keys.PositionName);
  }
}

}  // namespace

void DownloadCalibration(const OperationContext& context) {
  const auto answer = StartAndConfirm(
      context, downloadStatus, "Download Calibration Data to Zolvane",
      "The calibration data stored on the Zolvane will be transferred\r\n"
      "to the local Hestrion data file on this computer, overwriting any existing data.\r\n\r\n"
      "Click [OK] to download this information.");
  if (answer == message_answer::cancel) {
    return;
  }
  if (answer == message_answer::ok) {
    for (const auto step : {DownloadStagePositions, DownloadHeights, DownloadTipAndHeadChange,
                            DownloadLiquidHandling, DownloadTipData, DownloadSerialDiluteXY}) {
      step(context);
    }
  }
  EndOperation(context);
}

void DownloadPosition(const OperationContext& context, std::string_view instrumentName,
                      std::string_view positionName) {
  if (context.Host.MayGoOn()) {
    AskPosition(context, {.PositionName = positionName, .InstrumentName = instrumentName},
                &PositionRecord::Field4, &PositionRecord::Field5);
  }
}

void DownloadHeights(const OperationContext& context) {
  if (!context.Host.MayGoOn()) {
    return;
  }
  ShowStep(context, "Heights");
  Queries{context}.Ask("Delta_Z", [&context](double value) {
    PassOver(
        context.Config.Settings.WriteValue(heightSection, "DeltaZ", ConfigFile(context), GeneralText(value)));
  });
}

void DownloadTipAndHeadChange(const OperationContext& context) {
  if (!context.Host.MayGoOn()) {
    return;
  }
  auto cage = FindMicrotiterCage(context.Config);
  ForEachRecord(Heads(context.Config), [&](const HeadTypeRecord& head) {
    if (head.Code == "MICROTITER") {
      AskTipAndHeadChange(context, head, cage);
    }
  });
}

void DownloadLiquidHandling(const OperationContext& context) {
  ShowStep(context, "Liquid Handling");
  ForEachRecord(Heads(context.Config), [&](const HeadTypeRecord& head) {
    if (head.Code == "CALIBRATE" || head.Code == "SERIALDILUTE") {
      AskLiquidHandling(context, head);
    }
  });
}

void DownloadTipData(const OperationContext& context) {
  ShowStep(context, "Tip Data");
  ForEachRecord(Tips(context.Config), [&](const TipTypeRecord& tip) {
    if (tip.Code == "SERIALDILUTE") {
      AskTipData(context, tip);
    }
  });
}

void DownloadSerialDiluteXY(const OperationContext& context) {
  if (!context.Host.MayGoOn()) {
    return;
  }
  ShowStep(context, "SD XY");
  for (const auto& keys : serialDilutePositions) {
    if (!AskPosition(context, keys, &PositionRecord::X, &PositionRecord::Y)) {
      return;
    }
  }
}

}  // namespace zolvane
