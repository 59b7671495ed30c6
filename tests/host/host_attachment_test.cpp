#include "host/host_attachment.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

TEST(HostAttachment, AsksForTheLinkAnewOnEachCall) {
  FakeHost host;
  const auto attachment = host.Attached();
  EXPECT_EQ(attachment.Link(), host.Object->TheLink);
  const auto replaced = std::make_shared<FakeLink>(host.Calls);
  host.Object->TheLink = replaced;
  EXPECT_EQ(attachment.Link(), replaced);
  EXPECT_EQ(host.Calls.Events, (Texts{"get link", "get link"}));
}

TEST(HostAttachment, HasNoLinkWithoutAHostObject) {
  FakeHost host;
  const HostAttachment attachment{.ObjectParent = nullptr, .FormParent = host.Window, .Panel = nullptr};
  EXPECT_EQ(attachment.Link(), nullptr);
  EXPECT_EQ(host.Calls.Events, Texts{});
}

TEST(HostAttachment, HasNoLinkWhenTheHostGivesNone) {
  FakeHost host;
  host.Object->TheLink = nullptr;
  EXPECT_EQ(host.Attached().Link(), nullptr);
}

TEST(HostAttachment, ReadsTheStopFlagAfreshFromTheLink) {
  FakeHost host;
  const auto attachment = host.Attached();
  EXPECT_TRUE(attachment.MayGoOn());
  host.Link().StopFlag = true;
  EXPECT_FALSE(attachment.MayGoOn());
  host.Link().StopFlag = false;
  EXPECT_TRUE(attachment.MayGoOn());
  EXPECT_EQ(host.Calls.Events, (Texts{"get link", "stop?", "get link", "stop?", "get link", "stop?"}));
}

TEST(HostAttachment, TakesAStopFlagThatCannotBeReadForNotRaised) {
  FakeHost host;
  host.Calls.FailEverythingThatStartsWith("stop?");
  EXPECT_TRUE(host.Attached().MayGoOn());
  host.Calls.FailEverythingThatStartsWith("get link");
  EXPECT_TRUE(host.Attached().MayGoOn());
  EXPECT_TRUE(HostAttachment{}.MayGoOn());
}

TEST(HostAttachment, ReadsAndSetsThePanelsText) {
  FakeHost host;
  const auto attachment = host.Attached();
  EXPECT_TRUE(attachment.SetStatusText("Getting Zolvane Type").Ok());
  EXPECT_EQ(host.Window->Panel->Shown, "Getting Zolvane Type");
  EXPECT_EQ(attachment.StatusText(), "Getting Zolvane Type");
  EXPECT_TRUE(attachment.SetStatusText("").Ok());
  EXPECT_EQ(host.Window->Panel->Shown, "");
}

TEST(HostAttachment, ReadsNoTextWithoutAPanelOrFromAFailingOne) {
  EXPECT_EQ(HostAttachment{}.StatusText(), "");
  FakeHost host;
  host.Window->Panel->Shown = "Getting Zolvane Type";
  host.Calls.FailEverythingThatStartsWith("status?");
  EXPECT_EQ(host.Attached().StatusText(), "");
}

TEST(HostAttachment, ReportsATextThatCouldNotBeSet) {
  EXPECT_FALSE(HostAttachment{}.SetStatusText("Getting Zolvane Type").Ok());
  FakeHost host;
  host.Calls.FailEverythingThatStartsWith("status=");
  EXPECT_EQ(host.Attached().SetStatusText("Getting Zolvane Type").Code(), Journal::failureCode);
}

TEST(HostAttachment, SetsTheWindowsChangedProperty) {
  FakeHost host;
  EXPECT_TRUE(host.Attached().SetChanged(false).Ok());
  EXPECT_EQ(host.Window->Changed, false);
  EXPECT_TRUE(host.Attached().SetChanged(true).Ok());
  EXPECT_EQ(host.Window->Changed, true);
}

TEST(HostAttachment, ReportsAChangedPropertyThatCouldNotBeSet) {
  EXPECT_FALSE(HostAttachment{}.SetChanged(false).Ok());
  FakeHost host;
  host.Calls.FailEverythingThatStartsWith("changed=");
  EXPECT_EQ(host.Attached().SetChanged(false).Code(), Journal::failureCode);
}

// Each call lets go of what it is made on; it must live on until the call has ended.
TEST(HostAttachment, HoldsAnObjectThatIsTakenBackFromWithinItsCall) {
  FakeHost host;
  auto attachment = host.Attached();
  const std::weak_ptr<FakeHostObject> object = std::exchange(host.Object, nullptr);
  const std::weak_ptr<FakePanel> panel = host.Window->Panel;
  const std::weak_ptr<FakeWindow> window = std::exchange(host.Window, nullptr);
  window.lock()->Panel = nullptr;
  int held = 0;
  host.Calls.FailsIf = [&](std::string_view call) {
    if (call == "get link") {
      attachment.ObjectParent = nullptr;
      held += object.expired() ? 0 : 1;
    } else if (call.starts_with("status")) {
      attachment.Panel = nullptr;
      held += panel.expired() ? 0 : 1;
    } else {
      attachment.FormParent = nullptr;
      held += window.expired() ? 0 : 1;
    }
    return false;
  };
  EXPECT_NE(attachment.Link(), nullptr);
  EXPECT_TRUE(attachment.SetStatusText("Getting Zolvane Type").Ok());
  EXPECT_TRUE(attachment.SetChanged(false).Ok());
  EXPECT_EQ(held, 3);
  EXPECT_TRUE(object.expired() && panel.expired() && window.expired());
}

}  // namespace
}  // namespace zolvane
