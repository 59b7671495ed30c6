#include "shell/windows/page/page_appearance.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zolvane {
namespace {

RECT InPixels(const Area& area, const DialogueUnits& units) {
  return {.left = units.Across(area.Left),
          .top = units.Down(area.Top),
          .right = units.Across(area.Left + area.Width),
          .bottom = units.Down(area.Top + area.Height)};
}

SIZE SizeOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

// A list is as high as its font makes it. The height that it is given is that of the part that drops down.
void PlaceList(HWND list, const RECT& row) {
  constexpr int entriesInView = 12;
  const int width = row.right - row.left;
  const int height = row.bottom - row.top;
  MoveWindow(list, row.left, row.top, width, height * entriesInView, FALSE);
  MoveWindow(list, row.left, row.top + (height - SizeOf(list).cy) / 2, width, height * entriesInView, FALSE);
}

void Place(HWND control, const ControlRow& row, const DialogueUnits& units, const PageFonts& fonts) {
  const HFONT font = (row.Kind == ControlKind::Title ? fonts.Title : fonts.Text).Get();
  SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  const RECT place = InPixels(row.Place, units);
  if (row.Kind == ControlKind::List) {
    PlaceList(control, place);
  } else {
    MoveWindow(control, place.left, place.top, place.right - place.left, place.bottom - place.top, FALSE);
  }
}

std::wstring EntryText(HWND list, LRESULT entry) {
  const auto place = static_cast<WPARAM>(entry);
  const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, place, 0);
  std::wstring text(static_cast<std::size_t>(std::max<LRESULT>(length, 0)), L'\0');
  SendMessageW(list, CB_GETLBTEXT, place, reinterpret_cast<LPARAM>(text.data()));
  return text;
}

std::vector<std::wstring> EntryTexts(HWND list) {
  std::vector<std::wstring> texts;
  const auto entries = SendMessageW(list, CB_GETCOUNT, 0, 0);
  texts.reserve(static_cast<std::size_t>(std::max<LRESULT>(entries, 0)));
  for (LRESULT entry = 0; entry < entries; ++entry) {
    texts.push_back(EntryText(list, entry));
  }
  return texts;
}

}  // namespace

PageAppearance::PageAppearance(const PageHandles& windows, ScaleOf scaleOf)
    : windows_{windows}, scaleOf_{scaleOf} {
  colours_.fill(COLOR_WINDOW);
}

// ---- Places ----

void PageAppearance::Arrange() {
  const HWND frame = windows_.Frame;
  if (frame == nullptr) {
    return;
  }
  dpi_ = scaleOf_(frame);
  PageFonts fonts = MakePageFonts(dpi_);
  const DialogueUnits units{fonts.Text.Get()};
  for (const auto& row : PageLayout()) {
    Place(windows_.Control(row.Id), row, units, fonts);
  }
  std::swap(fonts_, fonts);  // the controls have used the old ones until now
  for (int list = 0; list < static_cast<int>(listRows.size()); ++list) {
    FitDropDown(static_cast<ListControl>(list));
  }
  Resize({units.Across(pageWidth), units.Down(pageHeight)});
  RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void PageAppearance::FollowScale() {
  const HWND frame = windows_.Frame;
  if (frame != nullptr && scaleOf_(frame) != dpi_) {
    Arrange();
  }
}

// A host may have given the frame a size of its own, which is then kept.
void PageAppearance::Resize(SIZE naturalSize) {
  const HWND frame = windows_.Frame;
  const SIZE size = SizeOf(frame);
  const bool isNatural = size.cx == naturalSize_.cx && size.cy == naturalSize_.cy;
  naturalSize_ = naturalSize;
  if (isNatural) {
    SetWindowPos(frame, nullptr, 0, 0, naturalSize.cx, naturalSize.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
}

void PageAppearance::FitDropDown(ListControl list) const {
  const HWND control = windows_.Control(list);
  const int needed = WidestText(control, fonts_.Text.Get(), EntryTexts(control)) +
                     GetSystemMetrics(SM_CXVSCROLL) + 4 * GetSystemMetrics(SM_CXEDGE);
  const int width = std::min(needed, ScreenWidthAt(control));
  SendMessageW(control, CB_SETDROPPEDWIDTH, 1, 0);  // the list's own; systems differ in making it narrower
  SendMessageW(control, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(width), 0);
}

bool PageAppearance::HasControlAt(POINT place) const {
  const DialogueUnits units{fonts_.Text.Get()};
  return std::ranges::any_of(PageLayout(), [&](const ControlRow& row) {
    const RECT area = InPixels(row.Place, units);
    return TakesFocus(row.Kind) && PtInRect(&area, place);
  });
}

// ---- Colours ----

void PageAppearance::SetListColour(ListControl list, int systemColour) {
  colours_[IndexOf(list)] = systemColour;
  InvalidateRect(windows_.Control(list), nullptr, TRUE);
}

int PageAppearance::ColourOf(int id) const {
  const auto list = ListWith(id);
  return list ? colours_[IndexOf(*list)] : COLOR_BTNFACE;
}

LRESULT PageAppearance::OnColour(UINT message, WPARAM context, LPARAM control) const {
  DefWindowProcW(windows_.Frame, message, context, control);
  const int colour = ColourOf(GetDlgCtrlID(reinterpret_cast<HWND>(control)));
  SetBkColor(reinterpret_cast<HDC>(context), GetSysColor(colour));
  return reinterpret_cast<LRESULT>(GetSysColorBrush(colour));
}

}  // namespace zolvane
