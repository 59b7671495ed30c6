#include "shell/connect.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/form_session.h"

namespace zolvane {
namespace {

struct ConnectFixture : FakeHost {
  RecordedViewFactory Views{Calls};
  AddInModule Module{Process, Views};
  std::optional<Connect> AddIn{std::in_place, Module};
};

TEST(Connect, LoadsThePageWhenItIsCreatedAndDoesNothingElse) {
  ConnectFixture fixture;
  EXPECT_TRUE(fixture.AddIn->Class_Initialize().Ok());
  EXPECT_EQ(fixture.Calls.Events, Texts{"view create"});
}

TEST(Connect, ReportsAPageThatCannotBeCreated) {
  ConnectFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("view create");
  EXPECT_FALSE(fixture.AddIn->Class_Initialize().Ok());
  EXPECT_EQ(fixture.AddIn->IAddIn_Form(), nullptr);
  EXPECT_EQ(fixture.AddIn->IAddIn_Caption(), std::nullopt);
}

TEST(Connect, GivesTheCaptionOfThePage) {
  ConnectFixture fixture;
  PassOver(fixture.AddIn->Class_Initialize());
  EXPECT_EQ(fixture.AddIn->IAddIn_Caption(), "Zolvane Setup");
  EXPECT_EQ(fixture.Calls.Events, Texts{"view create"});
}

TEST(Connect, GivesTheOnePageAndSharesIt) {
  ConnectFixture fixture;
  PassOver(fixture.AddIn->Class_Initialize());
  const auto form = fixture.AddIn->IAddIn_Form();
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(fixture.AddIn->IAddIn_Form(), form);
  EXPECT_EQ(fixture.Module.Page(), form);
  Connect second{fixture.Module};
  PassOver(second.Class_Initialize());
  EXPECT_EQ(second.IAddIn_Form(), form);
  EXPECT_EQ(fixture.Calls.Events, Texts{"view create"});
}

TEST(Connect, CreatesThePageForTheFormOrTheCaptionIfThereIsNone) {
  ConnectFixture form;
  EXPECT_NE(form.AddIn->IAddIn_Form(), nullptr);
  EXPECT_EQ(form.Calls.Events, Texts{"view create"});
  ConnectFixture caption;
  EXPECT_EQ(caption.AddIn->IAddIn_Caption(), "Zolvane Setup");
  EXPECT_EQ(caption.Calls.Events, Texts{"view create"});
}

TEST(Connect, UnloadsThePageWhenItIsReleased) {
  ConnectFixture fixture;
  PassOver(fixture.AddIn->Class_Initialize());
  fixture.AddIn->IAddIn_Form()->IAddInForm_ObjectParent(fixture.Object);
  fixture.Calls.Clear();
  fixture.AddIn.reset();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "hold=false", "view close"}));
}

TEST(Connect, CreatesAFreshPageAfterTheHostDetachedIt) {
  ConnectFixture fixture;
  PassOver(fixture.AddIn->Class_Initialize());
  const auto first = fixture.AddIn->IAddIn_Form();
  first->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(fixture.AddIn->IAddIn_Caption(), "Zolvane Setup");
  EXPECT_NE(fixture.AddIn->IAddIn_Form(), first);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"view create", "view close", "view create"}));
}

TEST(Connect, CreatesNoPageOnlyToUnloadItAfterADetach) {
  ConnectFixture fixture;
  PassOver(fixture.AddIn->Class_Initialize());
  fixture.AddIn->IAddIn_Form()->IAddInForm_ObjectParent(nullptr);
  fixture.Calls.Clear();
  fixture.AddIn->Class_Terminate();
  fixture.AddIn.reset();
  EXPECT_EQ(fixture.Calls.Events, Texts{});
}

TEST(Connect, LeavesAPageToItsHolderAfterItsRelease) {
  ConnectFixture fixture;
  const auto form = fixture.AddIn->IAddIn_Form();
  fixture.AddIn.reset();
  EXPECT_EQ(form->IAddInForm_HelpContextID(), 9014);
}

}  // namespace
}  // namespace zolvane
