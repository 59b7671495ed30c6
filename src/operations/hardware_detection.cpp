#include "operations/hardware_detection.h"

#include <optional>
#include <string>
#include <string_view>

#include "config/conversions.h"
#include "config/item_lists.h"
#include "config/record_table.h"
#include "config/tables/current_records.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/modules.h"
#include "operations/instrument_command.h"

namespace zolvane {
namespace {

// One status text, one command, one reply without line ends. Returns nullopt if the
// instrument did not answer.
std::optional<std::string> Ask(const OperationContext& context, std::string_view status,
                               std::string_view command) {
  PassOver(context.Host.SetStatusText(status));
  std::string reply;
  bool ok = false;
  SendInstrumentCommand(context, std::string{command}, reply, ok);
  return ok ? std::optional{StrippedReply(reply)} : std::nullopt;
}

void WriteSetting(const OperationContext& context, std::string_view section, std::string_view key,
                  std::string_view value) {
  const auto& settings = context.Config.Settings;
  PassOver(settings.WriteValue(section, key, settings.ConfigFilePath(), value));
}

void WriteInstalled(const OperationContext& context, std::string_view section, std::string_view item) {
  WriteSetting(context, section, installedKey, item);
}

// Records the item whose piece holds the code, or 0 when there is none.
void WriteInstalledByCode(const OperationContext& context, std::string_view section, std::string_view code,
                          std::size_t piece) {
  WriteInstalled(context, section, WholeText(FindItemByField(context.Config.Settings, section, code, piece)));
}

bool IsRFIDEnabled(const OperationContext& context) {
  const auto& settings = context.Config.Settings;
  const auto text =
      settings.ReadValue(deviceTypeSection, sensorEnableRFIDKey, settings.ConfigFilePath(), "1");
  return MetOnlyIf(text ? StrictBoolean(*text) : std::nullopt);
}

void SelectByName(const OperationContext& context, ListControl list, std::string_view name) {
  PassOver(context.Page.SelectEntry(list, context.Page.FindListIndex(name, list)));
}

// The tag reader's answer has five fields, the third of which is the tag.
std::optional<std::string> TagIn(const OperationContext& context, std::string_view reply) {
  constexpr std::size_t fieldCount = 5;
  constexpr std::size_t tagField = 2;
  const auto fields = context.Config.Settings.SplitText(",", reply);
  return fields.size() == fieldCount ? std::optional{fields[tagField]} : std::nullopt;
}

// Looks for the head with that tag. A tag without a head writes 0, and selecting the empty name then
// selects the first entry, whose handler writes that entry's number.
void RecordHeadWithTag(const OperationContext& context, const std::optional<std::string>& tag) {
  const auto matches = [&tag](const HeadTypeRecord& candidate) { return candidate.Tag == tag; };
  const auto head = tag ? Find(headTable, context.Config, matches) : HeadTypeRecord{};
  WriteInstalled(context, headTypeSection, tag && matches(head) ? head.ID : "0");
  SelectByName(context, ListControl::HeadType, head.Name);
}

void ReadHeadTag(const OperationContext& context) {
  if (!Ask(context, "Enabling RFID", "RFID ON")) {
    return;
  }
  if (const auto reply = Ask(context, "Getting Head Type", "RFID READ_PERSISTENT")) {
    RecordHeadWithTag(context, TagIn(context, *reply));
  }
}

void RecordModule(const OperationContext& context, std::string_view reply) {
  if (reply == "96/384") {
    WriteInstalledByCode(context, cageTypeSection, code::microtiter, cageCodePiece);
  } else if (reply == "SD") {
    WriteInstalledByCode(context, cageTypeSection, code::serialDilute, cageCodePiece);
  } else {
    WriteInstalled(context, cageTypeSection, "0");
  }
}

}  // namespace

void QueryHardware(const OperationContext& context) {
  PassOver(context.Page.EnableControls(false));
  DetectDeviceType(context);
  for (const auto step : {DetectModuleType, DetectHeadType, DetectPumpModule}) {
    if (context.Host.MayGoOn()) {
      step(context);
    }
  }
  PassOver(context.Page.EnableControls(true));
}

void DetectDeviceType(const OperationContext& context) {
  if (const auto reply = Ask(context, "Getting Zolvane Type", "STATUS_STAGE")) {
    WriteInstalledByCode(context, deviceTypeSection, *reply, deviceCodePiece);
    ReloadCurrentDevice(context.Config);
    // Looked up among the devices and applied to the modules, on purpose.
    const auto index =
        context.Page.FindListIndex(context.Config.Current.Device.Name, ListControl::DeviceType);
    PassOver(context.Page.SelectEntry(ListControl::CageType, index));
  }
  PassOver(context.Host.SetStatusText(""));
}

void DetectModuleType(const OperationContext& context) {
  if (const auto reply = Ask(context, "Getting Pipette Module Type", "STATUS_MECH")) {
    RecordModule(context, *reply);
    ReloadCurrentCage(context.Config);
    SelectByName(context, ListControl::CageType, context.Config.Current.Cage.Name);
  }
  PassOver(context.Host.SetStatusText(""));
}

void DetectHeadType(const OperationContext& context) {
  if (IsRFIDEnabled(context)) {
    ReadHeadTag(context);
  } else {
    // The reader is switched off only when it is disabled in the configuration; enabled, it is left on.
    Ask(context, "Disabling RFID", "RFID OFF");
  }
  PassOver(context.Host.SetStatusText(""));
}

void DetectPumpModule(const OperationContext& context) {
  if (const auto reply = Ask(context, "Getting Pump Module Status", "STATUS PUMPS")) {
    // The file keeps "0" whatever the reply; only the label shows whether it held "OPEN".
    WriteSetting(context, pumpSection, pumpModuleInstalledKey, "0");
    PassOver(context.Page.ShowPumpModule(reply->find("OPEN") == std::string::npos));
  }
  PassOver(context.Host.SetStatusText(""));
}

}  // namespace zolvane
