// The window of HestrionBench: its menu, buttons and boxes around the page.
#include <gtest/gtest.h>

#include <cstring>
#include <regex>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/windows/window/message_window.h"
#include "windows/bench/hestrion_windows.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

using HestrionWindow = HestrionWindows;

TEST_F(HestrionWindow, TheMenuOpensThePageAndClosesIt) {
  Start({});
  EXPECT_TRUE(IsWindowVisible(Frame()));
  EXPECT_TRUE(Eventually([this] { return CaptionOf(Main()).starts_with("Zolvane Setup - "); }));
  EXPECT_TRUE(CaptionOf(Main()).ends_with("bench, sim - Hestrion bench")) << CaptionOf(Main());
  EXPECT_TRUE(
      std::regex_search(Log(), std::regex{"^[0-2][0-9]:[0-5][0-9]:[0-5][0-9]  Opened: Zolvane Setup"}))
      << Log();
  Order(closePageId);
  EXPECT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  Order(openPageId);
  EXPECT_TRUE(Eventually([this] { return Frame() != nullptr; })) << "and opens it again";
  Order(quitId);
  EXPECT_EQ(process_->Wait(), 0) << process_->Errors();
}

TEST_F(HestrionWindow, HelpNamesTheTopicOfThePage) {
  Start({}, false);
  PostMessageW(Main(), WM_KEYDOWN, VK_F1, 1);
  EXPECT_NE(AnswerBox(IDOK).find("Open an add-in's page"), std::string::npos);
  Order(openPageId);
  ASSERT_TRUE(Eventually([this] { return Frame() != nullptr; }));
  PostMessageW(Control(IdOfButton(queryButton)), WM_KEYDOWN, VK_F1, 1);
  EXPECT_NE(AnswerBox(IDOK).find("topic 9014"), std::string::npos);
  Order(helpId);
  EXPECT_NE(AnswerBox(IDOK).find("topic 9014"), std::string::npos);
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

TEST_F(HestrionWindow, TheHostsButtonsAreThereWithThePageAndWork) {
  Start({}, false);
  const HWND save = GetDlgItem(Main(), saveId);
  EXPECT_FALSE(IsWindowVisible(save));
  Order(openPageId);
  ASSERT_TRUE(Eventually([save] { return IsWindowVisible(save) != FALSE; }));
  EXPECT_TRUE(Eventually([this] { return IsWindowVisible(GetDlgItem(Main(), helpId)) != FALSE; }));
  Press(save);
  Press(GetDlgItem(Main(), closePageId));
  ASSERT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  EXPECT_FALSE(IsWindowVisible(save));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
  EXPECT_EQ(EventsOf(R"("event":"changed","value":false)"), 2)
      << "by the button, and when the page was closed";
}

TEST_F(HestrionWindow, TheStatusBarShowsWhatAnOperationDoesAndTheControlsAreDisabledMeanwhile) {
  Start({"--link", "none"});
  EXPECT_EQ(StatusText(), "");
  Press(Control(IdOfButton(queryButton)));
  for (const auto* const step : {"Getting Zolvane Type", "Getting Pipette Module Type", "Enabling RFID",
                                 "Getting Pump Module Status"}) {
    ASSERT_TRUE(Eventually([this] { return Box() != nullptr; })) << step;
    EXPECT_EQ(StatusText(), step);
    EXPECT_FALSE(IsWindowEnabled(Control(IdOfButton(queryButton))));
    EXPECT_FALSE(IsWindowEnabled(Control(IdOf(ListControl::DeviceType))));
    EXPECT_EQ(
        AnswerBox(IDOK),
        std::string{step} + "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'");
  }
  EXPECT_TRUE(Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; }));
  EXPECT_EQ(StatusText(), "");
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1) << "commands have failed";
}

TEST_F(HestrionWindow, ABoxIsInFrontOfTheHostWhichWaitsForIt) {
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(Eventually([this] { return Box() != nullptr; }));
  EXPECT_EQ(GetWindow(Box(), GW_OWNER), Main());
  EXPECT_FALSE(IsWindowEnabled(Main()));
}

TEST_F(HestrionWindow, ThePageComesBackWhenTheUserHasCancelled) {
  Start({});
  for (const auto& [button, status] : {std::pair{uploadButton, "Uploading Data to Zolvane"},
                                       {downloadButton, "Downloading Data from Zolvane"}}) {
    Press(Control(IdOfButton(button)));
    AnswerBox(IDCANCEL);
    EXPECT_TRUE(Logs(std::string{status} + ": cancelled"));
    EXPECT_TRUE(IsAtRest()) << status;
    EXPECT_EQ(StatusText(), "");
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST(MainWindow, ARequestThatFailsIsInTheLogAndGoesNoFurther) {
  const MainWindow window{{.OpenPage = [] { throw std::runtime_error{"there is no page"}; },
                           .ClosePage = {},
                           .Save = {},
                           .Help = {},
                           .Quit = {},
                           .Stop = {},
                           .MayBeEnded = {},
                           .Rest = {}}};
  EXPECT_NO_THROW(SendMessageW(window.Handle(), WM_COMMAND, openPageId, 0));
  EXPECT_TRUE(ShownText(GetDlgItem(window.Handle(), logId)).ends_with("  there is no page\r\n"));
}

TEST_F(HestrionWindow, AHostsDialogueThatIsDestroyedWithItsOwnerLeavesNobodyWaiting) {
  const HWND owner = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                                     nullptr, nullptr, nullptr);
  const MessageWindow dialogue{owner, {.Title = "Title", .Text = "Text", .Style = 1}};
  EXPECT_LT(dialogue.Result(), 0);
  DestroyWindow(owner);
  EXPECT_EQ(dialogue.Result(), IDCANCEL);
}

TEST_F(HestrionWindow, TheWindowCanBeOfAnySizeThatThePageFitsInto) {
  Start({});
  const SIZE page{PlaceOf(Frame()).right, PlaceOf(Frame()).bottom};
  for (const SIZE size : {SIZE{1000, 800}, SIZE{120, 60}, SIZE{700, 700}}) {
    SetWindowPos(Main(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER);
    RECT inside{};
    GetClientRect(Main(), &inside);
    const HWND statusBar = GetDlgItem(Main(), statusBarId);
    EXPECT_TRUE(Eventually([&] { return PlaceOf(statusBar).bottom == inside.bottom; }));
    EXPECT_EQ(PlaceOf(statusBar).right, inside.right);
    EXPECT_EQ(PlaceOf(Frame()).right, page.cx) << "the page keeps its size";
    EXPECT_EQ(PlaceOf(Frame()).bottom, page.cy);
    EXPECT_GE(inside.right, page.cx);
    const RECT log = PlaceOf(GetDlgItem(Main(), logId));
    EXPECT_GT(log.top, page.cy);
    EXPECT_GE(log.bottom - log.top, 40);
    EXPECT_LT(log.bottom, PlaceOf(statusBar).top);
    EXPECT_LT(log.right, inside.right);
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

}  // namespace
}  // namespace zolvane
