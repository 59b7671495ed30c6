// What clicks do on the page's controls and beside them.
#include <gtest/gtest.h>

#include <string>

#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

using namespace control_ids;

void Click(HWND control) {
  constexpr LPARAM inside = MAKELPARAM(5, 5);
  SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, inside);
  SendMessageW(control, WM_LBUTTONUP, 0, inside);
}

LRESULT ValueOf(HWND box) {
  return SendMessageW(box, BM_GETCHECK, 0, 0);
}

TEST(PageMouse, AClickUnticksATickedBoxAndTicksAnUntickedOneWithOneWriteEach) {
  HostedPage page;
  const HWND box = page.Control(rfidBox);
  ASSERT_EQ(ValueOf(box), BST_CHECKED);
  struct Step {
    LRESULT Value;
    std::string_view Stored;
  };
  for (const auto& [value, stored] :
       {Step{BST_UNCHECKED, "0"}, Step{BST_CHECKED, "1"}, Step{BST_UNCHECKED, "0"}}) {
    page.Host().Calls.Clear();
    Click(box);
    EXPECT_EQ(ValueOf(box), value);
    EXPECT_EQ(page.Stored("DeviceType", "SensorEnableRFID"), stored);
    EXPECT_EQ(page.Host().Calls.Of({"write "}).size(), 1U);
  }
}

// As a program does that works the page by its windows.
void SetByProgram(const HostedPage& page, int id, WPARAM value) {
  SendMessageW(page.Control(id), BM_SETCHECK, value, 0);
  SendMessageW(page.Frame(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(page.Control(id)));
}

TEST(PageMouse, AProgramCanSetABoxGreyWhichIsStoredAsTicked) {
  const HostedPage page;
  for (const int before : {0, 1}) {
    SetByProgram(page, tipBox, static_cast<WPARAM>(before));
    SetByProgram(page, tipBox, greyValue);
    EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_INDETERMINATE) << before;
    EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "1") << before;
  }
}

TEST(PageMouse, AClickOnAGreyBoxUnticksItAndTheNextOneTicksIt) {
  HostedPage page;
  SetByProgram(page, tipBox, greyValue);
  page.Host().Calls.Clear();
  Click(page.Control(tipBox));
  EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_UNCHECKED);
  EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "0");
  Click(page.Control(tipBox));
  EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_CHECKED);
  EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "1");
  EXPECT_EQ(page.Host().Calls.Of({"write "}).size(), 2U);
}

// The point of the frame over the middle of a control.
LPARAM Over(HWND control) {
  const RECT place = PlaceOf(control);
  return MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
}

TEST(PageMouse, AClickBesideTheControlsReachesTheHostWindow) {
  HostedPage page;
  SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
  EXPECT_EQ(page.Host().Calls.Count("focus"), 1U);
  for (const int text : {titleId, pumpLabelId, firstListLabelId}) {
    SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, Over(page.Control(text)));
  }
  EXPECT_EQ(page.Host().Calls.Count("focus"), 4U);
}

// The system hands clicks that a text or a group box does not want to the window behind it.
TEST(PageMouse, TextsAndGroupBoxesLetClicksThrough) {
  const HostedPage page;
  for (const int id : {titleId, pumpLabelId, settingsFrameId, calibrationFrameId}) {
    EXPECT_EQ(SendMessageW(page.Control(id), WM_NCHITTEST, 0, 0), HTTRANSPARENT) << id;
  }
}

TEST(PageMouse, AClickOnADisabledControlIsNoneOnTheFrame) {
  HostedPage page;
  for (const int id : controlsInTabOrder) {
    EnableWindow(page.Control(id), FALSE);
    SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, Over(page.Control(id)));
  }
  EXPECT_EQ(page.Host().Calls.Count("focus"), 0U);
}

TEST(PageMouse, AClickOnAControlIsNoneOnTheFrame) {
  HostedPage page;
  Click(page.Control(rfidBox));
  EXPECT_EQ(page.Host().Calls.Count("focus"), 0U);
}

}  // namespace
}  // namespace zolvane
