#include "page/device_setup_page.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/operation_fixture.h"
#include "support/recorded_view.h"

namespace zolvane {
namespace {

constexpr std::string_view configuration =
    "[DeviceType]\n"
    "Installed=2\n"
    "Item1=\"Small\",0,\"ZV200\"\n"
    "Item2=\"Large\",1,\"ZV400\"\n"
    "UploadCalibrationData=1\n"
    "DownloadCalibrationData=0\n"
    "ImportCalibrationData=0\n"
    "ExportCalibrationData=1\n"
    "SensorEnableRFID=1\n"
    "SensorEnableHeadInstalled=0\n"
    "SensorEnableTipsInstalled=1\n"
    "SDXYEncodersEnable=0\n"
    "[CageType]\n"
    "Installed=2\n"
    "Item1=\"Narrow\",SERIALDILUTE\n"
    "Item2=\"Wide\",MICROTITER\n"
    "[HeadType]\n"
    "Installed=4\n"
    "Item1=\"Block\",MICROTITER\n"
    "Item4=\"Comb\",SERIALDILUTE\n"
    "[NestType]\n"
    "Installed=1\n"
    "Item1=\"Nest\",NEST8\n"
    "[TipType]\n"
    "Installed=9\n"
    "Item1=\"Long Tip\",SERIALDILUTE\n"
    "[PumpControl]\n"
    "ModuleInstalled=1\n";

struct PageFixture : FakeHost {
  explicit PageFixture(std::string_view text = configuration) { Settings().Load(text); }

  HostAttachment Attachment = Attached();
  Configuration Config{Process};
  RecordedView View{Calls};
  DeviceSetupPage Page{Process, Attachment, Config, View};

  // Fills the controls, without leaving events.
  void Load() {
    Page.LoadDefaults();
    Calls.Clear();
  }

  Texts ViewCalls() const { return Calls.Of({"view "}); }
  Texts Writes() const { return Calls.Of({"write "}); }
  std::string Value(std::string_view section, std::string_view key) {
    return Settings().Value(section, key).value_or("(missing)");
  }

  const ListModel& List(ListControl list) const { return Page.Model().Of(list); }

  Texts EntriesOf(ListControl list) const {
    Texts texts;
    for (const auto& entry : List(list).Entries) {
      texts.push_back(entry.Text + "=" + std::to_string(entry.Data));
    }
    return texts;
  }
};

// What a list of the file's five sections is filled by.
constexpr std::array allLists{ListControl::DeviceType, ListControl::CageType, ListControl::HeadType,
                              ListControl::NestType, ListControl::TipType};
constexpr std::array allBoxes{CheckControl::RFID, CheckControl::HeadSensor, CheckControl::TipSensor,
                              CheckControl::Encoders};

// ---- Loading ----

TEST(LoadingThePage, FillsAllControlsInTheirOrder) {
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Calls.Of({"view", "write", "changed"}),
            (Texts{"view cboDeviceType entries Small=1|Large=2",
                   "view cboDeviceType selected 1",
                   "write [DeviceType] Installed=2",
                   "view cboCageType entries Narrow=1|Wide=2",
                   "view cboCageType added Not installed=0",
                   "view cboCageType selected 1",
                   "write [CageType] Installed=2",
                   "view cboHeadType entries Block=1|Comb=4",
                   "view cboHeadType added Not installed=0",
                   "view cboHeadType selected 1",
                   "write [HeadType] Installed=4",
                   "view cboTipType entries Long Tip=1",
                   "view cboTipType added Not installed=0",
                   "view cboTipType selected 0",
                   "write [TipType] Installed=1",
                   "view cboNestType entries Nest=1",
                   "view cboNestType added Not installed=0",
                   "view cboNestType selected 0",
                   "write [NestType] Installed=1",
                   "view pump Connected",
                   "view chkRFID checked 1",
                   "write [DeviceType] SensorEnableRFID=1",
                   "view chkHeadSensor checked 0",
                   "view chkTipSensor checked 1",
                   "write [DeviceType] SensorEnableTipsInstalled=1",
                   "view chkEncoders checked 0",
                   "view cmdButton(0) enabled true",
                   "view cmdButton(1) enabled false",
                   "view cmdButton(3) enabled false",
                   "view cmdButton(4) enabled true"}));
}

TEST(LoadingThePage, LoadsTheRecordsInForceBeforeItFillsAnything) {
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  const auto calls = fixture.Calls.Of({"view cboDeviceType entries", "read [Z_Calibration] MountHeight",
                                       "read [DeviceType] Upload", "read [CageType] CageReleaseHeight",
                                       "read [Device_TypeLarge_CageWide]", "read [HeadType] Item4",
                                       "read [TipType] TipChute", "read [NestType] Installed"});
  ASSERT_GE(calls.size(), 8U);
  EXPECT_EQ(
      Texts(calls.begin(), calls.begin() + 8),
      (Texts{"read [Z_Calibration] MountHeight", "read [DeviceType] UploadCalibrationData default \"1\"",
             "read [CageType] CageReleaseHeight", "read [Device_TypeLarge_CageWide] Axis1",
             "read [HeadType] Item4", "read [TipType] TipChuteClearOffset default \"12.5\"",
             "read [NestType] Installed", "view cboDeviceType entries Small=1|Large=2"}));
  EXPECT_EQ(fixture.Config.Current.Device.Name, "Large");
  EXPECT_EQ(fixture.Config.Current.Nest.Name, "Nest");
}

TEST(LoadingThePage, KeepsInItsModelWhatTheViewShows) {
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  for (const auto list : allLists) {
    EXPECT_EQ(fixture.List(list).Entries, fixture.View.Shown.Of(list).Entries);
    EXPECT_EQ(fixture.List(list).Selected, fixture.View.Shown.Of(list).Selected);
  }
  for (const auto box : allBoxes) {
    EXPECT_EQ(fixture.Page.Model().Of(box).Value, fixture.View.Shown.Of(box).Value);
  }
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, fixture.View.Shown.ButtonsEnabled);
  EXPECT_EQ(fixture.Page.Model().PumpText, "Connected");
}

