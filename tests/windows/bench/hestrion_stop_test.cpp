// Stopping an operation of HestrionBench, and closing its page or window meanwhile.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "bench/windows/window/message_window.h"
#include "support/golden.h"
#include "windows/bench/hestrion_windows.h"

namespace zolvane {
namespace {

HWND FocusOf(HWND window) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof(thread);
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread);
  return thread.hwndFocus;
}

class HestrionStop : public HestrionWindows {
 protected:
  void StopTwice(const std::function<void()>& stop) {
    StartUpload();
    stop();
    ASSERT_TRUE(Logs("Stop: no further command is sent"));
    EXPECT_EQ(Box(), nullptr) << "the reply is still waited for";
    stop();
    ASSERT_TRUE(Logs("Stop: no longer waiting for the reply"));
    EXPECT_TRUE(AnswerBox(IDOK).starts_with("Uploading Data to Zolvane\r\n\r\nPlease ensure"));
    EXPECT_TRUE(Logs("Save To Zolvane: failed (" + OfTheCommands(1) +
                     " commands sent; 0 accepted; 1 not answered, first "));
    EXPECT_TRUE(IsAtRest());
    EXPECT_FALSE(CanStop());
    EXPECT_EQ(instrument_.Received(), 1);
    CloseWindow();
    EXPECT_EQ(process_->Wait(), 1);
  }
};

TEST_F(HestrionStop, AnOperationSaysHowFarItIsAndCanBeStopped) {
  StartUpload();
  EXPECT_TRUE(Eventually([this] { return Progress() == OfTheCommands(1); })) << Progress();
  EXPECT_TRUE(CanStop());
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(Main(), saveId)));
  instrument_.Let(1);
  ASSERT_TRUE(instrument_.Receives(2));
  EXPECT_TRUE(Eventually([this] { return Progress() == OfTheCommands(2); })) << Progress();
  Press(GetDlgItem(Main(), stopId));
  ASSERT_TRUE(Logs("Stop: no further command is sent"));
  instrument_.Let(1);
  ASSERT_TRUE(IsAtRest());
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (" + OfTheCommands(2) + " commands sent"));
  EXPECT_FALSE(CanStop());
  EXPECT_TRUE(IsWindowEnabled(FocusOf(Main()))) << "the keyboard is not left on the button";
  EXPECT_EQ(Progress(), "");
  EXPECT_EQ(instrument_.Received(), 2);

  Press(Control(IdOfButton(queryButton)));
  instrument_.Let(HeldInstrument::enough);
  EXPECT_TRUE(Logs("Query Zolvane: done")) << "a stop ends one operation";
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST_F(HestrionStop, EscapeStopsAsTheButtonDoes) {
  StartUpload();
  PostMessageW(Control(IdOfButton(uploadButton)), WM_KEYDOWN, VK_ESCAPE, 1);
  ASSERT_TRUE(Logs("Stop: no further command is sent"));
  instrument_.Let(1);
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (" + OfTheCommands(1) + " commands sent"));
}

TEST_F(HestrionStop, ASecondStopNoLongerWaitsForTheReply) {
  StopTwice([this] { Press(GetDlgItem(Main(), stopId)); });
}

TEST_F(HestrionStop, ASecondEscapeNoLongerWaitsForTheReply) {
  StopTwice([this] { PostMessageW(Control(IdOfButton(uploadButton)), WM_KEYDOWN, VK_ESCAPE, 1); });
}

TEST_F(HestrionStop, ABoxHasToBeAnsweredBeforeTheWindowCloses) {
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(Eventually([this] { return Box() != nullptr; }));
  CloseWindow();
  for (int box = 0; box < 4; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Query Zolvane: failed (0 of 5 commands sent; 0 accepted; 5 not sent"));
  EXPECT_EQ(EventsOf(R"("event":"send")"), 4) << "the operation has run to its end";
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "and the page was detached";
}

TEST_F(HestrionStop, ClosingTheWindowUnderTheHostsOwnDialogueAsks) {
  Start({"--link", "none", "--host-dialog"});
  Press(Control(IdOfButton(queryButton)));
  const auto message = [this] { return TopLevel(messageWindowClass); };
  ASSERT_TRUE(Eventually([&] { return message() != nullptr; }));
  Order(closePageId);
  AnswerBox(IDNO);
  CloseWindow();
  AnswerBox(IDYES);
  EXPECT_TRUE(IsWindow(Frame()));
  PostMessageW(GetDlgItem(message(), IDOK), WM_KEYDOWN, VK_RETURN, 1);
  EXPECT_NE(AnswerBox(IDOK).find("0 of 5 commands sent"), std::string::npos);
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("event":"host_dialog")"), 1);
}

TEST_F(HestrionStop, ClosingThePageDuringAnOperationShowsWhatBecameOfItAndLeavesTheWindow) {
  StartUpload();
  Press(GetDlgItem(Main(), closePageId));
  AnswerBox(IDYES);
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped (" + OfTheCommands(1) + " commands sent"),
            std::string::npos);
  EXPECT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (" + OfTheCommands(1) + " commands sent"));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "the page was detached";
}

TEST_F(HestrionStop, ClosingBetweenTheCommandsOfARunFileSaysWhatWasNotBegun) {
  Store(folder_.File("job.txt"), "upload\nquery\npage\n");
  Start({"--link", instrument_.Link(), "--timeout", "60", "--play", folder_.File("job.txt"), "--yes"}, false);
  ASSERT_TRUE(instrument_.Receives(1));
  Order(closePageId);
  AnswerBox(IDYES);
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped"), std::string::npos);
  EXPECT_TRUE(Logs("closed after \"upload\": 2 of 3 commands not begun: query; page")) << Log();
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST_F(HestrionStop, ClosingDuringAnOperationAsksAndShowsWhatBecameOfIt) {
  constexpr LPARAM withAlt = LPARAM{1} << 29;
  StartUpload();
  PostMessageW(Control(IdOfButton(uploadButton)), WM_SYSKEYDOWN, VK_F4, withAlt);
  EXPECT_TRUE(
      AnswerBox(IDNO).starts_with("Save To Zolvane is not finished (command " + OfTheCommands(1) + ")."));
  instrument_.Let(1);
  ASSERT_TRUE(instrument_.Receives(2)) << "it goes on";
  CloseWindow();
  AnswerBox(IDYES);
  EXPECT_TRUE(process_->IsRunning());
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped (" + OfTheCommands(2) + " commands sent"),
            std::string::npos);
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(instrument_.Received(), 2);
  EXPECT_EQ(EventsOf(R"("event":"send")"), 2);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "the page was detached";
}

TEST_F(HestrionStop, TheSystemIsKeptFromEndingDuringAnOperation) {
  Start({"--link", instrument_.Link(), "--timeout", "60"});
  EXPECT_TRUE(SendMessageW(Main(), WM_QUERYENDSESSION, 0, 0));
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(instrument_.Receives(1));
  EXPECT_FALSE(SendMessageW(Main(), WM_QUERYENDSESSION, 0, 0));
}

TEST_F(HestrionStop, WhatIsClickedOnThePageDuringAnOperationIsNotDoneLater) {
  StartUpload();
  Press(Control(IdOfButton(downloadButton)));
  instrument_.Let(HeldInstrument::enough);
  EXPECT_TRUE(Logs("Save To Zolvane: done (" + OfTheCommands(CommandsOfTheSample()) + " commands sent"));
  EXPECT_EQ(Box(), nullptr);
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
  EXPECT_EQ(EventsOf(R"("event":"message_box")"), 1);
}

}  // namespace
}  // namespace zolvane
