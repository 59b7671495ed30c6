// The page as a user sees and uses it once the host has taken its frame into one of its windows.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "shell/windows/page/page_frame.h"
#include "win32/text.h"
#include "windows/page/silent_events.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

constexpr int deviceList = IdOf(ListControl::DeviceType);
constexpr int cageList = IdOf(ListControl::CageType);
constexpr int headList = IdOf(ListControl::HeadType);
constexpr int nestList = IdOf(ListControl::NestType);
constexpr int tipList = IdOf(ListControl::TipType);
constexpr int rfidBox = IdOf(CheckControl::RFID);
constexpr int headBox = IdOf(CheckControl::HeadSensor);
constexpr int tipBox = IdOf(CheckControl::TipSensor);
constexpr int encoderBox = IdOf(CheckControl::Encoders);
constexpr int upload = IdOfButton(0);
constexpr int download = IdOfButton(1);
constexpr int query = IdOfButton(2);
constexpr int import = IdOfButton(3);
constexpr int save = IdOfButton(4);

constexpr std::array controlsInTabOrder{deviceList, cageList, headList, nestList,   tipList,
                                        rfidBox,    headBox,  tipBox,   encoderBox, query,
                                        upload,     download, import,   save};

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

// ---- The keyboard ----

// Counts how often a window is asked for its menu by the keyboard, and opens none.
class MenuRequests {
 public:
  explicit MenuRequests(HWND window)
      : window_{window},
        before_{reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC))},
        userData_{GetWindowLongPtrW(window, GWLP_USERDATA)} {
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
  }
  ~MenuRequests() {
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before_));
    SetWindowLongPtrW(window_, GWLP_USERDATA, userData_);
  }
  MenuRequests(const MenuRequests&) = delete;
  MenuRequests& operator=(const MenuRequests&) = delete;

  int Count() const { return count_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    constexpr WPARAM commandBits = 0xFFF0;
    auto& self = *reinterpret_cast<MenuRequests*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_SYSCOMMAND && (wParam & commandBits) == SC_KEYMENU) {
      ++self.count_;
      return 0;
    }
    return CallWindowProcW(self.before_, window, message, wParam, lParam);
  }

  HWND window_;
  WNDPROC before_;
  LONG_PTR userData_;
  int count_ = 0;
};

// Two kinds of host: one whose loop knows dialogue keys, and one whose loop does not.
class Keyboard : public testing::TestWithParam<bool> {
 protected:
  static bool HostKnowsDialogueKeys() { return GetParam(); }

  void Pump() const {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      if (!HostKnowsDialogueKeys() || !IsDialogMessageW(page_.Window(), &message)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
    }
  }

  void Press(WPARAM key, bool withShift = false) const {
    std::array<BYTE, 256> before{};
    GetKeyboardState(before.data());
    auto keys = before;
    keys[VK_SHIFT] = withShift ? 0x80 : 0;
    SetKeyboardState(keys.data());
    PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    Pump();
    if (GetFocus() != nullptr) {
      PostMessageW(GetFocus(), WM_KEYUP, key, 0xC0000001);
    }
    Pump();
    SetKeyboardState(before.data());
  }

  // As the system gives it to a loop: the key, and the character that TranslateMessage makes of it.
  void PressWithAlt(char letter) const {
    constexpr LPARAM withAlt = 0x20000001;
    PostMessageW(GetFocus(), WM_SYSKEYDOWN, static_cast<WPARAM>(letter), withAlt);
    PostMessageW(GetFocus(), WM_SYSCHAR, static_cast<WPARAM>(letter) - 'A' + 'a', withAlt);
    Pump();
  }

  // One message of a keyboard, for whatever has the focus by then.
  void Key(UINT message, WPARAM key, LPARAM flags) const {
    PostMessageW(GetFocus(), message, key, flags);
    Pump();
  }

  static constexpr LPARAM downWithAlt = 0x20000001;
  static constexpr LPARAM upWithAlt = static_cast<LPARAM>(0xE0000001);
  static constexpr LPARAM up = static_cast<LPARAM>(0xC0000001);

  // Alt, the letter, and Alt let go before the letter.
  void PressWithAltLetGoFirst(char letter) const {
    Key(WM_SYSKEYDOWN, VK_MENU, downWithAlt);
    PressWithAlt(letter);
    Key(WM_SYSKEYUP, VK_MENU, up);
    Key(WM_KEYUP, static_cast<WPARAM>(letter), up);
  }

