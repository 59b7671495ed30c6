// The page with what few hosts, users and files do: impatience, open lists, long and many entries.
#include <gtest/gtest.h>
#include <hestrion_cmds.h>

#include <array>
#include <string>
#include <vector>

#include "shell/windows/page/page_window.h"
#include "win32/text.h"
#include "windows/page/silent_events.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

constexpr int tipList = IdOf(ListControl::TipType);
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

// ---- Impatience ----

class Impatience : public testing::Test {
 protected:
  Impatience() {
    page_.Host().OnCommand = [this](const std::string& command) {
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

TEST_F(Impatience, ClicksMadeDuringAnOperationStartNoSecondOne) {
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

TEST_F(Impatience, KeysPressedDuringAnOperationStartNoSecondOne) {
  meanwhile_ = [this] {
    PostMessageW(Button(), WM_KEYDOWN, VK_RETURN, 1);
    PostMessageW(Button(), WM_SYSKEYDOWN, 'Q', 0x20000001);
  };
  SetFocus(Button());
  SendMessageW(Button(), BM_CLICK, 0, 0);
  Pump();
  EXPECT_EQ(queries_, 1);
}

TEST_F(Impatience, WhatTheUserDidInOtherWindowsMeanwhileIsStillTheirs) {
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

TEST_F(Impatience, ARequestToQuitThatCameMeanwhileIsTheHosts) {
  meanwhile_ = [] { PostQuitMessage(3); };
  SetFocus(Button());
  SendMessageW(Button(), WM_SYSKEYDOWN, 'Q', 0x20000001);
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 3U);
}

TEST_F(Impatience, ARequestToQuitIsNotTakenForTheCharacterOfAnAccessKey) {
  SetFocus(Button());
  PostQuitMessage(4);
  SendMessageW(Button(), WM_SYSKEYDOWN, 'N', 0x20000001);
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 4U);
}

TEST_F(Impatience, AnAccessKeyThatIsHeldDownPressesItsButtonOnce) {
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

// ---- Lists that are open ----

TEST_F(Impatience, AnOperationStartedFromAnOpenListWorksWithWhatTheListShows) {
  const HWND list = page_.Control(tipList);
  std::string stored;
  meanwhile_ = [&] { stored = HostedPage::Stored("TipType", "Installed"); };
  SetFocus(list);
  SendMessageW(list, CB_SETCURSEL, 0, 0);
  SendMessageW(page_.Frame(), WM_COMMAND, MAKEWPARAM(tipList, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
  ASSERT_EQ(HostedPage::Stored("TipType", "Installed"), "1");
  SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
  ASSERT_TRUE(IsOpen(list));
  SendMessageW(list, CB_SETCURSEL, 1, 0);  // as arrow keys may do, without a word
  SendMessageW(list, WM_SYSKEYDOWN, 'Q', 0x20000001);
  EXPECT_FALSE(IsOpen(list));
  EXPECT_EQ(queries_, 1);
  EXPECT_EQ(stored, "2");
}

TEST(PageUnderStress, LoadingThePageClosesAListThatIsOpen) {
  const HostedPage page;
  const HWND list = page.Control(tipList);
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

// ---- Entries of any text, length and number ----

class Entries : public testing::Test {
 protected:
  HWND List() const { return frame_->Control(tipList); }

  LRESULT DroppedWidth() const { return SendMessageW(List(), CB_GETDROPPEDWIDTH, 0, 0); }

  SilentEvents events_;
  std::shared_ptr<PageFrame> frame_ = PageFrame::Create(events_, {});
  PageWindow window_{frame_};
};

TEST_F(Entries, AreShownToTheLetterInAnyScript) {
  const std::vector<ListEntry> entries{
      {.Text = "Tips & &Filters &&", .Data = 1}, {.Text = "96 канала", .Data = 2},
      {.Text = "ピペット 300 µl", .Data = 3},    {.Text = "رؤوس", .Data = 4},
      {.Text = "\U0001F9EA 8", .Data = 5},       {.Text = "", .Data = 6}};
  ASSERT_TRUE(window_.ShowEntries(ListControl::TipType, entries).Ok());
  for (std::size_t entry = 0; entry < entries.size(); ++entry) {
    ASSERT_TRUE(window_.ShowSelection(ListControl::TipType, static_cast<int>(entry)).Ok());
    EXPECT_EQ(CaptionOf(List()), entries[entry].Text);
    EXPECT_EQ(SendMessageW(List(), CB_GETITEMDATA, entry, 0), entries[entry].Data);
  }
}

TEST_F(Entries, AreReadableInFullAsFarAsTheScreenIsWide) {
  const ListEntry readable{.Text = std::string(60, 'W'), .Data = 1};
  ASSERT_TRUE(window_.ShowEntries(ListControl::TipType, {&readable, 1}).Ok());
  const auto wide = DroppedWidth();
  EXPECT_GT(wide, 400);
  const ListEntry added{.Text = std::string(70, 'W'), .Data = 2};
  ASSERT_TRUE(window_.ShowAddedEntry(ListControl::TipType, added).Ok());
  EXPECT_GT(DroppedWidth(), wide);
  const ListEntry endless{.Text = std::string(2500, 'W'), .Data = 3};
  ASSERT_TRUE(window_.ShowAddedEntry(ListControl::TipType, endless).Ok());
  EXPECT_LE(DroppedWidth(), GetSystemMetrics(SM_CXSCREEN));
  ASSERT_TRUE(window_.ShowEntries(ListControl::TipType, {&readable, 1}).Ok());
  EXPECT_EQ(DroppedWidth(), wide) << "without the long ones it is as wide as before";
}

TEST_F(Entries, MayBeTenThousand) {
  std::vector<ListEntry> entries;
  for (int number = 1; number <= 10000; ++number) {
    entries.push_back({.Text = "Tips number " + std::to_string(number), .Data = number});
  }
  ASSERT_TRUE(window_.ShowEntries(ListControl::TipType, entries).Ok());
  ASSERT_TRUE(window_.ShowAddedEntry(ListControl::TipType, {.Text = "Not installed", .Data = 0}).Ok());
  ASSERT_TRUE(window_.ShowSelection(ListControl::TipType, 9999).Ok());
  EXPECT_EQ(SendMessageW(List(), CB_GETCOUNT, 0, 0), 10001);
  EXPECT_EQ(CaptionOf(List()), "Tips number 10000");
}

}  // namespace
}  // namespace zolvane
