// The page as a user sees it once the host has taken its frame into one of its windows.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/silent_events.h"
#include "shell/windows/page/page_frame.h"
#include "win32/text.h"
#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

using namespace control_ids;

std::string Plain(std::string caption) {
  std::erase(caption, '&');
  return caption;
}

// ---- What is there ----

struct ExpectedControl {
  int Id;
  std::wstring_view Class;
  std::string_view Caption;
  DWORD Kind;  // the low bits of a button's style
};

TEST(PageWindow, HasEveryControlOfItsKindWithItsCaption) {
  const HostedPage page;
  const std::array expected{
      ExpectedControl{titleId, L"Static", "Zolvane Setup", 0},
      ExpectedControl{settingsFrameId, L"Button", "Configuration File Settings", BS_GROUPBOX},
      ExpectedControl{calibrationFrameId, L"Button", "Calibrated Data", BS_GROUPBOX},
      ExpectedControl{pumpLabelId, L"Static", "Pump Module Installed", 0},
      ExpectedControl{pumpTextId, L"Static", "Connected", 0},
      ExpectedControl{firstListLabelId, L"Static", "Zolvane", 0},
      ExpectedControl{firstListLabelId + 1, L"Static", "Pipette Module", 0},
      ExpectedControl{firstListLabelId + 2, L"Static", "Pipette Head", 0},
      ExpectedControl{firstListLabelId + 3, L"Static", "Pipette Head Nest", 0},
      ExpectedControl{firstListLabelId + 4, L"Static", "Tip Type", 0},
      ExpectedControl{rfidBox, L"Button", "Enable RFID", BS_AUTOCHECKBOX},
      ExpectedControl{headBox, L"Button", "Enable 96/384 Head Sensor", BS_AUTOCHECKBOX},
      ExpectedControl{tipBox, L"Button", "Enable 96/384 Tip Sensor", BS_AUTOCHECKBOX},
      ExpectedControl{encoderBox, L"Button", "Enable 1/8/12 Module Encoders", BS_AUTOCHECKBOX},
      ExpectedControl{upload, L"Button", "Save To Zolvane", BS_PUSHBUTTON},
      ExpectedControl{download, L"Button", "Load From Zolvane", BS_PUSHBUTTON},
      ExpectedControl{query, L"Button", "Query Zolvane", BS_PUSHBUTTON},
      ExpectedControl{import, L"Button", "Load from File", BS_PUSHBUTTON},
      ExpectedControl{save, L"Button", "Save To File", BS_PUSHBUTTON},
  };
  for (const auto& control : expected) {
    SCOPED_TRACE(control.Caption);
    const HWND window = page.Control(control.Id);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(ClassOf(window), control.Class);
    EXPECT_EQ(Plain(CaptionOf(window)), control.Caption);
    if (control.Class == L"Button") {
      EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & BS_TYPEMASK, control.Kind);
    }
  }
  for (const int list : {deviceList, cageList, headList, nestList, tipList}) {
    EXPECT_EQ(ClassOf(page.Control(list)), L"ComboBox");
    EXPECT_EQ(GetWindowLongW(page.Control(list), GWL_STYLE) & 3, CBS_DROPDOWNLIST);
  }
}

BOOL CALLBACK CountChild(HWND, LPARAM count) {
  ++*reinterpret_cast<std::size_t*>(count);
  return TRUE;
}

TEST(PageWindow, HasNoControlBesidesThose) {
  const HostedPage page;
  std::size_t count = 0;
  EnumChildWindows(page.Frame(), CountChild, reinterpret_cast<LPARAM>(&count));
  EXPECT_EQ(count, 24U);
}

std::string FaceOf(HWND control) {
  LOGFONTW font{};
  auto* const handle = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
  GetObjectW(handle, sizeof(font), &font);
  return Utf8(std::data(font.lfFaceName));
}

TEST(PageWindow, SetsTheTitleInArialAndAllElseInTheFontOfTheSystem) {
  const HostedPage page;
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  EXPECT_EQ(FaceOf(page.Control(titleId)), "Arial");
  for (const int id : controlsInTabOrder) {
    EXPECT_EQ(FaceOf(page.Control(id)), Utf8(std::data(metrics.lfMessageFont.lfFaceName)));
  }
}

