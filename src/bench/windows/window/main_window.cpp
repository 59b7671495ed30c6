#include "bench/windows/window/main_window.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>
#include <utility>

#include "text/printable.h"
#include "win32/guarded.h"
#include "win32/text.h"

namespace zolvane {
namespace {

struct ButtonPlan {
  int Id;
  const wchar_t* Caption;
};
constexpr std::array<ButtonPlan, 4> buttons{
    {{saveId, L"Save"}, {closePageId, L"Close"}, {helpId, L"Help"}, {stopId, L"Stop (Esc)"}}};

// The parts of the status bar.
enum Part : int { statusPart, changedPart };

constexpr const wchar_t* title = L"Hestrion bench";

// In pixels at 100 %.
constexpr int margin = 11;  // as wide as the one that the page has inside
constexpr int gap = 8;
constexpr int buttonWidth = 90;
constexpr int buttonHeight = 26;
constexpr int logHeight = 140;
constexpr int emptyWidth = 620;
constexpr int emptyHeight = 420;
constexpr int heightWithPage = 600;
constexpr int changedWidth = 110;
constexpr int progressHeight = 16;
constexpr int smallestLog = 50;
constexpr int smallestWidth = 320;
constexpr int smallestHeight = 200;

// The place at which a window of this size is in the middle of the screen.
POINT FirstPlace(SIZE size) {
  RECT screen{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
  return {std::max(screen.left, (screen.left + screen.right - size.cx) / 2),
          std::max(screen.top, (screen.top + screen.bottom - size.cy) / 2)};
}

SIZE SizeOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

bool IsOneOf(UINT message, UINT first, UINT last) {
  return message >= first && message <= last;
}

std::wstring TimeOfDay() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  std::array<wchar_t, 16> text{};
  const int length =
      GetTimeFormatW(LOCALE_INVARIANT, 0, &now, L"HH':'mm':'ss", text.data(), static_cast<int>(text.size()));
  return {text.data(), static_cast<std::size_t>(std::max(1, length) - 1)};
}

bool IsShown(HWND window) {
  return (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

void RegisterClassOnce(WNDPROC procedure) {
  WNDCLASSW kind{};
  kind.lpfnWndProc = procedure;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  kind.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
  kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  kind.lpszClassName = mainWindowClass;
  RegisterClassW(&kind);
}

}  // namespace

MainWindow::MainWindow(Requests requests) : requests_{std::move(requests)} {
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  RegisterClassOnce(Procedure);
  // Its first message has filled in `window_`.
  if (CreateWindowExW(WS_EX_CONTROLPARENT, mainWindowClass, title, WS_OVERLAPPEDWINDOW, 40, 40, 0, 0, nullptr,
                      nullptr, GetModuleHandleW(nullptr), this) == nullptr) {
    throw std::runtime_error{"the window cannot be made"};
  }
  dpi_ = DpiOf(window_);
  font_ = MakePageFonts(dpi_).Text;
  const POINT place = FirstPlace({Scaled(emptyWidth), Scaled(heightWithPage)});
  SetWindowPos(window_, nullptr, place.x, place.y, Scaled(emptyWidth), Scaled(emptyHeight), SWP_NOZORDER);
  CreateMenu();
  CreateParts();
  Arrange();
  ShowWindow(window_, SW_SHOW);
  UpdateWindow(window_);
}

MainWindow::~MainWindow() {
  if (window_ != nullptr) {
    DestroyWindow(window_);
  }
}

int MainWindow::Scaled(int pixels) const {
  return MulDiv(pixels, static_cast<int>(dpi_), 96);
}

void MainWindow::CreateMenu() {
  const HMENU bar = ::CreateMenu();
  addIns_ = CreatePopupMenu();
  const HMENU help = CreatePopupMenu();
  AppendMenuW(addIns_, MF_STRING, closePageId, L"&Close page");
  AppendMenuW(addIns_, MF_STRING, quitId, L"E&xit");
  AppendMenuW(help, MF_STRING, helpId, L"Help on this &page\tF1");
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(addIns_), L"&Add-ins");
  AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(help), L"&Help");
  SetMenu(window_, bar);
}

void MainWindow::AddMenuEntry(const std::string& caption) {
  InsertMenuW(addIns_, 0, MF_BYPOSITION | MF_STRING, openPageId, Wide(caption).c_str());
  InsertMenuW(addIns_, 1, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr);
  DrawMenuBar(window_);
}

HWND MainWindow::AddChild(const wchar_t* className, const wchar_t* text, DWORD style, int id) {
  const HWND child =
      CreateWindowExW(0, className, text, WS_CHILD | style, 0, 0, 0, 0, window_,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
  return child;
}

void MainWindow::CreateParts() {
  constexpr WPARAM longestLog = WPARAM{4} * 1024 * 1024;
  for (const auto& button : buttons) {
    AddChild(L"BUTTON", button.Caption, WS_TABSTOP, button.Id);
  }
  log_ = AddChild(
      L"EDIT", L"",
      WS_VISIBLE | WS_BORDER | WS_VSCROLL | WS_TABSTOP | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, logId);
  SendMessageW(log_, EM_LIMITTEXT, longestLog, 0);
  ShowOperation(false);
  progress_ = AddChild(L"STATIC", L"", SS_NOPREFIX, progressId);
  statusBar_ = AddChild(STATUSCLASSNAMEW, L"", WS_VISIBLE | SBARS_SIZEGRIP, statusBarId);
}

void MainWindow::Embed(HWND frame, bool hasButtons, bool hasStatusBar) {
  frame_ = frame;
  hasButtons_ = hasButtons;
  ShowWindow(statusBar_, frame == nullptr || hasStatusBar ? SW_SHOW : SW_HIDE);
  if (frame != nullptr) {
    SetParent(frame, window_);
    SetWindowPos(frame, HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
    FitToPage();
  }
  Arrange();
  InvalidateRect(window_, nullptr, TRUE);
  UpdateWindow(window_);
}

void MainWindow::ShowTitle(std::string_view page) {
  page_ = page.empty() ? std::wstring{} : Wide(page) + L" - ";
  UpdateTitle();
}

void MainWindow::ShowPlace(std::string_view folder, std::string_view link) {
  place_ = Wide(folder) + L", " + Wide(link) + L" - ";
  UpdateTitle();
}

void MainWindow::UpdateTitle() const {
  SetWindowTextW(window_, (page_ + place_ + title).c_str());
}

// The size of the window with the page in it and a log of this height.
SIZE MainWindow::SizeAround(int logPixels) const {
  const SIZE page = SizeOf(frame_);
  RECT place{0, 0, page.cx, page.cy + Scaled(buttonHeight + 3 * gap + logPixels) + SizeOf(statusBar_).cy};
  AdjustWindowRectEx(&place, WS_OVERLAPPEDWINDOW, TRUE, WS_EX_CONTROLPARENT);
  return {place.right - place.left, place.bottom - place.top};
}

void MainWindow::FitToPage() {
  const SIZE size = SizeAround(logHeight);
  SetWindowPos(window_, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The page keeps its size and everything around it stays visible, as far as the screen has room for it.
void MainWindow::LimitSize(MINMAXINFO& limits) const {
  RECT screen{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
  const SIZE least =
      frame_ != nullptr ? SizeAround(smallestLog) : SIZE{Scaled(smallestWidth), Scaled(smallestHeight)};
  limits.ptMinTrackSize = {std::min(least.cx, screen.right - screen.left),
                           std::min(least.cy, screen.bottom - screen.top)};
}

void MainWindow::ShowOperation(bool isRunning) {
  isRunning_ = isRunning;
  if (!isRunning && GetFocus() == GetDlgItem(window_, stopId)) {
    SetFocus(
        GetNextDlgTabItem(window_, nullptr, FALSE));  // a disabled button would take the keys and do nothing
  }
  EnableWindow(GetDlgItem(window_, saveId), isRunning ? FALSE : TRUE);
  EnableWindow(GetDlgItem(window_, helpId), isRunning ? FALSE : TRUE);
  EnableWindow(GetDlgItem(window_, stopId), isRunning ? TRUE : FALSE);
}

void MainWindow::Arrange() {
  if (log_ == nullptr || statusBar_ == nullptr) {
    return;
  }
  RECT inside{};
  GetClientRect(window_, &inside);
  SendMessageW(statusBar_, WM_SIZE, 0, 0);
  const std::array<int, 2> parts{std::max(1, static_cast<int>(inside.right) - Scaled(changedWidth)), -1};
  SendMessageW(statusBar_, SB_SETPARTS, parts.size(), reinterpret_cast<LPARAM>(parts.data()));
  const int bottom = static_cast<int>(inside.bottom - (IsShown(statusBar_) ? SizeOf(statusBar_).cy : 0));
  const int edge = Scaled(margin);
  int top = frame_ != nullptr ? static_cast<int>(SizeOf(frame_).cy) : edge;
  ArrangeButtons(top);
  top += hasButtons_ ? Scaled(buttonHeight + gap) : 0;
  MoveWindow(log_, edge, top, std::max(0, static_cast<int>(inside.right) - 2 * edge),
             std::max(0, bottom - top - Scaled(gap)), TRUE);
}

void MainWindow::ArrangeButtons(int top) const {
  int left = Scaled(margin);
  for (const auto& button : buttons) {
    const HWND control = GetDlgItem(window_, button.Id);
    MoveWindow(control, left, top, Scaled(buttonWidth), Scaled(buttonHeight), TRUE);
    ShowWindow(control, hasButtons_ ? SW_SHOW : SW_HIDE);
    left += Scaled(buttonWidth + gap);
  }
  RECT inside{};
  GetClientRect(window_, &inside);
  MoveWindow(progress_, left, top + Scaled(buttonHeight - progressHeight) / 2,
             std::max(0, static_cast<int>(inside.right) - left - Scaled(margin)), Scaled(progressHeight),
             TRUE);
  ShowWindow(progress_, hasButtons_ ? SW_SHOW : SW_HIDE);
}

void MainWindow::AppendLog(std::string_view line) {
  const auto text = TimeOfDay() + L"  " + Wide(Printable(line)) + L"\r\n";
  const auto end = static_cast<WPARAM>(GetWindowTextLengthW(log_));
  SendMessageW(log_, EM_SETSEL, end, static_cast<LPARAM>(end));
  SendMessageW(log_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
  UpdateWindow(log_);
}

// Some systems show what was drawn only when the thread looks for messages, and an instrument may keep it
// from doing so for a long time.
void MainWindow::ShowPart(int part, std::string_view text) const {
  SendMessageW(statusBar_, SB_SETTEXTW, static_cast<WPARAM>(part),
               reinterpret_cast<LPARAM>(Wide(text).c_str()));
  UpdateWindow(statusBar_);
  MSG unread{};
  PeekMessageW(&unread, statusBar_, WM_NULL, WM_NULL, PM_NOREMOVE);
}

void MainWindow::ShowStatus(std::string_view text) {
  ShowPart(statusPart, text);
}

void MainWindow::ShowProgress(std::string_view text) {
  SetWindowTextW(progress_, Wide(text).c_str());
  UpdateWindow(progress_);
}

void MainWindow::ShowChanged(bool changed) {
  ShowPart(changedPart, changed ? "changed" : "saved");
}

// ---- Messages

void MainWindow::Handle(MSG& message) const {
  const bool isHelpKey = message.message == WM_KEYDOWN && message.wParam == VK_F1;
  if (isHelpKey) {
    requests_.Help();
  } else if (!IsDialogMessageW(window_, &message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

bool MainWindow::PumpMessages() {
  MSG message{};
  while (!isGone_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    Handle(message);
  }
  DoPostponed();
  return !isGone_;
}

void MainWindow::Run() {
  MSG message{};
  while (!isGone_ && GetMessageW(&message, nullptr, 0, 0) > 0) {
    Handle(message);
    DoPostponed();
  }
}

// What the page posts to itself arrives once its operation has ended.
void MainWindow::PumpUntil(HANDLE event) {
  while (MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      HandleMeanwhile(message);
    }
  }
  for (const auto& message : std::exchange(forLater_, {})) {
    PostMessageW(message.hwnd, message.message, message.wParam, message.lParam);
  }
}

bool MainWindow::IsForPage(const MSG& message) const {
  return frame_ != nullptr && (message.hwnd == frame_ || IsChild(frame_, message.hwnd) != FALSE);
}

// Keys go to the window even if the page has the focus: Alt+F4, and those of the menu.
void MainWindow::HandleMeanwhile(MSG& message) {
  const bool isKey = IsOneOf(message.message, WM_KEYFIRST, WM_KEYLAST);
  const bool isForPage = IsForPage(message);
  if (message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE) {
    requests_.Stop();
    return;
  }
  if (isForPage && IsOneOf(message.message, WM_MOUSEFIRST, WM_MOUSELAST)) {
    return;
  }
  if (isForPage && message.message >= WM_USER) {
    forLater_.push_back(message);
    return;
  }
  if (isForPage && isKey) {
    message.hwnd = window_;
  }
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

// The empty message wakes a loop that is waiting for one.
void MainWindow::Postpone(bool& request) {
  request = true;
  PostMessageW(window_, WM_NULL, 0, 0);
}

// A box in front of the window has to be answered first.
void MainWindow::RequestEnd(bool& request) {
  if (IsWindowEnabled(window_) == FALSE) {
    MessageBeep(MB_ICONWARNING);
  } else if (!isRunning_ || requests_.MayBeEnded()) {
    Postpone(request);
  }
}

void MainWindow::DoPostponed() {
  requests_.Rest();
  if (std::exchange(wantsClose_, false)) {
    requests_.ClosePage();
  }
  if (std::exchange(wantsQuit_, false)) {
    requests_.Quit();
  }
}

LRESULT CALLBACK MainWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    auto* const created = static_cast<MainWindow*>(creation->lpCreateParams);
    created->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
  }
  auto* const self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return GuardedOr(LRESULT{0}, [&] {
    return self != nullptr ? self->OnMessage(message, wParam, lParam)
                           : DefWindowProcW(window, message, wParam, lParam);
  });
}

LRESULT MainWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(wParam));
      return 0;
    case WM_SIZE:
      Arrange();
      return 0;
    case WM_CLOSE:
      RequestEnd(wantsQuit_);
      return 0;
    case WM_QUERYENDSESSION:
      return isRunning_ ? FALSE : TRUE;
    case WM_GETMINMAXINFO:
      LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));
      return 0;
    case WM_NCDESTROY:
      isGone_ = true;
      return DefWindowProcW(std::exchange(window_, nullptr), message, wParam, lParam);
    default:
      return DefWindowProcW(window_, message, wParam, lParam);
  }
}

// The system has called, so a failure goes into the log and no further.
void MainWindow::OnCommand(int id) {
  if (isRunning_ && (id == saveId || id == helpId || id == openPageId)) {
    return;
  }
  try {
    Request(id);
  } catch (const std::exception& error) {
    AppendLog(error.what());
  }
}

void MainWindow::Request(int id) {
  switch (id) {
    case openPageId:
      requests_.OpenPage();
      break;
    case closePageId:
      RequestEnd(wantsClose_);
      break;
    case saveId:
      requests_.Save();
      break;
    case helpId:
      requests_.Help();
      break;
    case stopId:
      requests_.Stop();
      break;
    case quitId:
      RequestEnd(wantsQuit_);
      break;
    default:
      break;
  }
}

}  // namespace zolvane
