// Entries of lists, of any text, length and number.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/host/silent_events.h"
#include "shell/windows/page/page_window.h"
#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

class ListEntries : public testing::Test {
 protected:
  HWND List() const { return frame_->Control(control_ids::tipList); }

  LRESULT DroppedWidth() const { return SendMessageW(List(), CB_GETDROPPEDWIDTH, 0, 0); }

  SilentEvents events_;
  std::shared_ptr<PageFrame> frame_ = PageFrame::Create(events_, {});
  PageWindow window_{frame_};
};

TEST_F(ListEntries, AreShownToTheLetterInAnyScript) {
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

TEST_F(ListEntries, AreReadableInFullAsFarAsTheScreenIsWide) {
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

TEST_F(ListEntries, MayBeTenThousand) {
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
