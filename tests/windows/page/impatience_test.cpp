// A user who does not wait for an operation to end, or for a list to close.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>

#include <functional>
#include <string>

#include "shell/windows/page/page_layout.h"
#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

constexpr int query = IdOfButton(queryButton);

void Pump() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

bool IsOpen(HWND list) {
  return SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != FALSE;
}

// ---- During an operation ----

class ImpatientUser : public testing::Test {
 protected:
  ImpatientUser() {
    page_.Host().Link().WhileSending = [this](const std::string& command) {
      if (command == "STATUS_STAGE" && ++queries_ == 1) {
        meanwhile_();
      }
    };
  }

  HWND Button() const { return page_.Control(query); }

  HostedPage page_;
  int queries_ = 0;
  std::function<void()> meanwhile_ = [] {};
};

TEST_F(ImpatientUser, ClicksMadeDuringAnOperationStartNoSecondOne) {
  meanwhile_ = [this] {
    for (int click = 0; click < 3; ++click) {
      PostMessageW(Button(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
      PostMessageW(Button(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    }
  };
  SendMessageW(Button(), BM_CLICK, 0, 0);
  Pump();
  EXPECT_EQ(queries_, 1);
}

TEST_F(ImpatientUser, KeysPressedDuringAnOperationStartNoSecondOne) {
  meanwhile_ = [this] {
    PostMessageW(Button(), WM_KEYDOWN, VK_RETURN, 1);
    PostMessageW(Button(), WM_SYSKEYDOWN, 'Q', 0x20000001);
  };
  SetFocus(Button());
  SendMessageW(Button(), BM_CLICK, 0, 0);
  Pump();
  EXPECT_EQ(queries_, 1);
}

TEST_F(ImpatientUser, WhatTheUserDidInOtherWindowsMeanwhileIsStillTheirs) {
  const HWND other = CreateWindowExW(0, L"BUTTON", L"other", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX, 0, 580,
                                     20, 20, page_.Window(), nullptr, nullptr, nullptr);
  meanwhile_ = [other] {
    PostMessageW(other, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    PostMessageW(other, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
  };
  SendMessageW(Button(), BM_CLICK, 0, 0);
  Pump();
  EXPECT_EQ(SendMessageW(other, BM_GETCHECK, 0, 0), BST_CHECKED);
}

TEST_F(ImpatientUser, ARequestToQuitThatCameMeanwhileIsTheHosts) {
  meanwhile_ = [] { PostQuitMessage(3); };
  SetFocus(Button());
  SendMessageW(Button(), WM_SYSKEYDOWN, 'Q', 0x20000001);
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 3U);
}

TEST_F(ImpatientUser, ARequestToQuitIsNotTakenForTheCharacterOfAnAccessKey) {
  SetFocus(Button());
  PostQuitMessage(4);
  SendMessageW(Button(), WM_SYSKEYDOWN, 'N', 0x20000001);
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 4U);
}

TEST_F(ImpatientUser, AnAccessKeyThatIsHeldDownPressesItsButtonOnce) {
  constexpr LPARAM withAlt = 0x20000001;
  constexpr LPARAM repeated = 0x60000001;
  SetFocus(Button());
  SendMessageW(Button(), WM_SYSKEYDOWN, 'Q', withAlt);
  for (int repeat = 0; repeat < 5; ++repeat) {
    SendMessageW(Button(), WM_SYSKEYDOWN, 'Q', repeated);
    SendMessageW(Button(), WM_SYSCHAR, 'q', repeated);
  }
  EXPECT_EQ(queries_, 1);
}

TEST_F(ImpatientUser, EnterThatIsHeldDownPressesItsButtonOnce) {
  constexpr LPARAM repeated = 0x40000001;
  SetFocus(Button());
  SendMessageW(Button(), WM_KEYDOWN, VK_RETURN, 1);
  for (int repeat = 0; repeat < 5; ++repeat) {
    SendMessageW(Button(), WM_KEYDOWN, VK_RETURN, repeated);
  }
  EXPECT_EQ(queries_, 1);
}

// ---- Lists that are open ----

TEST_F(ImpatientUser, AnOperationStartedFromAnOpenListWorksWithWhatTheListShows) {
  const HWND list = page_.Control(control_ids::tipList);
  std::string stored;
  meanwhile_ = [&] { stored = HostedPage::Stored("TipType", "Installed"); };
  SetFocus(list);
  SendMessageW(list, CB_SETCURSEL, 0, 0);
  SendMessageW(page_.Frame(), WM_COMMAND, MAKEWPARAM(control_ids::tipList, CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(list));
  ASSERT_EQ(HostedPage::Stored("TipType", "Installed"), "1");
  SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
  ASSERT_TRUE(IsOpen(list));
  SendMessageW(list, CB_SETCURSEL, 1, 0);  // as arrow keys may do, without a word
  SendMessageW(list, WM_SYSKEYDOWN, 'Q', 0x20000001);
  EXPECT_FALSE(IsOpen(list));
  EXPECT_EQ(queries_, 1);
  EXPECT_EQ(stored, "2");
}

TEST(OpenList, IsClosedWhenThePageIsLoaded) {
  const HostedPage page;
  const HWND list = page.Control(control_ids::tipList);
  const auto stored = HostedPage::Stored("TipType", "Installed");
  const auto selected = SendMessageW(list, CB_GETCURSEL, 0, 0);
  SetFocus(list);
  SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
  ASSERT_TRUE(IsOpen(list));
  page.Form()->LoadDefaults();
  EXPECT_FALSE(IsOpen(list)) << "it shows entries that are gone, at the height that suited them";
  Pump();
  EXPECT_EQ(HostedPage::Stored("TipType", "Installed"), stored);
  EXPECT_EQ(SendMessageW(list, CB_GETCURSEL, 0, 0), selected);
}

}  // namespace
}  // namespace zolvane
