#include "shell/windows/page/page_frame.h"

#include <windowsx.h>

#include <algorithm>
#include <array>
#include <utility>

#include "shell/windows/page/page_control.h"
#include "shell/windows/page/window_class.h"
#include "win32/guarded.h"
#include "win32/module_instance.h"
#include "win32/text.h"

namespace zolvane {
namespace {

struct WindowKind {
  const wchar_t* ClassName;
  DWORD Style;
};

// In the order of ControlKind.
constexpr std::array<WindowKind, 7> windowKinds{{
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX},
    {L"BUTTON", BS_GROUPBOX},
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE},
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX},
    {L"COMBOBOX", CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL},
    {L"BUTTON", BS_AUTOCHECKBOX},
    {L"BUTTON", BS_PUSHBUTTON},
}};

// Sent by systems with a scale for each screen. Older headers do not have it.
constexpr UINT scaleChanged = 0x02E3;

bool CreateControl(HWND frame, const ControlRow& row) {
  const auto& kind = windowKinds[static_cast<std::size_t>(row.Kind)];
  const DWORD style = WS_CHILD | WS_VISIBLE | kind.Style | (TakesFocus(row.Kind) ? WS_TABSTOP : 0) |
                      (row.StartsGroup ? WS_GROUP : 0);
  const HWND control =
      CreateWindowExW(0, kind.ClassName, Wide(MarkedCaption(row)).c_str(), style, 0, 0, 0, 0, frame,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(row.Id)), ThisModule(), nullptr);
  if (control != nullptr && TakesFocus(row.Kind)) {
    MakePageControl(control);
  }
  return control != nullptr;
}

}  // namespace

// ---- Making and ending ----

std::shared_ptr<PageFrame> PageFrame::Create(PageEvents& events, const std::weak_ptr<PageOwner>& owner,
                                             PageAppearance::ScaleOf scaleOf) {
  std::shared_ptr<PageFrame> made{new PageFrame{events, owner, scaleOf}};
  return made->CreateWindows() ? made : nullptr;
}

PageFrame::PageFrame(PageEvents& events, const std::weak_ptr<PageOwner>& owner,
                     PageAppearance::ScaleOf scaleOf)
    : input_{windows_, events, owner}, appearance_{windows_, scaleOf} {}

PageFrame::~PageFrame() {
  Close();
}

bool PageFrame::CreateWindows() {
  if (!RegisterWindowClass(pageClassName, PageProcedure) ||
      !RegisterWindowClass(frameClassName, FrameProcedure)) {
    return false;
  }
  windows_.Page = CreateWindowExW(WS_EX_CONTROLPARENT, pageClassName, Wide(pageCaption).c_str(),
                                  WS_POPUP | WS_CAPTION, 0, 0, 0, 0, nullptr, nullptr, ThisModule(), this);
  if (windows_.Page == nullptr) {
    return false;
  }
  windows_.Frame = CreateWindowExW(WS_EX_CONTROLPARENT, frameClassName, L"picFrame", WS_CHILD | WS_VISIBLE, 0,
                                   0, 0, 0, windows_.Page, nullptr, ThisModule(), this);
  if (windows_.Frame == nullptr || !CreateControls()) {
    return false;
  }
  appearance_.FollowScale();
  return true;
}

bool PageFrame::CreateControls() const {
  return std::ranges::all_of(PageLayout(),
                             [this](const ControlRow& row) { return CreateControl(windows_.Frame, row); });
}

// The frame is destroyed on its own, as it may lie in one of the host's windows.
void PageFrame::Close() {
  input_.Stop();
  for (HWND* const member : {&windows_.Frame, &windows_.Page}) {
    if (const HWND window = std::exchange(*member, nullptr)) {
      SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      DestroyWindow(window);
    }
  }
}

// ---- Messages ----

LRESULT PageFrame::Dispatch(MessageHandler handler, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* const target = reinterpret_cast<PageFrame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return GuardedOr(LRESULT{0}, [&] {
    // What the user starts may end with the page and everything that the host holds released.
    const auto frame = target != nullptr ? target->weak_from_this().lock() : nullptr;
    const auto owner = frame ? frame->input_.Owner() : nullptr;
    return frame ? ((*frame).*handler)(window, message, wParam, lParam)
                 : DefWindowProcW(window, message, wParam, lParam);
  });
}

LRESULT CALLBACK PageFrame::PageProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return Dispatch(&PageFrame::OnPageMessage, window, message, wParam, lParam);
}

LRESULT CALLBACK PageFrame::FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return Dispatch(&PageFrame::OnFrameMessage, window, message, wParam, lParam);
}

// Only top-level windows get messages about settings, so the page's own window answers them for the frame.
LRESULT PageFrame::OnPageMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CLOSE:
      return 0;
    case WM_SETTINGCHANGE:
      if (wParam == SPI_SETNONCLIENTMETRICS) {
        appearance_.Arrange();
      }
      break;
    case WM_SYSCOLORCHANGE:
      RedrawWindow(windows_.Frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
      break;
    case WM_NCDESTROY:
      windows_.Page = nullptr;
      break;
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT PageFrame::OnFrameMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      if (const HWND control = reinterpret_cast<HWND>(lParam);
          control != nullptr && IsWindowEnabled(control)) {
        input_.OnCommand(LOWORD(wParam), HIWORD(wParam));
      }
      return 0;
    case PageInput::dropDownClosed:
      if (wParam < listRows.size()) {  // the host may have sent a message of its own with this number
        input_.OnDropDownClosed(static_cast<ListControl>(wParam));
      }
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
      return appearance_.OnColour(message, wParam, lParam);
    case WM_LBUTTONDOWN:
      OnClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_SETFOCUS:
      SetFocus(GetNextDlgTabItem(window, nullptr, FALSE));
      return 0;
    case WM_WINDOWPOSCHANGED:
    case scaleChanged:
      appearance_.FollowScale();
      break;
    case WM_NCDESTROY:
      windows_.Frame = nullptr;
      break;
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

// Clicks on a disabled control arrive at the frame, too, but are not meant for it.
void PageFrame::OnClick(POINT place) const {
  if (!appearance_.HasControlAt(place)) {
    input_.OnClickBesideControls();
  }
}

}  // namespace zolvane
