#include "bench/windows/message_window.h"

#include <algorithm>
#include <stdexcept>

#include "shell/windows/text.h"

namespace zolvane {
namespace {

constexpr int width = 420;
constexpr int height = 200;
constexpr int margin = 12;
constexpr int buttonWidth = 90;
constexpr int buttonHeight = 26;
constexpr int textId = 0xFFFF;

HWND AddChild(HWND parent, const wchar_t* className, const std::string& text, DWORD style, const RECT& place,
              int id) {
  const HWND child =
      CreateWindowExW(0, className, Wide(text).c_str(), WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                      place.right - place.left, place.bottom - place.top, parent,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
  return child;
}

}  // namespace

MessageWindow::MessageWindow(HWND owner, const Question& question) : owner_{owner} {
  WNDCLASSW kind{};
  kind.lpfnWndProc = Procedure;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  kind.lpszClassName = messageWindowClass;
  RegisterClassW(&kind);
  closingButton_ = ButtonsOf(question.Style).back();
  window_ = CreateWindowExW(WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME, messageWindowClass,
                            Wide(question.Title).c_str(), WS_POPUP | WS_CAPTION | WS_SYSMENU, CW_USEDEFAULT,
                            CW_USEDEFAULT, width, height, owner, nullptr, GetModuleHandleW(nullptr), this);
  if (window_ == nullptr) {
    throw std::runtime_error{"the message dialogue cannot be shown"};
  }
  AddContent(question);
  ShowWindow(window_, SW_SHOW);
  SetForegroundWindow(window_);
}

MessageWindow::~MessageWindow() {
  if (window_ != nullptr) {
    DestroyWindow(window_);
  }
}

void MessageWindow::AddContent(const Question& question) {
  RECT inside{};
  GetClientRect(window_, &inside);
  const LONG row = inside.bottom - margin - buttonHeight;
  AddChild(window_, L"STATIC", question.Text, SS_NOPREFIX,
           {margin, margin, inside.right - margin, row - margin}, textId);
  LONG left = margin;
  for (const auto button : ButtonsOf(question.Style)) {
    AddChild(window_, L"BUTTON", std::string{ButtonName(button)}, WS_TABSTOP,
             {left, row, left + buttonWidth, row + buttonHeight}, button);
    left += buttonWidth + margin;
  }
  SetFocus(GetDlgItem(window_, ButtonsOf(question.Style).front()));
}

void MessageWindow::Answer(std::int32_t button) {
  result_ = static_cast<std::int16_t>(button);
  DestroyWindow(window_);
}

LRESULT CALLBACK MessageWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* const self = reinterpret_cast<MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr) {
    return DefWindowProcW(window, message, wParam, lParam);
  }
  switch (message) {
    case WM_COMMAND:
      if (GetDlgItem(window, LOWORD(wParam)) != nullptr && LOWORD(wParam) != textId) {
        self->Answer(LOWORD(wParam));
      }
      return 0;
    case WM_CLOSE:
      self->Answer(self->closingButton_);
      return 0;
    case WM_NCDESTROY:
      self->window_ = nullptr;
      break;
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace zolvane