  void PressWithAltLetGoLast(char letter) const {
    Key(WM_SYSKEYDOWN, VK_MENU, downWithAlt);
    PressWithAlt(letter);
    Key(WM_SYSKEYUP, static_cast<WPARAM>(letter), upWithAlt);
    Key(WM_KEYUP, VK_MENU, up);
  }

  void Focus(int id) const { SetFocus(page_.Control(id)); }

  int Focused() const {
    const HWND focused = GetFocus();
    return GetParent(focused) == page_.Frame() ? GetDlgCtrlID(focused) : 0;
  }

  HWND Control(int id) const { return page_.Control(id); }
  int Selected(int id) const { return static_cast<int>(SendMessageW(Control(id), CB_GETCURSEL, 0, 0)); }
  int Value(int id) const { return static_cast<int>(SendMessageW(Control(id), BM_GETCHECK, 0, 0)); }

  HostedPage page_;
};

INSTANTIATE_TEST_SUITE_P(PageWindow, Keyboard, testing::Bool(), [](const auto& kind) {
  return kind.param ? "InAHostThatKnowsDialogueKeys" : "InAHostThatDoesNot";
});

TEST_P(Keyboard, TabGoesThroughTheControlsInTheOrderInWhichTheyStand) {
  Focus(controlsInTabOrder.front());
  for (std::size_t next = 1; next < controlsInTabOrder.size(); ++next) {
    Press(VK_TAB);
    EXPECT_EQ(Focused(), controlsInTabOrder[next]) << next;
  }
  Press(VK_TAB);
  EXPECT_EQ(Focused(), controlsInTabOrder.front()) << "from the last to the first";
}

TEST_P(Keyboard, ShiftTabGoesBack) {
  Focus(query);
  Press(VK_TAB, true);
  EXPECT_EQ(Focused(), encoderBox);
  Focus(deviceList);
  Press(VK_TAB, true);
  EXPECT_EQ(Focused(), save);
}

TEST_P(Keyboard, DisabledControlsAreSkipped) {
  EnableWindow(Control(cageList), FALSE);
  EnableWindow(Control(headList), FALSE);
  Focus(deviceList);
  Press(VK_TAB);
  EXPECT_EQ(Focused(), nestList);
}

TEST_P(Keyboard, ArrowsChooseTheNextEntryOfAListAndStoreIt) {
  Focus(tipList);
  SendMessageW(Control(tipList), CB_SETCURSEL, 0, 0);
  Press(VK_DOWN);
  EXPECT_EQ(Selected(tipList), 1);
  EXPECT_EQ(page_.Stored("TipType", "Installed"), "2");
  Press(VK_UP);
  EXPECT_EQ(page_.Stored("TipType", "Installed"), "1");
  EXPECT_EQ(Focused(), tipList);
}

TEST_P(Keyboard, ArrowsWalkThroughTheBoxesAndThroughTheButtons) {
  Focus(rfidBox);
  Press(VK_DOWN);
  EXPECT_EQ(Focused(), headBox);
  Press(VK_UP);
  EXPECT_EQ(Focused(), rfidBox);
  Focus(upload);
  Press(VK_RIGHT);
  EXPECT_EQ(Focused(), download);
}

TEST_P(Keyboard, SpaceChangesABoxAndStoresIt) {
  Focus(tipBox);
  ASSERT_EQ(Value(tipBox), 0);
  Press(VK_SPACE);
  EXPECT_EQ(Value(tipBox), 1);
  EXPECT_EQ(page_.Stored("DeviceType", "SensorEnableTipsInstalled"), "1");
  EXPECT_EQ(Focused(), tipBox);
}

TEST_P(Keyboard, SpaceAndAccessKeyUntickATickedBox) {
  ASSERT_EQ(Value(rfidBox), 1);
  Focus(rfidBox);
  Press(VK_SPACE);
  EXPECT_EQ(Value(rfidBox), 0);
  Press(VK_SPACE);
  PressWithAlt('R');
  EXPECT_EQ(Value(rfidBox), 0);
  EXPECT_EQ(page_.Stored("DeviceType", "SensorEnableRFID"), "0");
}

TEST_P(Keyboard, SpaceAndEnterPressTheButtonThatHasTheFocus) {
  int queries = 0;
  page_.Host().OnCommand = [&](const std::string& command) { queries += command == "STATUS_STAGE" ? 1 : 0; };
  Focus(query);
  Press(VK_SPACE);
  EXPECT_EQ(queries, 1);
  Press(VK_RETURN);
  EXPECT_EQ(queries, 2);
  EXPECT_EQ(Focused(), query) << "the focus is back when the operation has ended";
}