TEST(LoadingThePage, LeavesTheHostsChangedAloneUntilItIsDone) {
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Window->Changed, std::nullopt);
  fixture.Page.ResetChanged();
  EXPECT_EQ(fixture.Window->Changed, false);
}

TEST(LoadingThePage, AddsNotInstalledToEveryListButTheDevices) {
  PageFixture fixture{""};
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.EntriesOf(ListControl::DeviceType), Texts{});
  for (const auto list :
       {ListControl::CageType, ListControl::HeadType, ListControl::NestType, ListControl::TipType}) {
    EXPECT_EQ(fixture.EntriesOf(list), Texts{"Not installed=0"});
    EXPECT_EQ(fixture.List(list).Selected, 0);
  }
}

TEST(LoadingThePage, SelectsAndWritesNothingForAnEmptyDeviceList) {
  PageFixture fixture{""};
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.List(ListControl::DeviceType).Selected, noSelection);
  EXPECT_EQ(fixture.Calls.Of({"view cboDeviceType selected", "write [DeviceType] Installed"}), Texts{});
}

TEST(LoadingThePage, WritesTheFirstEntryWhenTheInstalledNameIsNotInTheList) {
  // Item 9 is in no list of names: its record has none.
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.List(ListControl::TipType).Selected, 0);
  EXPECT_EQ(fixture.Value("TipType", "Installed"), "1");
}

TEST(LoadingThePage, SelectsTheInstalledEntryOfEveryList) {
  for (const auto list : allLists) {
    PageFixture fixture;
    const auto section = RowOf(list).Section;
    fixture.Settings().Set(section, "Item1", "\"First\"");
    fixture.Settings().Set(section, "Item2", "\"Second\",CODE");
    fixture.Settings().Set(section, "Installed", "2");
    fixture.Page.LoadDefaults();
    EXPECT_EQ(fixture.List(list).Selected, 1) << section;
    EXPECT_EQ(fixture.Value(section, "Installed"), "2");
  }
}

TEST(LoadingThePage, LosesNotInstalled) {
  PageFixture fixture;
  fixture.Settings().Set("CageType", "Installed", "0");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 0);
  EXPECT_EQ(fixture.Value("CageType", "Installed"), "1");
}

TEST(LoadingThePage, FindsARecordThatIsCalledNotInstalledBeforeTheAddedEntry) {
  PageFixture fixture;
  fixture.Settings().Set("CageType", "Item3", "\"Not Installed\",X");
  fixture.Settings().Set("CageType", "Installed", "3");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.EntriesOf(ListControl::CageType),
            (Texts{"Narrow=1", "Wide=2", "Not Installed=3", "Not installed=0"}));
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 2);
  EXPECT_EQ(fixture.Value("CageType", "Installed"), "3");
}

TEST(LoadingThePage, RunsTheHandlerOfThePreselectionAndThenThatOfTheInstalledEntry) {
  PageFixture fixture;
  fixture.Settings().Set("CageType", "Default", "first=\"Narrow\"");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Calls.Of({"view cboCageType", "write [CageType]"}),
            (Texts{"view cboCageType entries Narrow=1|Wide=2", "view cboCageType selected 0",
                   "write [CageType] Installed=1", "view cboCageType added Not installed=0",
                   "view cboCageType selected 1", "write [CageType] Installed=2"}));
}

