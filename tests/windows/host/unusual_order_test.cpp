// Hosts that do not keep to the usual order: what is given twice, taken back, left out or destroyed.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "win32/text.h"
#include "windows/host/noted_session.h"

namespace zolvane {
namespace {

using UnusualOrder = NotedSession;

TEST_F(UnusualOrder, ADetachedPageThatIsGivenObjectsAgainLetsGoOfThemWhenItIsDetachedAgain) {
  Open();
  EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK);
  const auto before = ContentOf(ProgramFolder::OfThisRun().Configuration());
  Open();
  EXPECT_EQ(ContentOf(ProgramFolder::OfThisRun().Configuration()), before);
  EXPECT_EQ(Form->putref_ObjectParent(nullptr), S_OK);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_F(UnusualOrder, AClickBesideTheControlsReachesTheWindow) {
  Open();
  Page().ClickFrame();
  EXPECT_EQ(Calls.Count("focus"), 1U);
  Calls.FailEverythingThatStartsWith("focus");
  Page().ClickFrame();
  EXPECT_EQ(Calls.Count("focus"), 2U);
  EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK);
  Page().ClickFrame();
  EXPECT_EQ(Calls.Count("focus"), 2U);
  EXPECT_EQ(Form->putref_FormParent(Offer({}).Get()), S_OK);
  Page().ClickFrame();
  EXPECT_TRUE(IsWindow(Frame));
}

TEST_F(UnusualOrder, AWindowThatIsTakenBackLeavesThePanel) {
  Open();
  EXPECT_EQ(Form->putref_FormParent(nullptr), S_OK);
  Press(queryButton);
  EXPECT_EQ(Calls.Of({"status="}).front(), "status=Getting Zolvane Type");
  Calls.Clear();
  EXPECT_EQ(Form->SaveChanges(), S_OK);
  EXPECT_EQ(Calls.Of({"changed="}), Texts{});
}

TEST_F(UnusualOrder, AWindowWithoutAPanelLeavesThePanelOfTheOneBefore) {
  Open();
  EXPECT_EQ(Form->putref_FormParent(Offer({}).Get()), S_OK);
  Press(queryButton);
  EXPECT_EQ(Calls.Of({"status="}).front(), "status=Getting Zolvane Type");
}

TEST_F(UnusualOrder, LoadingLeavesTheMarkOfTheWindowAlone) {
  Open();
  EXPECT_EQ(Calls.Of({"changed="}), Texts{});
  Page().Select(ListControl::CageType, 1);
  EXPECT_EQ(Calls.Of({"changed="}), Texts{"changed=false"});
}

TEST_F(UnusualOrder, TheSameObjectsMayBeGivenTwice) {
  const auto object = OfferHostObject(Object);
  const auto window = OfferHostWindow(Window);
  Open(object, window);
  Open(object, window);
  Press(queryButton);
  EXPECT_EQ(Link().Commands.size(), 5U);
  EXPECT_EQ(Calls.Of({"hold="}), Texts(5, "hold=true"));
  EndSession();
  // Only the references of this test are left.
  EXPECT_EQ(object->AddRef(), 2U);
  EXPECT_EQ(object->Release(), 1U);
  EXPECT_EQ(window->AddRef(), 2U);
  EXPECT_EQ(window->Release(), 1U);
}

// ---- With nothing around it ----

const AddInFile& Module() {
  return ProgramFolder::OfThisRun().Module();
}

TEST(BareHost, IsToldCaptionHelpTopicButtonsAndStatusBar) {
  const auto addIn = Module().Create();
  UniqueBstr caption;
  EXPECT_EQ(addIn->get_Caption(caption.Put()), S_OK);
  EXPECT_EQ(Utf8FromBstr(caption.Get()), "Zolvane Setup");
  const auto form = FormOf(addIn);
  long topic = 0;
  VARIANT_BOOL buttons = VARIANT_FALSE;
  VARIANT_BOOL statusBar = VARIANT_FALSE;
  EXPECT_EQ(form->get_HelpContextID(&topic), S_OK);
  EXPECT_EQ(form->get_ShowButtons(&buttons), S_OK);
  EXPECT_EQ(form->get_ShowStatusBar(&statusBar), S_OK);
  EXPECT_EQ(topic, 9014);
  EXPECT_EQ(buttons, VARIANT_TRUE);
  EXPECT_EQ(statusBar, VARIANT_TRUE);
}

TEST(BareHost, GetsAFailureWithoutAPlaceForAResult) {
  const auto addIn = Module().Create();
  const auto form = FormOf(addIn);
  EXPECT_EQ(addIn->get_Caption(nullptr), E_POINTER);
  EXPECT_EQ(addIn->get_Form(nullptr), E_POINTER);
  EXPECT_EQ(form->get_Frame(nullptr), E_POINTER);
  EXPECT_EQ(form->get_hwnd(nullptr), E_POINTER);
  EXPECT_EQ(form->get_HelpContextID(nullptr), E_POINTER);
  EXPECT_EQ(addIn->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(BareHost, MayGiveNothingAtAll) {
  const auto addIn = Module().Create();
  const auto form = FormOf(addIn);
  EXPECT_EQ(form->putref_FormParent(nullptr), S_OK);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(form->SaveChanges(), S_OK);
  EXPECT_EQ(form->putref_ObjectParent(nullptr), S_OK);
  EXPECT_EQ(form->putref_ObjectParent(nullptr), S_OK);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
}

TEST(BareHost, MayDestroyItsWindowWithThePageInIt) {
  const auto addIn = Module().Create();
  const auto form = FormOf(addIn);
  const HWND host = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 900, 600, nullptr,
                                    nullptr, nullptr, nullptr);
  const HWND frame = FrameOf(form);
  ASSERT_TRUE(IsWindow(frame));
  ASSERT_NE(SetParent(frame, host), nullptr);
  DestroyWindow(host);
  EXPECT_FALSE(IsWindow(frame));
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(form->putref_ObjectParent(nullptr), S_OK);
}

TEST(BareHost, MayLeaveOutTheDetaching) {
  {
    const auto addIn = Module().Create();
    const auto form = FormOf(addIn);
    form->putref_FormParent(Offer({}).Get());
    form->putref_ObjectParent(Offer({}).Get());
    form->LoadDefaults();
  }
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

}  // namespace
}  // namespace zolvane
