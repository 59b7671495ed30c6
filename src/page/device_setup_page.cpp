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

// Takes the steps in turn up to the first that fails.
template <class Range, class Step>
Status UntilFailure(const Range& range, Step step) {
  auto status = Status::Success();
  for (const auto& element : range) {
    status = status.Then([&] { return step(element); });
  }
  return status;
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
  return view_.ShowCheck(box, value).Then([&] {
    model_.Of(box).Value = value;
    return OnCheckClicked(box);
  });
}

void DeviceSetupPage::PressButton(int index) {
  switch (index) {
    case uploadButton:
      UploadCalibration(Context());
      break;
    case downloadButton:
      DownloadCalibration(Context());
      break;
    case queryButton:
      QueryHardware(Context());
      break;
    case importButton:
      ImportCalibrationFile(Context(), cdgFile_);
      break;
    case exportButton:
      ExportCalibrationFile(Context(), cdgFile_);
      break;
    default:
      break;
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
  return view_.ShowSelection(list, index).Then([&] {
    model.Selected = index;
    return OnListSelected(list);
  });
}

// The handler runs only if the value changes.
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
  return view_.ShowButtonEnabled(index, enabled).Then([&] {
    model_.ButtonsEnabled[static_cast<std::size_t>(index)] = enabled;
    return Status::Success();
  });
}

Status DeviceSetupPage::EnableCheck(CheckControl box, bool enabled) {
  return view_.ShowCheckEnabled(box, enabled).Then([&] {
    model_.Of(box).Enabled = enabled;
    return Status::Success();
  });
}

Status DeviceSetupPage::SetControlEnabled(ListControl list, HostBoolean enabled) {
  const auto colour = enabled == HostBoolean::True ? windowBackground : buttonFace;
  const bool isEnabled = enabled != HostBoolean::False;
  const auto showEnabled = [&] {
    model_.Of(list).BackColour = colour;
    return view_.ShowListEnabled(list, isEnabled);
  };
  return view_.ShowListColour(list, colour).Then(showEnabled).Then([&] {
    model_.Of(list).Enabled = isEnabled;
    return Status::Success();
  });
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
    return SetControlEnabled(list, enabled ? HostBoolean::True : HostBoolean::False);
  };
  return UntilFailure(buttons, enableButton).Then([&] { return UntilFailure(boxes, enableBox); }).Then([&] {
    return UntilFailure(lists, enableList);
  });
}

Status DeviceSetupPage::ShowPumpModule(bool connected) {
  const auto text = connected ? pumpConnectedText : pumpNotConnectedText;
  return view_.ShowPumpText(text).Then([&] {
    model_.PumpText = text;
    return Status::Success();
  });
}

std::int16_t DeviceSetupPage::ShowMessage(const std::string& message, std::int16_t style,
                                          const std::string& title) {
  // The host's answers may release the page's host object while the message is open; this reference keeps it.
  const auto host = host_.ObjectParent;
  return zolvane::ShowMessage(environment_, host.get(), message, style, title, host.get(), 0);
}

}  // namespace zolvane