TEST(LoadingThePage, ShowsThePumpModuleByItsKey) {
  for (const auto& [value, text] :
       {std::pair{"1", "Connected"}, std::pair{"True", "Connected"}, std::pair{"-1", "Connected"},
        std::pair{"0", "Not Connected"}, std::pair{"false", "Not Connected"}}) {
    PageFixture fixture;
    fixture.Settings().Set("PumpControl", "ModuleInstalled", value);
    fixture.Page.LoadDefaults();
    EXPECT_EQ(fixture.Calls.Of({"view pump"}), Texts{std::string{"view pump "} + text}) << value;
    EXPECT_EQ(fixture.Page.Model().PumpText, text);
  }
}

TEST(LoadingThePage, LeavesThePumpLabelAloneWhenItsKeyDoesNotConvert) {
  for (const auto* value : {"", "abc", "2.5abc"}) {
    PageFixture fixture;
    fixture.Settings().Set("PumpControl", "ModuleInstalled", value);
    fixture.Page.LoadDefaults();
    EXPECT_EQ(fixture.Calls.Of({"view pump"}), Texts{}) << value;
    EXPECT_EQ(fixture.Page.Model().PumpText, "Not Connected");
  }
}

TEST(LoadingThePage, ReadsPumpModuleAndSensorsWithoutADefaultInTheirOrder) {
  PageFixture fixture;
  fixture.Page.LoadDefaults();
  EXPECT_EQ(
      fixture.Calls.Of({"read [PumpControl]", "read [DeviceType] Sensor", "read [DeviceType] SDXYEncodersE"}),
      (Texts{"read [PumpControl] ModuleInstalled", "read [DeviceType] SensorEnableRFID",
             "read [DeviceType] SensorEnableHeadInstalled", "read [DeviceType] SensorEnableTipsInstalled",
             "read [DeviceType] SDXYEncodersEnable"}));
}

TEST(LoadingThePage, DoesNotRunTheHandlerOfABoxThatStaysAsItIs) {
  PageFixture fixture;
  fixture.Settings().Load("[DeviceType]\nSensorEnableRFID=0\n");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Calls.Of({"view chkRFID", "write [DeviceType] Sensor"}), Texts{"view chkRFID checked 0"});
}

TEST(LoadingThePage, LeavesAMissingOrUnreadableSensorKeyAsItIs) {
  for (const auto* line : {"", "SensorEnableRFID=\n", "SensorEnableRFID=on\n", "SensorEnableRFID=1mm\n"}) {
    PageFixture fixture{std::string{"[DeviceType]\n"} + line};
    const auto before = fixture.Value("DeviceType", "SensorEnableRFID");
    fixture.Page.LoadDefaults();
    EXPECT_EQ(fixture.Calls.Of({"view chk"}), Texts{}) << line;
    EXPECT_EQ(fixture.Page.Model().Of(CheckControl::RFID).Value, 0);
    EXPECT_EQ(fixture.Value("DeviceType", "SensorEnableRFID"), before);
  }
}

TEST(LoadingThePage, ASecondLoadLeavesABoxWhoseKeyNoLongerConverts) {
  PageFixture fixture;
  fixture.Load();
  fixture.Settings().Set("DeviceType", "SensorEnableRFID", "abc");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Page.Model().Of(CheckControl::RFID).Value, 1);
  EXPECT_EQ(fixture.Value("DeviceType", "SensorEnableRFID"), "abc");
}

TEST(LoadingThePage, ASecondLoadRunsTheHandlersOfTheBoxesThatChange) {
  PageFixture fixture;
  fixture.Load();
  fixture.Settings().Set("DeviceType", "SensorEnableRFID", "False");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Calls.Of({"view chkRFID", "view chkTip", "write [DeviceType] Sensor", "changed"}),
            (Texts{"view chkRFID checked 0", "write [DeviceType] SensorEnableRFID=0",
                   "view chkTipSensor checked 1"}));
}

TEST(LoadingThePage, ASecondLoadShowsAGreyBoxAsTicked) {
  PageFixture fixture;
  fixture.Load();
  fixture.Page.UserSetsCheck(CheckControl::Encoders, greyValue).Ok();
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Page.Model().Of(CheckControl::Encoders).Value, 1);
  EXPECT_EQ(fixture.Value("DeviceType", "SDXYEncodersEnable"), "1");
}

TEST(LoadingThePage, ASecondLoadStartsFromEmptyLists) {
  PageFixture fixture;
  fixture.Load();
  fixture.Settings().Set("CageType", "Item2", "");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.EntriesOf(ListControl::CageType), (Texts{"Narrow=1", "Not installed=0"}));
  EXPECT_EQ(fixture.View.Shown.Of(ListControl::CageType).Entries.size(), 2U);
}

TEST(LoadingThePage, ASecondLoadLeavesNothingSelectedInAListThatHasBecomeEmpty) {
  PageFixture fixture;
  fixture.Load();
  fixture.Settings().Load("[DeviceType]\nInstalled=2\n");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.List(ListControl::DeviceType).Selected, noSelection);
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "2");
}

