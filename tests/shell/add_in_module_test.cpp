#include "shell/add_in_module.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string_view>

#include "support/form_session.h"

namespace zolvane {
namespace {

constexpr std::string_view oneDevice = "[DeviceType]\nInstalled=1\nItem1=\"Small\",0,\"ZV200\"\n";

struct ModuleFixture : FakeHost {
  ModuleFixture() { Settings().Load(oneDevice); }

  RecordedViewFactory Views{Calls};
  std::optional<AddInModule> Module{std::in_place, Process, Views};
};

TEST(AddInModule, CreatesItsPageOnFirstUseAndKeepsIt) {
  ModuleFixture fixture;
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  const auto page = fixture.Module->Page();
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(fixture.Module->Page(), page);
  EXPECT_EQ(fixture.Calls.Events, Texts{"view create"});
}

TEST(AddInModule, HasNoPageWhenItsControlsCannotBeCreatedAndTriesAgain) {
  ModuleFixture fixture;
  fixture.Calls.FailingCall = 1;
  EXPECT_EQ(fixture.Module->Page(), nullptr);
  EXPECT_NE(fixture.Module->Page(), nullptr);
}

TEST(AddInModule, CreatesAFreshPageAfterUnloading) {
  ModuleFixture fixture;
  const auto first = fixture.Module->Page();
  fixture.Module->UnloadPage();
  const auto second = fixture.Module->Page();
  EXPECT_NE(second, first);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"view create", "view close", "view create"}));
}

TEST(AddInModule, CreatesNoPageOnlyToUnloadIt) {
  ModuleFixture fixture;
  fixture.Module->UnloadPage();
  EXPECT_EQ(fixture.Calls.Events, Texts{});
}

TEST(AddInModule, CreatesAFreshPageAfterTheHostDetachedTheFirst) {
  ModuleFixture fixture;
  const auto first = fixture.Module->Page();
  first->IAddInForm_ObjectParent(nullptr);
  const auto second = fixture.Module->Page();
  EXPECT_NE(second, first);
  EXPECT_EQ(fixture.Module->Page(), second);
}

TEST(AddInModule, KeepsItsPageWhenTheHostDetachesAnEarlierOne) {
  ModuleFixture fixture;
  const auto first = fixture.Module->Page();
  fixture.Module->UnloadPage();
  const auto second = fixture.Module->Page();
  first->IAddInForm_ObjectParent(fixture.Object);
  first->IAddInForm_ObjectParent(nullptr);
  EXPECT_EQ(fixture.Module->Page(), second);
}

TEST(AddInModule, DestroysAnUnloadedPageThatNobodyKeeps) {
  ModuleFixture fixture;
  const std::weak_ptr<frmAddIn> page = fixture.Module->Page();
  EXPECT_FALSE(page.expired());
  fixture.Module->UnloadPage();
  EXPECT_TRUE(page.expired());
}

TEST(AddInModule, UnloadsItsPageAtItsOwnEnd) {
  ModuleFixture fixture;
  fixture.Module->Page()->IAddInForm_ObjectParent(fixture.Object);
  fixture.Calls.Clear();
  fixture.Module.reset();
  EXPECT_EQ(fixture.Calls.Events, (Texts{"get link", "hold=false", "view close"}));
}

TEST(AddInModule, KeepsTheRecordsInForceWhenThePageIsUnloaded) {
  ModuleFixture fixture;
  fixture.Module->Page()->IAddInForm_LoadDefaults();
  fixture.Module->UnloadPage();
  EXPECT_EQ(fixture.Module->Config().Current.Device.Name, "Small");
  fixture.Module->Page();
  EXPECT_EQ(fixture.Module->Config().Current.Device.Name, "Small");
}

TEST(AddInModule, StartsWithEmptyRecordsInForce) {
  ModuleFixture fixture;
  fixture.Module->Page();
  EXPECT_EQ(fixture.Module->Config().Current.Device.Name, "");
}

TEST(AddInModule, GivesEachPageAFileDialogueOfItsOwn) {
  ModuleFixture fixture;
  fixture.Process.FileAnswers = {"/backup/a.bak"};
  fixture.Module->Page()->PressButton(exportButton);
  fixture.Module->UnloadPage();
  fixture.Module->Page()->PressButton(exportButton);
  EXPECT_EQ(fixture.Calls.Of({"save"}),
            (Texts{"save dialogue \"ZolvaneINIExport\"", "save dialogue \"ZolvaneINIExport\""}));
}

}  // namespace
}  // namespace zolvane