TEST_P(Keyboard, AccessKeysReachListsAndPressBoxesAndButtons) {
  Focus(deviceList);
  PressWithAlt('N');
  EXPECT_EQ(Focused(), nestList);
  PressWithAlt('I');
  EXPECT_EQ(Focused(), tipBox);
  EXPECT_EQ(Value(tipBox), 1);
  int queries = 0;
  page_.Host().OnCommand = [&](const std::string& command) { queries += command == "STATUS_STAGE" ? 1 : 0; };
  PressWithAlt('Q');
  EXPECT_EQ(Focused(), query);
  EXPECT_EQ(queries, 1);
}

TEST_P(Keyboard, TheAccessKeyOfADisabledControlDoesNothing) {
  EnableWindow(Control(tipBox), FALSE);
  Focus(deviceList);
  PressWithAlt('I');
  EXPECT_EQ(Focused(), deviceList);
  EXPECT_EQ(Value(tipBox), 0);
}

TEST_P(Keyboard, AnAccessKeyLeavesTheHostsMenuClosedWhenAltIsLetGoFirst) {
  const MenuRequests menu{page_.Window()};
  for (const int from : {rfidBox, headBox, query, save, deviceList}) {
    for (const char letter : {'Z', 'M', 'P', 'N', 'T', 'R', 'D', 'Q'}) {
      Focus(from);
      PressWithAltLetGoFirst(letter);
      EXPECT_EQ(menu.Count(), 0) << letter << " from " << from;
    }
  }
}

TEST_P(Keyboard, AnAccessKeyLeavesTheHostsMenuClosedWhenAltIsLetGoLast) {
  const MenuRequests menu{page_.Window()};
  for (const char letter : {'Z', 'M', 'P', 'N', 'T', 'R', 'D', 'Q'}) {
    Focus(encoderBox);
    PressWithAltLetGoLast(letter);
    EXPECT_EQ(menu.Count(), 0) << letter;
  }
}

TEST_P(Keyboard, DownAfterAnAccessKeyChoosesTheNextEntryOfTheListThatItReached) {
  const MenuRequests menu{page_.Window()};
  SendMessageW(Control(tipList), CB_SETCURSEL, 0, 0);
  Focus(rfidBox);
  PressWithAltLetGoFirst('T');
  EXPECT_EQ(Focused(), tipList);
  Press(VK_DOWN);
  EXPECT_EQ(Selected(tipList), 1);
  EXPECT_EQ(page_.Stored("TipType", "Installed"), "2");
  EXPECT_EQ(menu.Count(), 0);
}

TEST_P(Keyboard, AltByItselfIsLeftToTheHostsMenu) {
  const MenuRequests menu{page_.Window()};
  Focus(rfidBox);
  Key(WM_SYSKEYDOWN, VK_MENU, downWithAlt);
  Key(WM_SYSKEYUP, VK_MENU, up);
  EXPECT_EQ(menu.Count(), 1);
}

TEST(PageWindow, GivesEachAccessKeyOnce) {
  const HostedPage page;
  std::string keys;
  for (const auto& row : PageLayout()) {
    if (row.AccessKey != 0) {
      keys += static_cast<char>(row.AccessKey & ~0x20);
    }
  }
  auto sorted = keys;
  std::ranges::sort(sorted);
  EXPECT_TRUE(std::ranges::adjacent_find(sorted) == sorted.end()) << keys;
  EXPECT_EQ(keys.size(), 14U) << "every list, box and button";
}

TEST(PageWindow, LeavesTheKeysOfTheMenusThatNearlyEveryHostHasToTheHost) {
  for (const auto& row : PageLayout()) {
    EXPECT_EQ(std::string_view{"FfHh"}.find(row.AccessKey), std::string_view::npos) << row.Caption;
  }
}

// ---- The mouse ----

void Click(HWND control) {
  constexpr LPARAM inside = MAKELPARAM(5, 5);
  SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, inside);
  SendMessageW(control, WM_LBUTTONUP, 0, inside);
}

LRESULT ValueOf(HWND box) {
  return SendMessageW(box, BM_GETCHECK, 0, 0);
}