TEST(LoadingThePage, EnablesAndDisablesTheTransferButtonsByTheDevicesSwitches) {
  for (const bool permitted : {false, true}) {
    PageFixture fixture;
    for (const auto* key : {"UploadCalibrationData", "DownloadCalibrationData", "ImportCalibrationData",
                            "ExportCalibrationData"}) {
      fixture.Settings().Set("DeviceType", key, permitted ? "1" : "0");
    }
    fixture.Page.LoadDefaults();
    EXPECT_EQ(fixture.Page.Model().ButtonsEnabled,
              (std::array{permitted, permitted, true, permitted, permitted}));
  }
}

TEST(LoadingThePage, TakesAMissingSwitchForPermission) {
  PageFixture fixture{""};
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, (std::array{true, true, true, true, true}));
}

TEST(LoadingThePage, GoesOnWhateverTheViewCannotShow) {
  PageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("view");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.ViewCalls().back(), "view cmdButton(4) enabled true");
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, (std::array{true, true, true, true, true}));
  EXPECT_EQ(fixture.Page.Model().PumpText, "Not Connected");
  EXPECT_EQ(fixture.EntriesOf(ListControl::CageType), Texts{});
}

TEST(LoadingThePage, GoesOnWhenNothingCanBeWritten) {
  PageFixture clean;
  clean.Page.LoadDefaults();
  PageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("write");
  fixture.Page.LoadDefaults();
  EXPECT_EQ(fixture.ViewCalls(), clean.ViewCalls());
}

// ---- What the user does ----

TEST(SelectingAnEntry, ResetsChangedAndThenWritesTheEntrysNumber) {
  const std::vector<std::pair<ListControl, const char*>> sections{{ListControl::DeviceType, "DeviceType"},
                                                                  {ListControl::CageType, "CageType"},
                                                                  {ListControl::HeadType, "HeadType"},
                                                                  {ListControl::NestType, "NestType"},
                                                                  {ListControl::TipType, "TipType"}};
  for (const auto& [list, section] : sections) {
    PageFixture fixture;
    fixture.Load();
    EXPECT_TRUE(fixture.Page.UserSelects(list, 0).Ok());
    EXPECT_EQ(fixture.Calls.Of({"changed", "write", "read"}),
              (Texts{"changed=false", std::string{"write ["} + section + "] Installed=1"}));
    EXPECT_EQ(fixture.List(list).Selected, 0);
  }
}

TEST(SelectingAnEntry, WritesTheNumberOfTheItemAndNotThePosition) {
  PageFixture fixture;
  fixture.Load();
  PassOver(fixture.Page.UserSelects(ListControl::HeadType, 1));
  EXPECT_EQ(fixture.Value("HeadType", "Installed"), "4");
}

TEST(SelectingAnEntry, WritesZeroForNotInstalled) {
  PageFixture fixture;
  fixture.Load();
  PassOver(fixture.Page.UserSelects(ListControl::HeadType, 2));
  EXPECT_EQ(fixture.Writes(), Texts{"write [HeadType] Installed=0"});
}

TEST(SelectingAnEntry, RunsTheHandlerAlsoWhenItIsAlreadySelected) {
  PageFixture fixture;
  fixture.Load();
  PassOver(fixture.Page.UserSelects(ListControl::DeviceType, 1));
  EXPECT_TRUE(fixture.Page.SelectEntry(ListControl::DeviceType, 1).Ok());
  EXPECT_EQ(fixture.Writes(), (Texts{"write [DeviceType] Installed=2", "write [DeviceType] Installed=2"}));
}

TEST(SelectingAnEntry, AProgramsChoiceRunsTheSameHandlerAlsoInADisabledList) {
  PageFixture fixture;
  fixture.Load();
  PassOver(fixture.Page.EnableControls(false));
  fixture.Calls.Clear();
  EXPECT_TRUE(fixture.Page.SelectEntry(ListControl::CageType, 0).Ok());
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"view cboCageType selected 0", "changed=false", "write [CageType] Installed=1"}));
}

TEST(SelectingAnEntry, FailsBeyondTheListAndLeavesTheSelection) {
  PageFixture fixture;
  fixture.Load();
  EXPECT_FALSE(fixture.Page.SelectEntry(ListControl::CageType, 3).Ok());
  EXPECT_FALSE(fixture.Page.SelectEntry(ListControl::CageType, -1).Ok());
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 1);
}

TEST(SelectingAnEntry, ReportsAWriteThatFails) {
  PageFixture fixture;
  fixture.Load();
  fixture.Calls.FailEverythingThatStartsWith("write");
  EXPECT_EQ(fixture.Page.UserSelects(ListControl::CageType, 0).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 0);
}

TEST(SelectingAnEntry, WritesAlsoWhenChangedCannotBeReset) {
  PageFixture fixture;
  fixture.Load();
  fixture.Calls.FailEverythingThatStartsWith("changed");
  EXPECT_TRUE(fixture.Page.UserSelects(ListControl::CageType, 0).Ok());
  EXPECT_EQ(fixture.Writes(), Texts{"write [CageType] Installed=1"});
}

