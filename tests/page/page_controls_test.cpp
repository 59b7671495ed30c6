#include "page/page_controls.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>
#include <vector>

#include "page/page_model.h"

namespace zolvane {
namespace {

using Columns = std::vector<std::string_view>;

Columns ColumnsOf(ListControl list) {
  const auto& row = RowOf(list);
  return {row.Name, row.Label, row.Section, row.HasNotInstalled ? "with Not installed" : "without"};
}

TEST(PageControls, HoldTheFiveLists) {
  EXPECT_EQ(ColumnsOf(ListControl::DeviceType),
            (Columns{"cboDeviceType", "Zolvane", "DeviceType", "without"}));
  EXPECT_EQ(ColumnsOf(ListControl::CageType),
            (Columns{"cboCageType", "Pipette Module", "CageType", "with Not installed"}));
  EXPECT_EQ(ColumnsOf(ListControl::HeadType),
            (Columns{"cboHeadType", "Pipette Head", "HeadType", "with Not installed"}));
  EXPECT_EQ(ColumnsOf(ListControl::NestType),
            (Columns{"cboNestType", "Pipette Head Nest", "NestType", "with Not installed"}));
  EXPECT_EQ(RowOf(ListControl::TipType).Name, "cboTipType");
  EXPECT_EQ(RowOf(ListControl::TipType).Section, "TipType");
  EXPECT_TRUE(RowOf(ListControl::TipType).HasNotInstalled);
  EXPECT_FALSE(RowOf(ListControl::TipType).Label.empty());
}

Columns ColumnsOf(CheckControl box) {
  const auto& row = RowOf(box);
  return {row.Name, row.Label, row.Key};
}

TEST(PageControls, HoldTheFourCheckBoxes) {
  EXPECT_EQ(ColumnsOf(CheckControl::RFID), (Columns{"chkRFID", "Enable RFID", "SensorEnableRFID"}));
  EXPECT_EQ(ColumnsOf(CheckControl::HeadSensor),
            (Columns{"chkHeadSensor", "Enable 96/384 Head Sensor", "SensorEnableHeadInstalled"}));
  EXPECT_EQ(ColumnsOf(CheckControl::TipSensor),
            (Columns{"chkTipSensor", "Enable 96/384 Tip Sensor", "SensorEnableTipsInstalled"}));
  EXPECT_EQ(ColumnsOf(CheckControl::Encoders),
            (Columns{"chkEncoders", "Enable 1/8/12 Module Encoders", "SDXYEncodersEnable"}));
}

TEST(PageControls, HoldTheFiveButtons) {
  Columns names;
  Columns captions;
  for (const auto& row : buttonRows) {
    names.push_back(row.Name);
    captions.push_back(row.Caption);
  }
  EXPECT_EQ(names, (Columns{"cmdButton(0)", "cmdButton(1)", "cmdButton(2)", "cmdButton(3)", "cmdButton(4)"}));
  EXPECT_EQ(captions, (Columns{"Save To Zolvane", "Load From Zolvane", "Query Zolvane", "Load from File",
                               "Save To File"}));
}

TEST(PageControls, HoldTheLabelsAndFrames) {
  EXPECT_EQ(pageCaption, "Zolvane Setup");
  EXPECT_EQ(titleLabel.Name, "lblTitle");
  EXPECT_EQ(titleLabel.Caption, "Zolvane Setup");
  EXPECT_EQ(pumpLabel.Name, "lblPumps");
  EXPECT_EQ(pumpLabel.Caption, "Pump Module Installed");
  EXPECT_EQ(settingsFrame.Caption, "Configuration File Settings");
  EXPECT_EQ(calibrationFrame.Caption, "Calibrated Data");
}

TEST(PageControls, NumberTheStatesOfABoxAsViewsReportThem) {
  EXPECT_EQ(untickedValue, 0);
  EXPECT_EQ(tickedValue, 1);
  EXPECT_EQ(greyValue, 2);
}

TEST(PageControls, TakeTheirColoursFromTheSystem) {
  EXPECT_EQ(windowBackground, 2147483653U);
  EXPECT_EQ(buttonFace, 2147483663U);
}

TEST(PageModel, StartsWithEmptyEnabledControls) {
  const PageModel model;
  for (const auto& list : model.Lists) {
    EXPECT_TRUE(list.Entries.empty());
    EXPECT_EQ(list.Selected, -1);
    EXPECT_TRUE(list.Enabled);
    EXPECT_EQ(list.BackColour, 2147483653U);
  }
  for (const auto& box : model.Checks) {
    EXPECT_EQ(box.Value, 0);
    EXPECT_TRUE(box.Enabled);
  }
  EXPECT_EQ(model.ButtonsEnabled, (std::array{true, true, true, true, true}));
  EXPECT_EQ(model.PumpText, "Not Connected");
}

}  // namespace
}  // namespace zolvane
