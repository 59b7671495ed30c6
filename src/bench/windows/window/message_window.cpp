#include "bench/windows/window/message_window.h"

#include <algorithm>
#include <stdexcept>

#include "win32/guarded.h"
#include "win32/text.h"
#include "win32/window_metrics.h"

namespace zolvane {
namespace {

// In pixels at 100 %.
constexpr int margin = 14;
constexpr int gap = 8;
constexpr int buttonWidth = 90;
constexpr int buttonHeight = 26;
constexpr int narrowestText = 240;
constexpr int widestText = 420;

constexpr int textId = 0xFFFF;
constexpr DWORD windowStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;
constexpr DWORD extendedStyle = WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME;

HWND Created(HWND owner, const Question& question, WNDPROC procedure, void* self) {
  WNDCLASSW kind{};
  kind.lpfnWndProc = procedure;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  kind.lpszClassName = messageWindowClass;
  RegisterClassW(&kind);
  const HWND window =
      CreateWindowExW(extendedStyle, messageWindowClass, Wide(question.Title).c_str(), windowStyle, 0, 0, 0,
                      0, owner, nullptr, GetModuleHandleW(nullptr), self);
  return window != nullptr ? window : throw std::runtime_error{"the message dialogue cannot be shown"};
}

// The size of the text when it is broken into lines of this width.
SIZE SizeOfText(HWND window, HFONT font, const std::wstring& text, int width) {
  const HDC context = GetDC(window);
  const HGDIOBJ before = SelectObject(context, font);
  RECT area{0, 0, width, 0};
  DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &area,
            DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
  SelectObject(context, before);
  ReleaseDC(window, context);
  return {area.right, area.bottom};
}

// Centred over the owner, or on the screen.
POINT PlaceFor(HWND owner, SIZE size) {
  RECT around{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  if (owner != nullptr) {
    GetWindowRect(owner, &around);
  }
  return {std::max(0L, (around.left + around.right - size.cx) / 2),
          std::max(0L, (around.top + around.bottom - size.cy) / 2)};
}

}  // namespace

MessageWindow::MessageWindow(HWND owner, const Question& question)
    : owner_{owner},
      dpi_{DpiOf(owner)},
      font_{MakePageFonts(dpi_).Text},
      buttons_{ButtonsOf(question.Style)},
      window_{Created(owner, question, Procedure, this)} {
  AddContent(question);
  newest_ = this;
  keyHook_.Reset(SetWindowsHookExW(WH_GETMESSAGE, OnNextMessage, nullptr, GetCurrentThreadId()));
  ShowWindow(window_, SW_SHOW);
  SetForegroundWindow(window_);
  SetFocus(GetDlgItem(window_, buttons_.front()));
}

MessageWindow::~MessageWindow() {
  newest_ = before_;
  if (window_ != nullptr) {
    DestroyWindow(window_);
  }
}

int MessageWindow::Scaled(int pixels) const {
  return MulDiv(pixels, static_cast<int>(dpi_), 96);
}

HWND MessageWindow::AddChild(const wchar_t* className, const std::string& text, DWORD style,
                             const RECT& place, int id) {
  const HWND child =
      CreateWindowExW(0, className, Wide(text).c_str(), WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                      place.right - place.left, place.bottom - place.top, window_,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
  return child;
}

// The text at the top, the buttons below it on the right.
void MessageWindow::AddContent(const Question& question) {
  const int count = static_cast<int>(buttons_.size());
  const int buttonsWidth = count * Scaled(buttonWidth) + (count - 1) * Scaled(gap);
  const SIZE text = SizeOfText(window_, font_.Get(), Wide(question.Text), Scaled(widestText));
  const int width = std::max({static_cast<int>(text.cx), Scaled(narrowestText), buttonsWidth});
  const int edge = Scaled(margin);
  const int row = edge + static_cast<int>(text.cy) + Scaled(2 * gap);
  ResizeTo({width + 2 * edge, row + Scaled(buttonHeight) + edge});
  AddChild(L"STATIC", question.Text, SS_NOPREFIX, {edge, edge, edge + width, edge + text.cy}, textId);
  int left = edge + width - buttonsWidth;
  DWORD kind = BS_DEFPUSHBUTTON;
  for (const auto button : buttons_) {
    AddChild(L"BUTTON", std::string{ButtonName(button)}, WS_TABSTOP | kind,
             {left, row, left + Scaled(buttonWidth), row + Scaled(buttonHeight)}, button);
    left += Scaled(buttonWidth + gap);
    kind = BS_PUSHBUTTON;
  }
}

void MessageWindow::ResizeTo(SIZE inside) {
  RECT outside{0, 0, inside.cx, inside.cy};
  AdjustWindowRectEx(&outside, windowStyle, FALSE, extendedStyle);
  const SIZE size{outside.right - outside.left, outside.bottom - outside.top};
  const POINT place = PlaceFor(owner_, size);
  SetWindowPos(window_, nullptr, place.x, place.y, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void MessageWindow::Answer(std::int32_t button) {
  result_ = static_cast<std::int16_t>(button);
  DestroyWindow(window_);
}

// Escape counts as the last button.
void MessageWindow::OnCommand(std::int32_t button) {
  if (std::ranges::find(buttons_, button) != buttons_.end()) {
    Answer(button);
  } else if (button == IDCANCEL) {
    Answer(buttons_.back());
  }
}

// The add-in waits for the answer in a message loop of its own, which may not handle dialogue keys.
LRESULT CALLBACK MessageWindow::OnNextMessage(int code, WPARAM removal, LPARAM message) {
  auto& next = *reinterpret_cast<MSG*>(message);
  if (code == HC_ACTION && removal == PM_REMOVE && newest_ != nullptr && newest_->window_ != nullptr &&
      next.message >= WM_KEYFIRST && next.message <= WM_KEYLAST &&
      IsDialogMessageW(newest_->window_, &next) != FALSE) {
    next.message = WM_NULL;
  }
  return CallNextHookEx(nullptr, code, removal, message);
}

LRESULT CALLBACK MessageWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* const self = reinterpret_cast<MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return GuardedOr(LRESULT{0}, [&] {
    return self != nullptr ? self->OnMessage(window, message, wParam, lParam)
                           : DefWindowProcW(window, message, wParam, lParam);
  });
}

LRESULT MessageWindow::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(wParam));
      return 0;
    case DM_GETDEFID:
      return MAKELRESULT(buttons_.front(), DC_HASDEFID);
    case WM_CLOSE:
      Answer(buttons_.back());
      return 0;
    case WM_NCDESTROY:
      // If it is destroyed with its owner, nobody must be left waiting.
      result_ = result_ < 0 ? static_cast<std::int16_t>(buttons_.back()) : result_;
      window_ = nullptr;
      break;
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace zolvane
