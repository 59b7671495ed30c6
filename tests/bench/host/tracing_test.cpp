#include "bench/host/tracing.h"

#include <gtest/gtest.h>

#include <sstream>

#include "bench/host/silent_events.h"
#include "support/fake_environment.h"
#include "support/fake_host.h"
#include "support/journal.h"
#include "support/recorded_view.h"
#include "support/texts.h"

namespace zolvane {
namespace {

// Everything that the add-in is given, in fakes, behind the trace.
struct TracedHost {
  explicit TracedHost(bool holdsReads = false) : Log{Text, holdsReads} {}

  Journal Calls;
  std::ostringstream Text;
  TraceLog Log;
  FakeEnvironment Process{Calls};
  std::shared_ptr<FakeHostObject> Object = std::make_shared<FakeHostObject>(Calls);
  std::shared_ptr<FakeWindow> Window = std::make_shared<FakeWindow>(Calls);
  RecordedViewFactory Views{Calls};

  Texts Lines() const {
    EXPECT_TRUE(Text.view().empty() || Text.view().ends_with('\n')) << Text.view();
    return LinesOf(Text.str());
  }
};

TEST(Trace, HoldsWritesAndReadsWhenAskedTo) {
  TracedHost host{true};
  host.Process.Settings->Load("[S]\nKey=value\n");
  const auto service = Traced(host.Process, host.Log)->CreateIniFileService();
  EXPECT_EQ(service->ReadValue("S", "Key", "/add-in/Zolvane.ini", "none"), "value");
  EXPECT_EQ(service->ReadValue("S", "Other", "/add-in/Zolvane.ini", "none"), "none");
  EXPECT_TRUE(service->WriteValue("S", "Key", "/add-in/Zolvane.ini", "\"new\"").Ok());
  EXPECT_EQ(service->SplitText(",", "a,b"), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(
      host.Lines(),
      (Texts{
          R"({"event":"read","section":"S","key":"Key","file":"/add-in/Zolvane.ini","default":"none",)"
          R"("value":"value"})",
          R"({"event":"read","section":"S","key":"Other","file":"/add-in/Zolvane.ini","default":"none",)"
          R"("value":"none"})",
          R"({"event":"write","section":"S","key":"Key","file":"/add-in/Zolvane.ini","value":"\"new\"","ok":true})"}));
}

TEST(Trace, TellsOfAWriteWhetherItHeld) {
  TracedHost host;
  host.Calls.FailEverythingThatStartsWith("write");
  const auto service = Traced(host.Process, host.Log)->CreateIniFileService();
  EXPECT_EQ(service->WriteValue("S", "Key", "/x.bak", "1").Code(), Journal::failureCode);
  EXPECT_EQ(host.Lines(),
            Texts{R"({"event":"write","section":"S","key":"Key","file":"/x.bak","value":"1","ok":false})"});
}

TEST(Trace, HoldsNoReadsUnlessAskedTo) {
  TracedHost host;
  const auto service = Traced(host.Process, host.Log)->CreateIniFileService();
  service->ReadValue("S", "Key", "/add-in/Zolvane.ini", "none");
  EXPECT_EQ(host.Lines(), Texts{});
}

TEST(Trace, HoldsABlankLineOnlyWhenItWasAppended) {
  TracedHost host;
  const auto process = Traced(host.Process, host.Log);
  EXPECT_TRUE(process->AppendBlankLine("/x.bak").Ok());
  host.Calls.FailEverythingThatStartsWith("append");
  EXPECT_EQ(process->AppendBlankLine("/x.bak").Code(), Journal::failureCode);
  EXPECT_EQ(host.Lines(), Texts{R"({"event":"append_blank_line","file":"/x.bak"})"});
}

TEST(Trace, HoldsBoxesWithTheNumberOfTheAnswer) {
  TracedHost host;
  host.Process.BoxAnswers = {7};
  const auto process = Traced(host.Process, host.Log);
  EXPECT_EQ(process->ShowMessageBox({.Text = "a\r\nb", .Style = 51, .Title = "T"}), 7);
  host.Calls.FailEverythingThatStartsWith("box");
  EXPECT_EQ(process->ShowMessageBox({.Text = "", .Style = 0, .Title = "T"}), std::nullopt);
  process->RunMessageLoopOnce();
  EXPECT_EQ(host.Lines(),
            (Texts{R"({"event":"message_box","title":"T","style":51,"text":"a\r\nb","answer":7})",
                   R"({"event":"message_box","title":"T","style":0,"text":"","answer":null})",
                   R"({"event":"yield"})"}));
}

TEST(Trace, HoldsFileDialoguesAsTheyWereProposed) {
  TracedHost host;
  host.Process.FileAnswers = {"/chosen.bak"};
  const auto process = Traced(host.Process, host.Log);
  FileDialogue dialogue;
  dialogue.Title = "Pick";
  dialogue.Filter = "All|*.*";
  dialogue.DefaultExtension = "bak";
  dialogue.FileName = "proposed";
  EXPECT_EQ(process->ShowFileDialogue(FileDialogueKind::Open, dialogue), "/chosen.bak");
  dialogue.Flags = 2054;
  EXPECT_EQ(process->ShowFileDialogue(FileDialogueKind::Save, dialogue), std::nullopt);
  EXPECT_EQ(
      host.Lines(),
      (Texts{R"({"event":"file_dialog","kind":"open","title":"Pick","filter":"All|*.*","filter_index":1,)"
             R"("default_extension":"bak","flags":null,"file_name":"proposed","chosen":"/chosen.bak"})",
             R"({"event":"file_dialog","kind":"save","title":"Pick","filter":"All|*.*","filter_index":1,)"
             R"("default_extension":"bak","flags":2054,"file_name":"proposed","chosen":null})"}));
}

TEST(Trace, HoldsFlagsAndCommandsOfTheLink) {
  TracedHost host;
  host.Object->TheLink->Replies["LOST"] = {NoAnswer()};
  const auto link = Traced(host.Object, host.Log)->Link();
  std::string reply = "before";
  std::string lost = "LOST";
  std::string found = "FOUND";
  EXPECT_EQ(link->Stop(), false);
  EXPECT_TRUE(link->SetStop(true).Ok());
  EXPECT_TRUE(link->SetHold(true).Ok());
  EXPECT_EQ(link->SendCommand(lost, reply, 0), false);
  EXPECT_EQ(link->SendCommand(found, reply, 0), true);
  host.Calls.FailsIf = [](std::string_view) { return true; };
  EXPECT_EQ(link->Stop(), std::nullopt);
  EXPECT_EQ(link->SendCommand(found, reply, 0), std::nullopt);
  EXPECT_EQ(host.Lines(), (Texts{R"({"event":"link","flag":"stop","op":"get","value":false})",
                                 R"({"event":"link","flag":"stop","op":"set","value":true})",
                                 R"({"event":"link","flag":"hold","op":"set","value":true})",
                                 R"({"event":"send","command":"LOST","ok":false,"reply":"before"})",
                                 R"({"event":"send","command":"FOUND","ok":true,"reply":"OK"})",
                                 R"({"event":"link","flag":"stop","op":"get","value":null})",
                                 R"({"event":"send","command":"FOUND","ok":false,"reply":"OK"})"}));
}

TEST(Trace, HoldsTheHostsDialogueOnceItIsAnswered) {
  TracedHost host;
  host.Object->Dialog->Results = {-1, -1, 6};
  const auto object = Traced(host.Object, host.Log);
  EXPECT_TRUE(object->WriteLogLine("a line").Ok());
  const auto dialogue = object->MessageDialog();
  EXPECT_TRUE(dialogue->SetStyle(3).Ok());
  EXPECT_TRUE(dialogue->SetTitle("T").Ok());
  EXPECT_TRUE(dialogue->SetMessage("M").Ok());
  EXPECT_TRUE(dialogue->Show(true).Ok());
  for (const int expected : {-1, -1, 6, 6}) {
    EXPECT_EQ(dialogue->Result(), expected);
  }
  EXPECT_EQ(host.Lines(), (Texts{R"({"event":"log","line":"a line"})",
                                 R"({"event":"host_dialog","title":"T","style":3,"text":"M","answer":6})"}));
}

TEST(Trace, HoldsTheWindowsPanelAndFlag) {
  TracedHost host;
  const auto window = Traced(host.Window, host.Log);
  const auto panel = window->FindStatusPanel();
  EXPECT_TRUE(panel->SetText("Working").Ok());
  EXPECT_EQ(panel->Text(), "Working");
  EXPECT_TRUE(window->SetChanged(false).Ok());
  EXPECT_TRUE(window->TakeFocus().Ok());
  EXPECT_EQ(host.Lines(),
            (Texts{R"({"event":"status","text":"Working"})", R"({"event":"changed","value":false})"}));
}

TEST(Trace, HoldsEverySetOfAControl) {
  TracedHost host;
  SilentEvents events;
  const auto views = Traced(host.Views, host.Log);
  const auto view = views->CreatePageView(events);
  const std::vector<ListEntry> entries{{.Text = "One", .Data = 1}};
  EXPECT_TRUE(view->ShowEntries(ListControl::TipType, entries).Ok());
  EXPECT_TRUE(view->ShowAddedEntry(ListControl::TipType, {.Text = "None", .Data = 0}).Ok());
  EXPECT_TRUE(view->ShowSelection(ListControl::TipType, 1).Ok());
  EXPECT_TRUE(view->ShowListColour(ListControl::DeviceType, 0x8000000F).Ok());
  EXPECT_TRUE(view->ShowListEnabled(ListControl::NestType, false).Ok());
  EXPECT_TRUE(view->ShowCheck(CheckControl::HeadSensor, 2).Ok());
  EXPECT_TRUE(view->ShowCheckEnabled(CheckControl::RFID, true).Ok());
  EXPECT_TRUE(view->ShowButtonEnabled(4, false).Ok());
  EXPECT_TRUE(view->ShowPumpText("Connected").Ok());
  EXPECT_EQ(
      host.Lines(),
      (Texts{
          R"({"event":"control","name":"cboTipType","property":"items","value":[{"text":"One","data":1}]})",
          R"({"event":"control","name":"cboTipType","property":"items",)"
          R"("value":[{"text":"One","data":1},{"text":"None","data":0}]})",
          R"({"event":"control","name":"cboTipType","property":"selection","value":1})",
          R"({"event":"control","name":"cboDeviceType","property":"back_color","value":2147483663})",
          R"({"event":"control","name":"cboNestType","property":"enabled","value":false})",
          R"({"event":"control","name":"chkHeadSensor","property":"value","value":2})",
          R"({"event":"control","name":"chkRFID","property":"enabled","value":true})",
          R"-({"event":"control","name":"cmdButton(4)","property":"enabled","value":false})-",
          R"({"event":"control","name":"lblPumps","property":"text","value":"Connected"})"}));
  EXPECT_EQ(host.Views.View->Shown.Of(ListControl::TipType).Selected, 1);
}

TEST(Trace, WritesBytesThatAreNoTextAsTheReplacementCharacter) {
  TracedHost host;
  const auto window = Traced(host.Window, host.Log);
  PassOver(window->FindStatusPanel()->SetText("a\xff\"\x01"));
  EXPECT_EQ(host.Lines(), Texts{"{\"event\":\"status\",\"text\":\"a\xef\xbf\xbd\\\"\\u0001\"}"});
}

TEST(Trace, ALostTraceIsKnownAndDisturbsNothing) {
  TracedHost host;
  const auto window = Traced(host.Window, host.Log);
  EXPECT_TRUE(host.Log.Flush());
  host.Text.setstate(std::ios::badbit);
  EXPECT_TRUE(window->SetChanged(true).Ok());
  EXPECT_EQ(host.Window->Changed, true);
}

}  // namespace
}  // namespace zolvane