TEST(PageWindow, AClickUnticksATickedBoxAndTicksAnUntickedOneWithOneWriteEach) {
  HostedPage page;
  const HWND box = page.Control(rfidBox);
  ASSERT_EQ(ValueOf(box), BST_CHECKED);
  struct Step {
    LRESULT Value;
    std::string_view Stored;
  };
  for (const auto& [value, stored] :
       {Step{BST_UNCHECKED, "0"}, Step{BST_CHECKED, "1"}, Step{BST_UNCHECKED, "0"}}) {
    page.Host().Writes = 0;
    Click(box);
    EXPECT_EQ(ValueOf(box), value);
    EXPECT_EQ(page.Stored("DeviceType", "SensorEnableRFID"), stored);
    EXPECT_EQ(page.Host().Writes, 1);
  }
}

// As a program does that works the page by its windows.
void SetByProgram(const HostedPage& page, int id, WPARAM value) {
  SendMessageW(page.Control(id), BM_SETCHECK, value, 0);
  SendMessageW(page.Frame(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(page.Control(id)));
}

TEST(PageWindow, AProgramCanSetABoxGreyWhichIsStoredAsTicked) {
  const HostedPage page;
  for (const int before : {0, 1}) {
    SetByProgram(page, tipBox, static_cast<WPARAM>(before));
    SetByProgram(page, tipBox, greyValue);
    EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_INDETERMINATE) << before;
    EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "1") << before;
  }
}

TEST(PageWindow, AClickOnAGreyBoxUnticksItAndTheNextOneTicksIt) {
  HostedPage page;
  SetByProgram(page, tipBox, greyValue);
  page.Host().Writes = 0;
  Click(page.Control(tipBox));
  EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_UNCHECKED);
  EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "0");
  Click(page.Control(tipBox));
  EXPECT_EQ(ValueOf(page.Control(tipBox)), BST_CHECKED);
  EXPECT_EQ(page.Stored("DeviceType", "SensorEnableTipsInstalled"), "1");
  EXPECT_EQ(page.Host().Writes, 2);
}

// The point of the frame over the middle of a control.
LPARAM Over(HWND control) {
  const RECT place = PlaceOf(control);
  return MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
}

TEST(PageWindow, AClickBesideTheControlsReachesTheHostWindow) {
  HostedPage page;
  SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
  EXPECT_EQ(page.Host().FocusRequests, 1);
  for (const int text : {titleId, pumpLabelId, firstListLabelId}) {
    SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, Over(page.Control(text)));
  }
  EXPECT_EQ(page.Host().FocusRequests, 4);
}

// The system hands clicks that a text or a group box does not want to the window behind it.
TEST(PageWindow, TextsAndGroupBoxesLetClicksThrough) {
  const HostedPage page;
  for (const int id : {titleId, pumpLabelId, settingsFrameId, calibrationFrameId}) {
    EXPECT_EQ(SendMessageW(page.Control(id), WM_NCHITTEST, 0, 0), HTTRANSPARENT) << id;
  }
}

TEST(PageWindow, AClickOnADisabledControlIsNoneOnTheFrame) {
  HostedPage page;
  for (const int id : controlsInTabOrder) {
    EnableWindow(page.Control(id), FALSE);
    SendMessageW(page.Frame(), WM_LBUTTONDOWN, MK_LBUTTON, Over(page.Control(id)));
  }
  EXPECT_EQ(page.Host().FocusRequests, 0);
}

