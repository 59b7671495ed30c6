#include "operations/confirmation.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

TEST(StartAndConfirm, GivesTheButtonThatClosedTheBox) {
  OperationFixture fixture;
  fixture.Process.BoxAnswers = {message_answer::cancel, message_answer::ok};
  EXPECT_EQ(StartAndConfirm(fixture.Context, "status", "title", "question"), message_answer::cancel);
  EXPECT_EQ(StartAndConfirm(fixture.Context, "status", "title", "question"), message_answer::ok);
}

TEST(StartAndConfirm, GivesNothingWhenTheBoxCannotBeShown) {
  OperationFixture fixture;
  fixture.Calls.FailEverythingThatStartsWith("box");
  EXPECT_EQ(StartAndConfirm(fixture.Context, "status", "title", "question"), std::nullopt);
}

TEST(StartAndConfirm, AsksInABoxWithOkAndCancelAndTheExclamationIcon) {
  OperationFixture fixture;
  StartAndConfirm(fixture.Context, "status", "title", "question");
  ASSERT_EQ(fixture.Process.Boxes.size(), 1U);
  EXPECT_EQ(fixture.Process.Boxes.front().Style, 49);
  EXPECT_EQ(fixture.Process.Boxes.front().Title, "title");
  EXPECT_EQ(fixture.Process.Boxes.front().Text, "question");
}

TEST(StartAndConfirm, AsksAlsoWhenStatusAndControlsCannotBeSet) {
  OperationFixture fixture;
  fixture.Calls.FailsIf = [](auto event) {
    return event.starts_with("status") || event.starts_with("enable");
  };
  EXPECT_EQ(StartAndConfirm(fixture.Context, "status", "title", "question"), message_answer::ok);
}

TEST(EndOperation, ResetsChangedClearsTheStatusAndEnablesTheControls) {
  OperationFixture fixture;
  EndOperation(fixture.Context);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"changed=false", "status=", "enable controls true"}));
}

TEST(EndOperation, TakesEachStepWhateverBecameOfTheOnesBefore) {
  OperationFixture fixture;
  fixture.Calls.FailsIf = [](auto) { return true; };
  EndOperation(fixture.Context);
  EXPECT_EQ(fixture.Calls.Events, (Texts{"changed=false", "status=", "enable controls true"}));
}

}  // namespace
}  // namespace zolvane