TEST(SelectingAnEntry, OnlyTheFileIsWrittenWithoutAWindow) {
  PageFixture fixture;
  fixture.Load();
  fixture.Attachment.FormParent = nullptr;
  EXPECT_TRUE(fixture.Page.UserSelects(ListControl::CageType, 0).Ok());
  EXPECT_EQ(fixture.Calls.Of({"changed", "write"}), Texts{"write [CageType] Installed=1"});
}

TEST(SelectingAnEntry, AnEntryThatTheViewCannotShowRunsNoHandler) {
  PageFixture fixture;
  fixture.Load();
  fixture.Calls.FailEverythingThatStartsWith("view");
  EXPECT_EQ(fixture.Page.SelectEntry(ListControl::CageType, 0).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 1);
}

TEST(SettingACheckBox, ResetsChangedAndThenWritesItsKeyInTheDevicesSection) {
  const std::vector<std::pair<CheckControl, const char*>> keys{
      {CheckControl::RFID, "SensorEnableRFID"},
      {CheckControl::HeadSensor, "SensorEnableHeadInstalled"},
      {CheckControl::TipSensor, "SensorEnableTipsInstalled"},
      {CheckControl::Encoders, "SDXYEncodersEnable"}};
  for (const auto& [box, key] : keys) {
    for (const auto& [value, text] : {std::pair{0, "0"}, std::pair{1, "1"}, std::pair{2, "1"}}) {
      PageFixture fixture;
      EXPECT_TRUE(fixture.Page.UserSetsCheck(box, value).Ok());
      EXPECT_EQ(fixture.Calls.Of({"changed", "write", "read"}),
                (Texts{"changed=false", std::string{"write [DeviceType] "} + key + "=" + text}));
      EXPECT_EQ(fixture.Page.Model().Of(box).Value, value);
    }
  }
}

TEST(SettingACheckBox, RunsTheHandlerAlsoWhenTheUserSetsItToWhatItIs) {
  PageFixture fixture;
  PassOver(fixture.Page.UserSetsCheck(CheckControl::RFID, 0));
  EXPECT_EQ(fixture.Writes(), Texts{"write [DeviceType] SensorEnableRFID=0"});
}

TEST(SettingACheckBox, ReportsAWriteThatFails) {
  PageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("write");
  EXPECT_EQ(fixture.Page.UserSetsCheck(CheckControl::RFID, 1).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.Page.Model().Of(CheckControl::RFID).Value, 1);
}

TEST(SettingACheckBox, AValueThatTheViewCannotShowRunsNoHandler) {
  PageFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("view");
  EXPECT_EQ(fixture.Page.UserSetsCheck(CheckControl::RFID, 1).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.Writes(), Texts{});
  EXPECT_EQ(fixture.Page.Model().Of(CheckControl::RFID).Value, 0);
}

TEST(PressingAButton, RunsTheOperationOfItsIndexToTheEnd) {
  const std::vector<std::pair<int, const char*>> firstSteps{
      {0, "box 49 \"Upload Calibration Data to Zolvane\""},
      {1, "box 49 \"Download Calibration Data to Zolvane\""},
      {2, "send STATUS_STAGE"},
      {3, "box 51 \"Import Calibration Data\""},
      {4, "save dialogue"}};
  for (const auto& [index, firstStep] : firstSteps) {
    PageFixture fixture;
    fixture.Load();
    fixture.Page.PressButton(index);
    const auto steps = fixture.Calls.Of({"box", "send", "save", "open"});
    ASSERT_FALSE(steps.empty()) << index;
    EXPECT_TRUE(steps.front().starts_with(firstStep)) << steps.front();
    EXPECT_EQ(fixture.Calls.Of({"view cboTipType enabled"}),
              (Texts{"view cboTipType enabled false", "view cboTipType enabled true"}));
  }
}

TEST(PressingAButton, DoesNothingForAnyOtherIndex) {
  PageFixture fixture;
  for (const int index : {-1, 5, 6, 100, -2147483647}) {
    fixture.Page.PressButton(index);
  }
  EXPECT_EQ(fixture.Calls.Events, Texts{});
}

TEST(PressingAButton, KeepsTheFileDialogueBetweenImportAndExport) {
  PageFixture fixture;
  fixture.Load();
  fixture.Process.FileAnswers = {"/backup/a.bak"};
  fixture.Process.BoxAnswers = {message_answer::ok, message_answer::yes};
  fixture.Page.PressButton(exportButton);
  fixture.Page.PressButton(importButton);
  EXPECT_EQ(fixture.Calls.Of({"open", "save"}),
            (Texts{"save dialogue \"ZolvaneINIExport\"", "open dialogue \"/backup/a.bak\""}));
}