TEST(PageWindow, AClickOnAControlIsNoneOnTheFrame) {
  HostedPage page;
  Click(page.Control(rfidBox));
  EXPECT_EQ(page.Host().FocusRequests, 0);
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

TEST(PageWindow, AnOperationGreysTheListsAndDisablesTheControlsAndPutsAllBack) {
  constexpr std::array lists{deviceList, cageList, headList, nestList, tipList};
  ASSERT_NE(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_BTNFACE));
  HostedPage page;
  std::vector<std::string> seen;
  page.Host().OnCommand = [&](const std::string& command) {
    seen.push_back(command + " " + page.Host().Status);
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
  Click(page.Control(query));
  ASSERT_EQ(seen.size(), 5U);
  EXPECT_EQ(seen.front(), "STATUS_STAGE Getting Zolvane Type");
  EXPECT_EQ(page.Host().Status, "");
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

// ---- At every scale ----

class Scale : public testing::TestWithParam<UINT> {
 protected:
  Scale() {
    scale_ = GetParam();
    frame_ = PageFrame::Create(events_, {}, [](HWND) { return scale_; });
  }

  HWND Control(const ControlRow& row) const { return frame_->Control(row.Id); }
  static int Scaled(int pixels) { return MulDiv(pixels, static_cast<int>(scale_), 96); }

  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a page asks a plain function for it
  static inline UINT scale_ = 96;
  SilentEvents events_;
  std::shared_ptr<PageFrame> frame_;
};

INSTANTIATE_TEST_SUITE_P(PageWindow, Scale, testing::Values(96U, 120U, 144U, 192U, 288U),
                         [](const auto& kind) { return "Dpi" + std::to_string(kind.param); });

bool Contains(const RECT& outer, const RECT& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

bool Meet(const RECT& one, const RECT& other) {
  RECT common{};
  return IntersectRect(&common, &one, &other) != FALSE;
}

TEST_P(Scale, NoControlLeavesTheFrame) {
  RECT inside{};
  GetClientRect(frame_->Frame(), &inside);
  EXPECT_GT(inside.right, Scaled(500)) << "the frame grows with the scale";
  for (const auto& row : PageLayout()) {
    EXPECT_TRUE(Contains(inside, PlaceOf(Control(row)))) << row.Id;
  }
}

TEST_P(Scale, NoControlLiesOnAnother) {
  const auto rows = PageLayout();
  for (std::size_t one = 0; one < rows.size(); ++one) {
    for (std::size_t other = one + 1; other < rows.size(); ++other) {
      const bool isAround =
          (rows[one].Kind == ControlKind::GroupBox) != (rows[other].Kind == ControlKind::GroupBox);
      if (!isAround) {
        EXPECT_FALSE(Meet(PlaceOf(Control(rows[one])), PlaceOf(Control(rows[other]))))
            << rows[one].Id << " and " << rows[other].Id;
      }
    }
  }
}

TEST_P(Scale, EveryControlIsInItsGroup) {
  const RECT settings = PlaceOf(frame_->Control(settingsFrameId));
  const RECT calibration = PlaceOf(frame_->Control(calibrationFrameId));
  for (const int id : controlsInTabOrder) {
    const bool isAboutData = id == upload || id == download || id == import || id == save;
    EXPECT_TRUE(Contains(isAboutData ? calibration : settings, PlaceOf(frame_->Control(id)))) << id;
  }
}

SIZE CaptionSize(HWND control) {
  auto* const font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
  const auto caption = Wide(CaptionOf(control));
  const HDC context = GetDC(control);
  const HGDIOBJ before = SelectObject(context, font);
  RECT area{};
  DrawTextW(context, caption.c_str(), static_cast<int>(caption.size()), &area, DT_CALCRECT | DT_SINGLELINE);
  SelectObject(context, before);
  ReleaseDC(control, context);
  return {area.right, area.bottom};
}

TEST_P(Scale, EveryCaptionFitsItsControl) {
  for (const auto& row : PageLayout()) {
    if (row.Kind == ControlKind::List) {
      continue;
    }
    // Beside the text: the box with its gap, or the edges of a button.
    const int besides = row.Kind == ControlKind::CheckBox ? 20 : row.Kind == ControlKind::Button ? 12 : 0;
    RECT inside{};
    GetClientRect(Control(row), &inside);
    const SIZE caption = CaptionSize(Control(row));
    ASSERT_GT(caption.cx, 0) << row.Id;
    EXPECT_LE(caption.cx + Scaled(besides), inside.right) << row.Caption;
    EXPECT_LE(caption.cy, inside.bottom) << row.Caption;
  }
}

TEST_P(Scale, ListsAreHighEnoughForTheirFont) {
  for (const auto& row : PageLayout()) {
    if (row.Kind == ControlKind::List) {
      const RECT place = PlaceOf(Control(row));
      LOGFONTW font{};
      GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(Control(row), WM_GETFONT, 0, 0)), sizeof(font),
                 &font);
      EXPECT_GT(place.bottom - place.top, std::abs(font.lfHeight)) << row.Id;
    }
  }
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

TEST(PageWindow, FollowsTheScaleOfTheScreenThatItIsMovedTo) {
  static UINT scale = 96;
  scale = 96;
  SilentEvents events;
  const auto frame = PageFrame::Create(events, {}, [](HWND) { return scale; });
  const RECT before = PlaceOf(frame->Control(query));
  scale = 192;
  constexpr UINT scaleChanged = 0x02E3;
  SendMessageW(frame->Frame(), scaleChanged, 0, 0);
  const RECT after = PlaceOf(frame->Control(query));
  EXPECT_NEAR(after.right - after.left, 2 * (before.right - before.left), 8);
  EXPECT_NEAR(after.top, 2 * before.top, 24);
}

}  // namespace
}  // namespace zolvane
