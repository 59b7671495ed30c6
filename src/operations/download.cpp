#include "operations/download.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "config/conversions.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"
#include "config/text.h"
#include "host/instrument_link.h"
#include "operations/confirmation.h"
#include "operations/instrument_command.h"
#include "operations/instrument_keys.h"

namespace zolvane {
namespace {

constexpr std::string_view downloadStatus = "Downloading Data from Zolvane";

void ShowStep(const OperationContext& context, std::string_view step) {
  PassOver(context.Host.SetStatusText(std::string{downloadStatus}.append("...").append(step)));
}

// ---- Replies and their way into a field ----

// The value of a reply: what stands after its first "=", or the whole reply. Returns nullopt if the
// instrument does not know the key; the field then keeps the value it had in the file.
std::optional<double> ReplyValue(std::string_view reply) {
  const auto text = StrippedReply(reply);
  if (text.find(syntaxErrorReply) != std::string::npos) {
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

// The queries of one record. The first that is not answered ends them.
class Queries {
 public:
  explicit Queries(const OperationContext& context) : context_{context} {}

  // Sends one query; false when it, or one before it, was not answered.
  bool Send(std::string_view key) {
    if (isAnswered_) {
      SendInstrumentCommand(context_, std::string{questionStart}.append(key), reply_, isAnswered_);
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

template <class Record>
void SaveRecord(const OperationContext& context, const RecordTable<Record>& table, const Record& record) {
  Save(table, context.Config, record, ConfigFile(context));
}

// X and Y of one position. Loads the record once X is answered and saves it once Y
// is. False if a send failed.
bool AskPosition(const OperationContext& context, const PositionKeys& keys, std::int32_t PositionRecord::* x,
                 std::int32_t PositionRecord::* y) {
  Queries queries{context};
  if (!queries.Send(keys.X)) {
    return false;
  }
  auto position = FindByName(positionTable, context.Config, &PositionRecord::PositionName, keys.PositionName);
  queries.Take([&](double value) { StoreLong(position.*x, value); });
  queries.AskLong(keys.Y, position.*y);
  if (queries.AllAnswered()) {
    SaveRecord(context, positionTable, position);
  }
  return queries.AllAnswered();
}

// ---- Tip and head change ----

void AskTipAndHeadChange(const OperationContext& context, HeadTypeRecord head, CageTypeRecord& cage) {
  Queries queries{context};
  queries.AskReal("TipChange_Z", head.DropOffZ);
  queries.AskLong("TipChange_S", cage.TipChangeS);
  queries.AskReal("HeadChange_Z", head.DropOffZ);
  queries.AskLong("HeadChange_S", cage.HeadChangeS);
  queries.AskLong("AspirateOrigin_96_384", head.AspirateOrigin);
  if (queries.AllAnswered()) {
    SaveRecord(context, headTable, head);
    SaveRecord(context, cageTable, cage);
  }
}

// ---- Liquid handling ----

struct HeadHeightKeys {
  std::string PickUp;
  std::string DropOff;
};

// A calibration head asks by its own name, as with PickUp_1CHSHORT_Z, and a serial-dilute head for the teach
// tool: the other way round from the upload's naming, and the pairing that instruments in the field answer to.
HeadHeightKeys HeadHeightKeysOf(const HeadTypeRecord& head) {
  if (head.Code != code::calibrate) {
    return {.PickUp = "PickUp_TeachTool_Z", .DropOff = "DropOff_TeachTool_Z"};
  }
  const auto name = Replaced(head.ChannelCode, "_", "");
  return {.PickUp = "PickUp_" + name + "_Z", .DropOff = "DropOff_" + name + "_Z"};
}

void AskHeadHeights(const OperationContext& context, HeadTypeRecord& head) {
  const auto keys = HeadHeightKeysOf(head);
  Queries queries{context};
  queries.AskReal(keys.PickUp, head.PickUpZ);
  queries.AskReal(keys.DropOff, head.DropOffZ);
}

void AskTipEject(const OperationContext& context, HeadTypeRecord& head) {
  if (head.Code != code::serialDilute || !context.Host.MayGoOn()) {
    return;
  }
  if (const auto keys = TipEjectKeysOf(head)) {
    const double scale = context.Config.Current.Axes.S.UnitsPerStep;
    Queries queries{context};
    queries.Ask(keys->TipEject, [&](double value) { StoreEject(head.TipEjectS, value, scale); });
    queries.AskLong(keys->AspirateOrigin, head.AspirateOrigin);
  }
}

void AskLiquidHandling(const OperationContext& context, HeadTypeRecord head) {
  Queries queries{context};
  queries.AskLong("HeadEject_SD_S", head.HeadEjectS);
  queries.AskLong("HeadLock_SD_S", head.HeadLockS);
  if (queries.AllAnswered()) {
    AskHeadHeights(context, head);
    AskTipEject(context, head);
  }
  if (context.Host.MayGoOn()) {
    SaveRecord(context, headTable, head);
  }
}

// ---- Tip data ----

// Tips of all sizes are filled from the rack of the small ones: the instrument does not
// give the large rack back.
void AskTipData(const OperationContext& context, TipTypeRecord tip) {
  const bool isSmall = tip.SecondSize || tip.ThirdSize || tip.FourthSize;
  const double scale = context.Config.Current.Axes.Z.UnitsPerStep;
  Queries queries{context};
  if (isSmall) {
    queries.AskLong("ChuteEject_Z", tip.ChuteEjectZ);
  }
  if (isSmall || tip.FirstSize) {
    queries.Ask("RackPickup_12_300_Z", [&](double value) { StoreScaledLong(tip.RackPickUpZ, value, scale); });
    queries.Ask("RackEject_12_300_Z", [&](double value) { StoreScaledLong(tip.RackEjectZ, value, scale); });
  }
  if (context.Host.MayGoOn()) {
    SaveRecord(context, tipTable, tip);
  }
}

void DownloadStagePositions(const OperationContext& context) {
  ShowStep(context, "Stage XY");
  for (const auto& keys : stagePositions) {
    DownloadPosition(context, keys);
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

void DownloadPosition(const OperationContext& context, const PositionKeys& keys) {
  if (context.Host.MayGoOn()) {
    AskPosition(context, keys, &PositionRecord::StageX, &PositionRecord::StageY);
  }
}

void DownloadHeights(const OperationContext& context) {
  if (!context.Host.MayGoOn()) {
    return;
  }
  ShowStep(context, "Heights");
  Queries{context}.Ask("Delta_Z", [&context](double value) {
    PassOver(context.Config.Settings.WriteValue(heightSection, deltaZKey, ConfigFile(context),
                                                GeneralText(value)));
  });
}

void DownloadTipAndHeadChange(const OperationContext& context) {
  if (!context.Host.MayGoOn()) {
    return;
  }
  auto cage = FindMicrotiterCage(context.Config);
  ForEach(headTable, context.Config, [&](const HeadTypeRecord& head) {
    if (head.Code == code::microtiter) {
      AskTipAndHeadChange(context, head, cage);
    }
  });
}

void DownloadLiquidHandling(const OperationContext& context) {
  ShowStep(context, "Liquid Handling");
  ForEach(headTable, context.Config, [&](const HeadTypeRecord& head) {
    if (head.Code == code::calibrate || head.Code == code::serialDilute) {
      AskLiquidHandling(context, head);
    }
  });
}

void DownloadTipData(const OperationContext& context) {
  ShowStep(context, "Tip Data");
  ForEach(tipTable, context.Config, [&](const TipTypeRecord& tip) {
    if (tip.Code == code::serialDilute) {
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