TEST(PageWindow, StaysInsideOfTheHostAndIsNotMovedByTheAddIn) {
  const HostedPage page;
  SendMessageW(page.Frame(), WM_COMMAND, MAKEWPARAM(rfidBox, BN_CLICKED),
               reinterpret_cast<LPARAM>(page.Control(rfidBox)));
  EXPECT_EQ(GetParent(page.Frame()), page.Window());
  const RECT place = PlaceOf(page.Frame());
  EXPECT_EQ(place.left, 10);
  EXPECT_EQ(place.top, 10);
}

// ---- Colours and the time of an operation ----

// As it stands on the screen, between the text and the arrow.
COLORREF BackgroundOf(HWND host, HWND list) {
  UpdateWindow(list);
  RECT place{};
  GetWindowRect(list, &place);
  RECT window{};
  GetWindowRect(host, &window);
  const HDC context = GetWindowDC(host);
  const COLORREF colour =
      GetPixel(context, place.right - 40 - window.left, (place.top + place.bottom) / 2 - window.top);
  ReleaseDC(host, context);
  return colour;
}

TEST(PageWindow, OfItsOwnCannotBeClosedFromOutside) {
  const HostedPage page;
  const HWND own = FindWindowW(nullptr, L"Zolvane Setup");
  ASSERT_NE(own, nullptr);
  SendMessageW(own, WM_CLOSE, 0, 0);
  EXPECT_TRUE(IsWindow(own));
}

TEST(PageWindow, AnOperationGreysTheListsAndDisablesTheControlsAndPutsAllBack) {
  constexpr std::array lists{deviceList, cageList, headList, nestList, tipList};
  ASSERT_NE(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_BTNFACE));
  HostedPage page;
  std::vector<std::string> seen;
  page.Host().Link().WhileSending = [&](const std::string& command) {
    seen.push_back(command + " " + page.Host().Window->Panel->Shown);
    for (const int id : controlsInTabOrder) {
      EXPECT_FALSE(IsWindowEnabled(page.Control(id))) << id;
    }
    for (const int list : lists) {
      EXPECT_EQ(BackgroundOf(page.Window(), page.Control(list)), GetSysColor(COLOR_BTNFACE)) << list;
    }
  };
  for (const int list : lists) {
    EXPECT_EQ(BackgroundOf(page.Window(), page.Control(list)), GetSysColor(COLOR_WINDOW)) << list;
  }
  SendMessageW(page.Control(query), BM_CLICK, 0, 0);
  ASSERT_EQ(seen.size(), 5U);
  EXPECT_EQ(seen.front(), "STATUS_STAGE Getting Zolvane Type");
  EXPECT_EQ(page.Host().Window->Panel->Shown, "");
  for (const int id : controlsInTabOrder) {
    EXPECT_TRUE(IsWindowEnabled(page.Control(id))) << id;
  }
  for (const int list : lists) {
    EXPECT_EQ(BackgroundOf(page.Window(), page.Control(list)), GetSysColor(COLOR_WINDOW)) << list;
  }
}

COLORREF BrushColour(LRESULT brush) {
  LOGBRUSH description{};
  GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof(description), &description);
  return description.lbColor;
}

TEST(PageWindow, AnswersTheColourQuestionsOfItsControls) {
  const HostedPage page;
  const HDC context = GetDC(page.Frame());
  const auto answer = [&](UINT question, int id) {
    return BrushColour(SendMessageW(page.Frame(), question, reinterpret_cast<WPARAM>(context),
                                    reinterpret_cast<LPARAM>(page.Control(id))));
  };
  EXPECT_EQ(answer(WM_CTLCOLOREDIT, deviceList), GetSysColor(COLOR_WINDOW));
  EXPECT_EQ(GetBkColor(context), GetSysColor(COLOR_WINDOW));
  EXPECT_EQ(answer(WM_CTLCOLORSTATIC, pumpTextId), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(GetBkColor(context), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(answer(WM_CTLCOLORBTN, query), GetSysColor(COLOR_BTNFACE));
  ReleaseDC(page.Frame(), context);
}

// A host owns the window that it has embedded and may send it anything.
TEST(PageWindow, AMessageThatNamesNoListIsNoChoice) {
  class CountingEvents final : public SilentEvents {
   public:
    int Choices = 0;
    Status UserSelects(ListControl, int) override { return ++Choices, Status::Success(); }
  } events;
  const auto frame = PageFrame::Create(events, {});
  for (WPARAM number = 0; number < 300; ++number) {
    SendMessageW(frame->Frame(), WM_APP, number, 0);
  }
  SendMessageW(frame->Frame(), WM_APP, static_cast<WPARAM>(-1), 0);
  EXPECT_EQ(events.Choices, 0);
}

}  // namespace
}  // namespace zolvane