TEST(PressingAButton, LeavesTheControlsDisabledAfterACancelledUpload) {
  PageFixture fixture;
  fixture.Load();
  fixture.Process.BoxAnswers = {message_answer::cancel};
  fixture.Page.PressButton(uploadButton);
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, (std::array{false, false, false, false, false}));
  EXPECT_FALSE(fixture.List(ListControl::TipType).Enabled);
}

TEST(PressingAButton, AnImportThatForbidsImportsDisablesTheButton) {
  PageFixture fixture;
  fixture.Settings().Set("DeviceType", "ImportCalibrationData", "1");
  fixture.Load();
  fixture.Settings().Load("/backup/a.bak",
                          "[DeviceType]\nItem1=\"Small\",0,\"Z\"\nItem2=\"Large\",0,\"Z\"\n"
                          "ImportCalibrationData=0\n");
  fixture.Process.FileAnswers = {"/backup/a.bak"};
  fixture.Process.BoxAnswers = {message_answer::yes};
  fixture.Page.PressButton(importButton);
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, (std::array{true, true, true, false, true}));
}

TEST(PressingAButton, AQueryThatFindsAnotherDeviceUsesItsSwitches) {
  PageFixture fixture;
  fixture.Load();
  fixture.Link().WhileSending = [&](const std::string& command) {
    if (command == "STATUS_STAGE") {
      fixture.Settings().Set("DeviceType", "UploadCalibrationData", "0");
    }
  };
  fixture.Page.PressButton(queryButton);
  EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, (std::array{false, false, true, false, true}));
}

TEST(ResetChanged, SetsTheHostsChangedToFalse) {
  PageFixture fixture;
  fixture.Window->Changed = true;
  fixture.Page.ResetChanged();
  EXPECT_EQ(fixture.Calls.Events, Texts{"changed=false"});
}

TEST(ResetChanged, DoesNothingWithoutAWindow) {
  PageFixture fixture;
  fixture.Attachment.FormParent = nullptr;
  fixture.Page.ResetChanged();
  EXPECT_EQ(fixture.Calls.Events, Texts{});
}

// ---- Enabling ----

TEST(EnableControls, GoesThroughAllControlsInTheirOrder) {
  PageFixture fixture;
  fixture.Load();
  EXPECT_TRUE(fixture.Page.EnableControls(true).Ok());
  EXPECT_EQ(
      fixture.Calls.Events,
      (Texts{"view cmdButton(2) enabled true", "view cmdButton(0) enabled true",
             "view cmdButton(1) enabled false", "view cmdButton(3) enabled false",
             "view cmdButton(4) enabled true", "view chkEncoders enabled true",
             "view chkHeadSensor enabled true", "view chkRFID enabled true", "view chkTipSensor enabled true",
             "view cboDeviceType colour 2147483653", "view cboDeviceType enabled true",
             "view cboCageType colour 2147483653", "view cboCageType enabled true",
             "view cboHeadType colour 2147483653", "view cboHeadType enabled true",
             "view cboNestType colour 2147483653", "view cboNestType enabled true",
             "view cboTipType colour 2147483653", "view cboTipType enabled true"}));
}

TEST(EnableControls, DisablesEverythingWhateverTheSwitches) {
  PageFixture fixture;
  fixture.Load();
  EXPECT_TRUE(fixture.Page.EnableControls(false).Ok());
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"view cmdButton(2) enabled false", "view cmdButton(0) enabled false",
                   "view cmdButton(1) enabled false", "view cmdButton(3) enabled false",
                   "view cmdButton(4) enabled false", "view chkEncoders enabled false",
                   "view chkHeadSensor enabled false", "view chkRFID enabled false",
                   "view chkTipSensor enabled false", "view cboDeviceType colour 2147483663",
                   "view cboDeviceType enabled false", "view cboCageType colour 2147483663",
                   "view cboCageType enabled false", "view cboHeadType colour 2147483663",
                   "view cboHeadType enabled false", "view cboNestType colour 2147483663",
                   "view cboNestType enabled false", "view cboTipType colour 2147483663",
                   "view cboTipType enabled false"}));
  for (const auto list : allLists) {
    EXPECT_FALSE(fixture.List(list).Enabled);
    EXPECT_EQ(fixture.List(list).BackColour, buttonFace);
  }
  for (const auto box : allBoxes) {
    EXPECT_FALSE(fixture.Page.Model().Of(box).Enabled);
  }
}

TEST(EnableControls, TakesTheSwitchesOfTheDeviceInForceWithoutReadingThemAgain) {
  PageFixture fixture;
  fixture.Load();
  const std::vector<std::pair<bool DeviceTypeRecord::*, std::size_t>> switches{
      {&DeviceTypeRecord::UploadCalibrationData, 0},
      {&DeviceTypeRecord::DownloadCalibrationData, 1},
      {&DeviceTypeRecord::ImportCalibrationData, 3},
      {&DeviceTypeRecord::ExportCalibrationData, 4}};
  for (const auto& [permission, button] : switches) {
    for (const auto& [other, otherButton] : switches) {
      fixture.Config.Current.Device.*other = otherButton == button;
    }
    std::array<bool, 5> expected{false, false, true, false, false};
    expected.at(button) = true;
    PassOver(fixture.Page.EnableControls(true));
    EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, expected);
    EXPECT_EQ(fixture.View.Shown.ButtonsEnabled, expected);
  }
  EXPECT_EQ(fixture.Calls.Of({"read"}), Texts{});
}

