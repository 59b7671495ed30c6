#include "bench/host/recorded_page.h"

#include <gtest/gtest.h>

#include <vector>

#include "bench/host/silent_events.h"

namespace zolvane {
namespace {

TEST(RecordedPage, AListThatIsFilledHasNothingSelected) {
  RecordedPageFactory pages;
  SilentEvents events;
  const auto page = pages.CreatePageView(events);
  const std::vector<ListEntry> entries{{.Text = "One", .Data = 1}, {.Text = "Two", .Data = 2}};
  EXPECT_TRUE(page->ShowEntries(ListControl::TipType, entries).Ok());
  EXPECT_TRUE(page->ShowSelection(ListControl::TipType, 1).Ok());
  EXPECT_EQ(pages.Shown().Of(ListControl::TipType).Selected, 1);
  EXPECT_TRUE(page->ShowEntries(ListControl::TipType, entries).Ok());
  EXPECT_EQ(pages.Shown().Of(ListControl::TipType).Selected, noSelection);
}

TEST(RecordedPage, AClosedPageShowsNothingMoreAndIsRemembered) {
  RecordedPageFactory pages;
  SilentEvents events;
  const auto page = pages.CreatePageView(events);
  EXPECT_TRUE(page->ShowPumpText("Connected").Ok());
  page->Close();
  EXPECT_FALSE(page->ShowPumpText("Not Connected").Ok());
  EXPECT_EQ(pages.Shown().PumpText, "Connected");
}

}  // namespace
}  // namespace zolvane
