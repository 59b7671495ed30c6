#include "bench/windows/play/page_driver.h"

#include <array>

#include "shell/windows/page/page_layout.h"
#include "win32/text.h"

namespace zolvane {
namespace {

std::string EntryText(HWND list, WPARAM entry) {
  const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, entry, 0);
  std::wstring text(static_cast<std::size_t>(length < 0 ? 0 : length), L'\0');
  SendMessageW(list, CB_GETLBTEXT, entry, reinterpret_cast<LPARAM>(text.data()));
  return Utf8(text);
}

ListModel ListShown(HWND list) {
  ListModel model;
  const LRESULT count = SendMessageW(list, CB_GETCOUNT, 0, 0);
  for (WPARAM entry = 0; static_cast<LRESULT>(entry) < count; ++entry) {
    model.Entries.push_back(
        {.Text = EntryText(list, entry),
         .Data = static_cast<decltype(ListEntry::Data)>(SendMessageW(list, CB_GETITEMDATA, entry, 0))});
  }
  model.Selected = static_cast<int>(SendMessageW(list, CB_GETCURSEL, 0, 0));
  model.Enabled = IsWindowEnabled(list) != FALSE;
  return model;
}

}  // namespace

void PageDriver::Notify(int id, int notification) const {
  SendMessageW(frame_, WM_COMMAND, MAKEWPARAM(id, notification), reinterpret_cast<LPARAM>(Control(id)));
}

void PageDriver::Press(int button) const {
  const bool isThere = button >= 0 && static_cast<std::size_t>(button) < buttonRows.size();
  if (isThere && IsWindowEnabled(Control(IdOfButton(button)))) {
    Notify(IdOfButton(button), BN_CLICKED);
  }
}

void PageDriver::Select(ListControl list, int position) const {
  const HWND control = Control(IdOf(list));
  if (IsWindowEnabled(control)) {
    SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
    Notify(IdOf(list), CBN_SELCHANGE);
  }
}

void PageDriver::SetCheck(CheckControl box, int value) const {
  const HWND control = Control(IdOf(box));
  if (IsWindowEnabled(control)) {
    SendMessageW(control, BM_SETCHECK, static_cast<WPARAM>(value), 0);
    Notify(IdOf(box), BN_CLICKED);
  }
}

void PageDriver::ClickFrame() const {
  constexpr LPARAM topLeftCorner = MAKELPARAM(1, 1);
  SendMessageW(frame_, WM_LBUTTONDOWN, MK_LBUTTON, topLeftCorner);
  SendMessageW(frame_, WM_LBUTTONUP, 0, topLeftCorner);
}

PageModel PageDriver::Shown() const {
  PageModel page;
  for (std::size_t row = 0; row < listRows.size(); ++row) {
    page.Lists[row] = ListShown(Control(IdOf(static_cast<ListControl>(row))));
  }
  for (std::size_t row = 0; row < checkRows.size(); ++row) {
    const HWND box = Control(IdOf(static_cast<CheckControl>(row)));
    page.Checks[row] = {.Value = static_cast<int>(SendMessageW(box, BM_GETCHECK, 0, 0)),
                        .Enabled = IsWindowEnabled(box) != FALSE};
  }
  for (std::size_t button = 0; button < buttonRows.size(); ++button) {
    page.ButtonsEnabled[button] = IsWindowEnabled(Control(IdOfButton(static_cast<int>(button)))) != FALSE;
  }
  std::array<wchar_t, 256> text{};
  GetWindowTextW(Control(pumpTextId), text.data(), static_cast<int>(text.size()));
  page.PumpText = Utf8(text.data());
  return page;
}

}  // namespace zolvane