TEST(EnableControls, EndsAtItsFirstFailure) {
  PageFixture clean;
  clean.Load();
  PassOver(clean.Page.EnableControls(false));
  const auto all = clean.Calls.Events;
  ASSERT_EQ(all.size(), 19U);
  for (std::size_t failing = 1; failing <= all.size(); ++failing) {
    PageFixture fixture;
    fixture.Load();
    fixture.Calls.FailingCall = failing;
    EXPECT_EQ(fixture.Page.EnableControls(false).Code(), Journal::failureCode);
    EXPECT_EQ(fixture.Calls.Events, Texts(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(failing)));
    for (const auto list : allLists) {
      EXPECT_EQ(fixture.List(list).Enabled, fixture.View.Shown.Of(list).Enabled);
      EXPECT_EQ(fixture.List(list).BackColour, fixture.View.Shown.Of(list).BackColour);
    }
    for (const auto box : allBoxes) {
      EXPECT_EQ(fixture.Page.Model().Of(box).Enabled, fixture.View.Shown.Of(box).Enabled);
    }
    EXPECT_EQ(fixture.Page.Model().ButtonsEnabled, fixture.View.Shown.ButtonsEnabled);
  }
}

// A host that is told of the change may have the page loaded again, from a file that has become another.
TEST(SetControlEnabled, SetsTheColourAndThenTheState) {
  PageFixture fixture;
  EXPECT_TRUE(fixture.Page.SetControlEnabled(ListControl::HeadType, HostBoolean::True).Ok());
  EXPECT_TRUE(fixture.Page.SetControlEnabled(ListControl::HeadType, HostBoolean::False).Ok());
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"view cboHeadType colour 2147483653", "view cboHeadType enabled true",
                   "view cboHeadType colour 2147483663", "view cboHeadType enabled false"}));
}

TEST(SetControlEnabled, GivesTheButtonFaceColourForEveryValueButExactlyTrue) {
  for (const auto value : std::initializer_list<std::int16_t>{1, 2, -2, 255, 32767}) {
    PageFixture fixture;
    EXPECT_TRUE(fixture.Page.SetControlEnabled(ListControl::HeadType, HostBoolean{value}).Ok());
    EXPECT_EQ(fixture.Calls.Events,
              (Texts{"view cboHeadType colour 2147483663", "view cboHeadType enabled true"}))
        << value;
  }
}

// ---- What operations ask ----

TEST(FindListIndex, IgnoresCaseAndTakesTheFirstMatch) {
  PageFixture fixture{"[CageType]\nItem1=\"One\"\nItem2=\"two\"\nItem3=\"TWO\"\n"};
  fixture.Load();
  EXPECT_EQ(fixture.Page.FindListIndex("TWO", ListControl::CageType), 1);
  EXPECT_EQ(fixture.Page.FindListIndex("one", ListControl::CageType), 0);
  EXPECT_EQ(fixture.Page.FindListIndex("NOT INSTALLED", ListControl::CageType), 3);
}

TEST(FindListIndex, IsZeroWithoutAMatch) {
  PageFixture fixture;
  fixture.Load();
  EXPECT_EQ(fixture.Page.FindListIndex("Narro", ListControl::CageType), 0);
  EXPECT_EQ(fixture.Page.FindListIndex("", ListControl::CageType), 0);
  EXPECT_EQ(PageFixture{""}.Page.FindListIndex("Wide", ListControl::CageType), 0);
}

TEST(ShowPumpModule, ShowsOneOfTwoTexts) {
  PageFixture fixture;
  EXPECT_TRUE(fixture.Page.ShowPumpModule(true).Ok());
  EXPECT_EQ(fixture.Page.Model().PumpText, "Connected");
  EXPECT_TRUE(fixture.Page.ShowPumpModule(false).Ok());
  EXPECT_EQ(fixture.Page.Model().PumpText, "Not Connected");
  EXPECT_EQ(fixture.Calls.Events, (Texts{"view pump Connected", "view pump Not Connected"}));
  fixture.Calls.FailEverythingThatStartsWith("view");
  EXPECT_EQ(fixture.Page.ShowPumpModule(true).Code(), Journal::failureCode);
  EXPECT_EQ(fixture.Page.Model().PumpText, "Not Connected");
}

