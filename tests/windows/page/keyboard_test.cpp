// The page's keys in hosts that handle dialogue keys and in hosts that do not.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

using namespace control_ids;

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

INSTANTIATE_TEST_SUITE_P(Host, Keyboard, testing::Bool(), [](const auto& kind) {
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
  page_.Host().Link().WhileSending = [&](const std::string& command) {
    queries += command == "STATUS_STAGE" ? 1 : 0;
  };
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
  page_.Host().Link().WhileSending = [&](const std::string& command) {
    queries += command == "STATUS_STAGE" ? 1 : 0;
  };
  PressWithAlt('Q');
  EXPECT_EQ(Focused(), query);
  EXPECT_EQ(queries, 1);
}

// Their numbers are those of the small letters q, i and n.
TEST_P(Keyboard, FunctionAndNumberKeysWithAltAreNoAccessKeys) {
  int queries = 0;
  page_.Host().Link().WhileSending = [&](const std::string&) { ++queries; };
  for (const int key : {VK_F2, VK_NUMPAD9, VK_DECIMAL}) {
    Focus(deviceList);
    Key(WM_SYSKEYDOWN, static_cast<WPARAM>(key), downWithAlt);
    EXPECT_EQ(Focused(), deviceList) << key;
  }
  EXPECT_EQ(Value(tipBox), 0);
  EXPECT_EQ(queries, 0);
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

TEST(AccessKeys, EachIsGivenOnce) {
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

TEST(AccessKeys, ThoseOfUsualMenusAreLeftToTheHost) {
  for (const auto& row : PageLayout()) {
    EXPECT_EQ(std::string_view{"FfHh"}.find(row.AccessKey), std::string_view::npos) << row.Caption;
  }
}

}  // namespace
}  // namespace zolvane
