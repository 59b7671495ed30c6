#include "page/device_setup_page.h"

#include <array>
#include <cstddef>
#include <utility>

#include "config/conversions.h"
#include "config/tables/current_records.h"
#include "config/text.h"
#include "operations/download.h"
#include "operations/file_copy.h"
#include "operations/hardware_detection.h"
#include "operations/upload.h"
#include "page/message_dialogue.h"

namespace zolvane {
namespace {

std::optional<bool> ReadFlag(const SettingsFiles& settings, std::string_view section, std::string_view key) {
  const auto text = settings.ReadValue(section, key, settings.ConfigFilePath());
  return text ? StrictBoolean(*text) : std::nullopt;
}

// The first failure of a sequence of steps, or success.
template <class Range, class Step>
Status UntilFailure(const Range& range, Step step) {
  for (const auto& element : range) {
    if (const Status status = step(element); !status.Ok()) {
      return status;
    }
  }
  return Status::Success();
}

}  // namespace

DeviceSetupPage::DeviceSetupPage(Environment& environment, HostAttachment& host, Configuration& configuration,
                                 PageView& view)
    : environment_{environment},
      host_{host},
      configuration_{configuration},
      view_{view},
      cdgFile_{DesignedFileDialogue()} {}

// ---- Loading ----

void DeviceSetupPage::LoadDefaults() {
  isLoading_ = true;
  RefreshCurrentRecords(configuration_);
  // The names come from the records just loaded, not from what filling a list writes into the file.
  const auto& current = configuration_.Current;
  FillList(ListControl::DeviceType, current.Device.Name);
  FillList(ListControl::CageType, current.Cage.Name);
  FillList(ListControl::HeadType, current.Head.Name);
  FillList(ListControl::TipType, current.Tip.Name);
  FillList(ListControl::NestType, current.Nest.Name);
  LoadPumpModule();
  for (const auto box :
       {CheckControl::RFID, CheckControl::HeadSensor, CheckControl::TipSensor, CheckControl::Encoders}) {
    LoadCheck(box);
  }
  for (const int button : {uploadButton, downloadButton, importButton, exportButton}) {
    PassOver(EnableButton(button, IsPermitted(button)));
  }
  isLoading_ = false;
}

void DeviceSetupPage::FillList(ListControl list, const std::string& installedName) {
  auto content = ReadListContent(configuration_.Settings, RowOf(list).Section);
  if (view_.ShowEntries(list, content.Entries).Ok()) {
    model_.Of(list).Entries = std::move(content.Entries);
    model_.Of(list).Selected = noSelection;
  }
  if (content.Preselected) {
    PassOver(SelectEntry(list, static_cast<int>(*content.Preselected)));
  }
  if (RowOf(list).HasNotInstalled) {
    AddNotInstalled(list);
  }
  PassOver(SelectEntry(list, FindListIndex(installedName, list)));
}

void DeviceSetupPage::AddNotInstalled(ListControl list) {
  const ListEntry entry{.Text = "Not installed", .Data = 0};
  if (view_.ShowAddedEntry(list, entry).Ok()) {
    model_.Of(list).Entries.push_back(entry);
  }
}

void DeviceSetupPage::LoadPumpModule() {
  if (const auto isConnected = ReadFlag(configuration_.Settings, pumpSection, pumpModuleInstalledKey)) {
    PassOver(ShowPumpModule(*isConnected));
  }
}

void DeviceSetupPage::LoadCheck(CheckControl box) {
  if (const auto isTicked = ReadFlag(configuration_.Settings, deviceTypeSection, RowOf(box).Key)) {
    PassOver(SetCheck(box, *isTicked ? tickedValue : untickedValue));
  }
}

// ---- Handlers ----

Status DeviceSetupPage::UserSelects(ListControl list, int index) {
  return SelectEntry(list, index);
}

Status DeviceSetupPage::UserSetsCheck(CheckControl box, int value) {
  if (const Status status = view_.ShowCheck(box, value); !status.Ok()) {
    return status;
  }
  model_.Of(box).Value = value;
  return OnCheckClicked(box);
}

void DeviceSetupPage::PressButton(int index) {
  switch (index) {
    case uploadButton:
      return UploadCalibration(Context());
    case downloadButton:
      return DownloadCalibration(Context());
    case queryButton:
      return QueryHardware(Context());
    case importButton:
      return ImportCalibrationFile(Context(), cdgFile_);
    case exportButton:
      return ExportCalibrationFile(Context(), cdgFile_);
    default:
      return;
  }
}

Status DeviceSetupPage::OnListSelected(ListControl list) {
  const auto& model = model_.Of(list);
  const auto number = model.Entries[static_cast<std::size_t>(model.Selected)].Data;
  ResetChanged();  // the host may have the page loaded again meanwhile, and the list be another one
  const auto& settings = configuration_.Settings;
  return settings.WriteValue(RowOf(list).Section, installedKey, settings.ConfigFilePath(), WholeText(number));
}

Status DeviceSetupPage::OnCheckClicked(CheckControl box) {
  const bool isTicked = model_.Of(box).Value != untickedValue;
  ResetChanged();
  const auto& settings = configuration_.Settings;
  return settings.WriteValue(deviceTypeSection, RowOf(box).Key, settings.ConfigFilePath(),
                             FlagText(isTicked));
}

void DeviceSetupPage::ResetChanged() const {
  if (host_.FormParent && !isLoading_) {
    PassOver(host_.SetChanged(false));
  }
}

// ---- Controls ----

Status DeviceSetupPage::SelectEntry(ListControl list, int index) {
  auto& model = model_.Of(list);
  if (index < 0 || static_cast<std::size_t>(index) >= model.Entries.size()) {
    return Status::Failure();
  }
  if (const Status status = view_.ShowSelection(list, index); !status.Ok()) {
    return status;
  }
  model.Selected = index;
  return OnListSelected(list);
}

// A box answers a change and not a value: set to what it shows already, its handler does not run.
Status DeviceSetupPage::SetCheck(CheckControl box, int value) {
  const bool isChange = model_.Of(box).Value != value;
  return isChange ? UserSetsCheck(box, value) : view_.ShowCheck(box, value);
}

int DeviceSetupPage::FindListIndex(std::string_view text, ListControl list) const {
  const auto& entries = model_.Of(list).Entries;
  for (std::size_t index = 0; index < entries.size(); ++index) {
    if (EqualIgnoringCase(entries[index].Text, text)) {
      return static_cast<int>(index);
    }
  }
  return 0;
}

bool DeviceSetupPage::IsPermitted(int button) const {
  const auto permission = buttonRows[static_cast<std::size_t>(button)].Permission;
  return permission == nullptr || configuration_.Current.Device.*permission;
}

Status DeviceSetupPage::EnableButton(int index, bool enabled) {
  const Status status = view_.ShowButtonEnabled(index, enabled);
  if (status.Ok()) {
    model_.ButtonsEnabled[static_cast<std::size_t>(index)] = enabled;
  }
  return status;
}

Status DeviceSetupPage::EnableCheck(CheckControl box, bool enabled) {
  const Status status = view_.ShowCheckEnabled(box, enabled);
  if (status.Ok()) {
    model_.Of(box).Enabled = enabled;
  }
  return status;
}

Status DeviceSetupPage::SetControlEnabled(ListControl list, HostBoolean enabled) {
  const auto colour = enabled == hostTrue ? windowBackground : buttonFace;
  if (const Status status = view_.ShowListColour(list, colour); !status.Ok()) {
    return status;
  }
  model_.Of(list).BackColour = colour;
  const bool isEnabled = enabled != hostFalse;
  const Status status = view_.ShowListEnabled(list, isEnabled);
  if (status.Ok()) {
    model_.Of(list).Enabled = isEnabled;
  }
  return status;
}

Status DeviceSetupPage::EnableControls(bool enabled) {
  constexpr std::array buttons{queryButton, uploadButton, downloadButton, importButton, exportButton};
  constexpr std::array boxes{CheckControl::Encoders, CheckControl::HeadSensor, CheckControl::RFID,
                             CheckControl::TipSensor};
  constexpr std::array lists{ListControl::DeviceType, ListControl::CageType, ListControl::HeadType,
                             ListControl::NestType, ListControl::TipType};
  const auto enableButton = [&](int index) { return EnableButton(index, enabled && IsPermitted(index)); };
  const auto enableBox = [&](CheckControl box) { return EnableCheck(box, enabled); };
  const auto enableList = [&](ListControl list) {
    return SetControlEnabled(list, enabled ? hostTrue : hostFalse);
  };

  Status status = UntilFailure(buttons, enableButton);
  if (status.Ok()) {
    status = UntilFailure(boxes, enableBox);
  }
  return status.Ok() ? UntilFailure(lists, enableList) : status;
}

Status DeviceSetupPage::ShowPumpModule(bool connected) {
  const auto text = connected ? pumpConnectedText : pumpNotConnectedText;
  const Status status = view_.ShowPumpText(text);
  if (status.Ok()) {
    model_.PumpText = text;
  }
  return status;
}

std::int16_t DeviceSetupPage::ShowMessage(const std::string& message, std::int16_t style,
                                          const std::string& title) {
  // The host's answers may release the page's host object while the message is open; this reference keeps it.
  const auto host = host_.ObjectParent;
  const std::int16_t extraStyle = 0;
  return zolvane::ShowMessage(environment_, host.get(), message, style, title, host.get(), extraStyle);
}

}  // namespace zolvane
