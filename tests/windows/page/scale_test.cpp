// The page's layout at the scales of screens.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "bench/host/silent_events.h"
#include "shell/windows/page/page_frame.h"
#include "win32/text.h"
#include "windows/page/control_ids.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

using namespace control_ids;

class Scale : public testing::TestWithParam<UINT> {
 protected:
  Scale() {
    scale_ = GetParam();
    frame_ = PageFrame::Create(events_, {}, [](HWND) { return scale_; });
  }

  HWND Control(const ControlRow& row) const { return frame_->Control(row.Id); }
  static int Scaled(int pixels) { return MulDiv(pixels, static_cast<int>(scale_), 96); }

  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a page asks a plain function for it
  static inline UINT scale_ = 96;
  SilentEvents events_;
  std::shared_ptr<PageFrame> frame_;
};

INSTANTIATE_TEST_SUITE_P(Dpi, Scale, testing::Values(96U, 120U, 144U, 192U, 288U),
                         [](const auto& kind) { return "Dpi" + std::to_string(kind.param); });

bool Contains(const RECT& outer, const RECT& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

bool Meet(const RECT& one, const RECT& other) {
  RECT common{};
  return IntersectRect(&common, &one, &other) != FALSE;
}

TEST_P(Scale, NoControlLeavesTheFrame) {
  RECT inside{};
  GetClientRect(frame_->Frame(), &inside);
  EXPECT_GT(inside.right, Scaled(500)) << "the frame grows with the scale";
  for (const auto& row : PageLayout()) {
    EXPECT_TRUE(Contains(inside, PlaceOf(Control(row)))) << row.Id;
  }
}

TEST_P(Scale, NoControlLiesOnAnother) {
  const auto rows = PageLayout();
  for (std::size_t one = 0; one < rows.size(); ++one) {
    for (std::size_t other = one + 1; other < rows.size(); ++other) {
      const bool isAround =
          (rows[one].Kind == ControlKind::GroupBox) != (rows[other].Kind == ControlKind::GroupBox);
      if (!isAround) {
        EXPECT_FALSE(Meet(PlaceOf(Control(rows[one])), PlaceOf(Control(rows[other]))))
            << rows[one].Id << " and " << rows[other].Id;
      }
    }
  }
}

TEST_P(Scale, EveryControlIsInItsGroup) {
  const RECT settings = PlaceOf(frame_->Control(settingsFrameId));
  const RECT calibration = PlaceOf(frame_->Control(calibrationFrameId));
  for (const int id : controlsInTabOrder) {
    const bool isAboutData = id == upload || id == download || id == import || id == save;
    EXPECT_TRUE(Contains(isAboutData ? calibration : settings, PlaceOf(frame_->Control(id)))) << id;
  }
}

SIZE CaptionSize(HWND control) {
  auto* const font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
  const auto caption = Wide(CaptionOf(control));
  const HDC context = GetDC(control);
  const HGDIOBJ before = SelectObject(context, font);
  RECT area{};
  DrawTextW(context, caption.c_str(), static_cast<int>(caption.size()), &area, DT_CALCRECT | DT_SINGLELINE);
  SelectObject(context, before);
  ReleaseDC(control, context);
  return {area.right, area.bottom};
}

TEST_P(Scale, EveryCaptionFitsItsControl) {
  for (const auto& row : PageLayout()) {
    if (row.Kind == ControlKind::List) {
      continue;
    }
    // Beside the text: the box with its gap, or the edges of a button.
    const int besides = row.Kind == ControlKind::CheckBox ? 20 : row.Kind == ControlKind::Button ? 12 : 0;
    RECT inside{};
    GetClientRect(Control(row), &inside);
    const SIZE caption = CaptionSize(Control(row));
    ASSERT_GT(caption.cx, 0) << row.Id;
    EXPECT_LE(caption.cx + Scaled(besides), inside.right) << row.Caption;
    EXPECT_LE(caption.cy, inside.bottom) << row.Caption;
  }
}

TEST_P(Scale, ListsAreHighEnoughForTheirFont) {
  for (const auto& row : PageLayout()) {
    if (row.Kind == ControlKind::List) {
      const RECT place = PlaceOf(Control(row));
      LOGFONTW font{};
      GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(Control(row), WM_GETFONT, 0, 0)), sizeof(font),
                 &font);
      EXPECT_GT(place.bottom - place.top, std::abs(font.lfHeight)) << row.Id;
    }
  }
}

TEST(PageScale, FollowsTheScreenThatThePageIsMovedTo) {
  static UINT scale = 96;
  scale = 96;
  SilentEvents events;
  const auto frame = PageFrame::Create(events, {}, [](HWND) { return scale; });
  const RECT before = PlaceOf(frame->Control(query));
  scale = 192;
  constexpr UINT scaleChanged = 0x02E3;
  SendMessageW(frame->Frame(), scaleChanged, 0, 0);
  const RECT after = PlaceOf(frame->Control(query));
  EXPECT_NEAR(after.right - after.left, 2 * (before.right - before.left), 8);
  EXPECT_NEAR(after.top, 2 * before.top, 24);
}

}  // namespace
}  // namespace zolvane