TEST(ShowMessageOnThePage, UsesTheHostObjectForTheLogAndForTheDialogueWithoutAnExtraStyle) {
  PageFixture fixture;
  EXPECT_EQ(fixture.Page.ShowMessage("Text", 0, "Title"), 1);
  EXPECT_EQ(fixture.Calls.Events,
            (Texts{"log ******* Message dialogue : Title [Text]", "dialogue available?",
                   "box 65584 \"Title\" \"Text\"", "log ******* Message dialogue : button selected : 1"}));
  fixture.Calls.Clear();
  fixture.Object->OffersDialog = true;
  fixture.Object->Dialog->Results = {2};
  EXPECT_EQ(fixture.Page.ShowMessage("Text", 1, "Title"), 2);
  EXPECT_EQ(fixture.Calls.Of({"dialogue style", "dialogue show"}),
            (Texts{"dialogue style 1", "dialogue show true"}));
}

TEST(ShowMessageOnThePage, ShowsABoxWithoutAHostObject) {
  PageFixture fixture;
  fixture.Attachment.ObjectParent = nullptr;
  fixture.Page.ShowMessage("Text", 0, "Title");
  EXPECT_EQ(fixture.Calls.Events, Texts{"box 65584 \"Title\" \"Text\""});
}

TEST(ShowMessageOnThePage, OutlivesThePagesHostObject) {
  PageFixture fixture;
  fixture.Object->OffersDialog = true;
  fixture.Object->Dialog->Results = {-1, 2};
  const std::weak_ptr<FakeHostObject> host = fixture.Object;
  fixture.Process.WhileYielding = [&] {
    fixture.Attachment.ObjectParent = nullptr;
    fixture.Object = nullptr;
  };
  EXPECT_EQ(fixture.Page.ShowMessage("Text", 0, "Title"), 2);
  EXPECT_EQ(fixture.Calls.Events.back(), "log ******* Message dialogue : button selected : 2");
  EXPECT_TRUE(host.expired());
}

TEST(TheCommunicationError, IsLoggedInOneLineAndShownInTheForeground) {
  PageFixture fixture;
  fixture.Load();
  fixture.Link().DefaultReply = NoAnswer();
  fixture.Page.PressButton(queryButton);
  const auto calls = fixture.Calls.Of({"log", "box"});
  ASSERT_EQ(calls.size(), 12U);
  EXPECT_EQ(
      calls[0],
      "log ******* Message dialogue : Communication Error [Getting Zolvane Type, , Please ensure that the "
      "Zolvane is switched on, and in 'Remote Mode']");
  EXPECT_EQ(
      calls[1],
      "box 65584 \"Communication Error\" \"Getting Zolvane Type\r\n\r\nPlease ensure that the Zolvane is "
      "switched on\r\nand in 'Remote Mode'\"");
  EXPECT_EQ(calls[2], "log ******* Message dialogue : button selected : 1");
}

TEST(Detection, AnUnknownModuleIsOverwrittenWithTheFirstEntry) {
  PageFixture fixture;
  fixture.Load();
  fixture.Link().Replies["STATUS_MECH"] = {Answer("sd")};
  fixture.Page.PressButton(queryButton);
  const auto writes = fixture.Calls.Of({"write [CageType]"});
  EXPECT_EQ(writes, (Texts{"write [CageType] Installed=1", "write [CageType] Installed=0",
                           "write [CageType] Installed=1"}));
}

TEST(Detection, TheModuleListMovesAndNotTheDeviceList) {
  PageFixture fixture;
  fixture.Load();
  fixture.Link().Replies["STATUS_STAGE"] = {Answer("ZV200")};
  fixture.Link().Replies["STATUS_MECH"] = {NoAnswer()};
  fixture.Page.PressButton(queryButton);
  EXPECT_EQ(fixture.List(ListControl::DeviceType).Selected, 1);
  EXPECT_EQ(fixture.List(ListControl::CageType).Selected, 0);
  EXPECT_EQ(fixture.Value("DeviceType", "Installed"), "1");
  EXPECT_EQ(fixture.Value("CageType", "Installed"), "1");
}

TEST(Detection, TheNumberOfAHeadWhoseNameAnotherSharesIsOverwritten) {
  PageFixture fixture;
  const auto line = [](const std::string& name, const std::string& tag) {
    return "\"" + name + "\",M,1,2,3,96,0,0,0,0,0,0,0,0,0,0,96_CH,0,\"" + tag + "\"";
  };
  fixture.Settings().Set("HeadType", "Item1", line("Comb", "TAG1"));
  fixture.Settings().Set("HeadType", "Item2", line("COMB", "TAG2"));
  fixture.Load();
  fixture.Link().Replies["RFID READ_PERSISTENT"] = {Answer("1,2,TAG2,4,5")};
  fixture.Page.PressButton(queryButton);
  EXPECT_EQ(fixture.Calls.Of({"write [HeadType]"}),
            (Texts{"write [HeadType] Installed=2", "write [HeadType] Installed=1"}));
}

}  // namespace
}  // namespace zolvane
