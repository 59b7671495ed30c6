#include "shell/windows/page/page_frame.h"

#include <windowsx.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "page/page_model.h"
#include "shell/windows/page/page_control.h"
#include "shell/windows/page/page_layout.h"
#include "win32/guarded.h"
#include "win32/message_queue.h"
#include "win32/module_instance.h"
#include "win32/text.h"
#include "win32/window_class.h"

namespace zolvane {
namespace {

struct KindRow {
  const wchar_t* ClassName;
  DWORD Style;
  bool TakesFocus;
};

// In the order of ControlKind.
constexpr std::array<KindRow, 7> kindRows{{
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, false},
    {L"BUTTON", BS_GROUPBOX, false},
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE, false},
    {L"STATIC", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, false},
    {L"COMBOBOX", CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL, true},
    {L"BUTTON", BS_AUTOCHECKBOX, true},
    {L"BUTTON", BS_PUSHBUTTON, true},
}};

constexpr const KindRow& RowOf(ControlKind kind) {
  return kindRows[static_cast<std::size_t>(kind)];
}

// Posted to the frame when a drop-down list has closed, with the list's number.
constexpr UINT dropDownClosed = WM_APP;

// Sent by systems that scale each screen by itself; older headers do not know it.
constexpr UINT scaleChanged = 0x02E3;

constexpr std::size_t IndexOf(ListControl list) {
  return static_cast<std::size_t>(list);
}

constexpr bool IsAmong(int id, int first, std::size_t count) {
  return id >= first && id < first + static_cast<int>(count);
}

bool CreateControl(HWND frame, const ControlRow& row) {
  const auto& kind = RowOf(row.Kind);
  const DWORD style = WS_CHILD | WS_VISIBLE | kind.Style | (kind.TakesFocus ? WS_TABSTOP : 0) |
                      (row.StartsGroup ? WS_GROUP : 0);
  const HWND control =
      CreateWindowExW(0, kind.ClassName, Wide(MarkedCaption(row)).c_str(), style, 0, 0, 0, 0, frame,
                      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(row.Id)), ThisModule(), nullptr);
  if (control != nullptr && kind.TakesFocus) {
    MakePageControl(control);
  }
  return control != nullptr;
}

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

// A list is as high as its font makes it. The height it is given counts for the part that drops down.
void PlaceList(HWND list, const RECT& row) {
  constexpr int entriesInView = 12;
  const int width = row.right - row.left;
  const int height = row.bottom - row.top;
  MoveWindow(list, row.left, row.top, width, height * entriesInView, FALSE);
  MoveWindow(list, row.left, row.top + (height - SizeOf(list).cy) / 2, width, height * entriesInView, FALSE);
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
  for (LRESULT entry = 0; entry < entries; ++entry) {
    texts.push_back(EntryText(list, entry));
  }
  return texts;
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

}  // namespace

// ---- Making and ending ----

std::shared_ptr<PageFrame> PageFrame::Create(PageEvents& events, std::weak_ptr<PageOwner> owner,
                                             ScaleOf scaleOf) {
  std::shared_ptr<PageFrame> made{new PageFrame{events, std::move(owner), scaleOf}};
  return made->CreateWindows() ? made : nullptr;
}

PageFrame::PageFrame(PageEvents& events, std::weak_ptr<PageOwner> owner, ScaleOf scaleOf)
    : events_{&events}, owner_{std::move(owner)}, scaleOf_{scaleOf} {
  colours_.fill(COLOR_WINDOW);
  selected_.fill(noSelection);
  isStored_.fill(true);
}

PageFrame::~PageFrame() {
  Close();
}

bool PageFrame::CreateWindows() {
  if (!RegisterWindowClass(pageClassName, PageProcedure) ||
      !RegisterWindowClass(frameClassName, FrameProcedure)) {
    return false;
  }
  page_ = CreateWindowExW(WS_EX_CONTROLPARENT, pageClassName, Wide(pageCaption).c_str(),
                          WS_POPUP | WS_CAPTION, 0, 0, 0, 0, nullptr, nullptr, ThisModule(), this);
  frame_ = page_ == nullptr
               ? nullptr
               : CreateWindowExW(WS_EX_CONTROLPARENT, frameClassName, L"picFrame", WS_CHILD | WS_VISIBLE, 0,
                                 0, 0, 0, page_, nullptr, ThisModule(), this);
  if (frame_ == nullptr || !CreateControls()) {
    return false;
  }
  FollowScale();
  return true;
}

bool PageFrame::CreateControls() const {
  const auto rows = PageLayout();
  return std::all_of(rows.begin(), rows.end(),
                     [this](const ControlRow& row) { return CreateControl(frame_, row); });
}

// The frame is destroyed by itself: it may lie in a window of the host's.
void PageFrame::Close() {
  events_ = nullptr;
  for (HWND* const member : {&frame_, &page_}) {
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
    // What the user starts may end with the page, and with all that the host holds, released.
    const auto frame = target != nullptr ? target->weak_from_this().lock() : nullptr;
    const auto owner = frame ? frame->owner_.lock() : nullptr;
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

// The system tells only windows of the top level about settings, so the page's own one listens for the frame.
LRESULT PageFrame::OnPageMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CLOSE:
      return 0;
    case WM_SETTINGCHANGE:
      if (wParam == SPI_SETNONCLIENTMETRICS) {
        Arrange();
      }
      break;
    case WM_SYSCOLORCHANGE:
      RedrawWindow(frame_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
      break;
    case WM_NCDESTROY:
      page_ = nullptr;
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
        OnCommand(LOWORD(wParam), HIWORD(wParam));
      }
      return 0;
    case dropDownClosed:
      if (wParam < listRows.size()) {  // the host may have sent a message of its own with this number
        OnDropDownClosed(static_cast<ListControl>(wParam));
      }
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
      return OnColour(message, wParam, lParam);
    case WM_LBUTTONDOWN:
      OnClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_SETFOCUS:
      SetFocus(GetNextDlgTabItem(window, nullptr, FALSE));
      return 0;
    case WM_WINDOWPOSCHANGED:
    case scaleChanged:
      FollowScale();
      break;
    case WM_NCDESTROY:
      frame_ = nullptr;
      break;
    default:
      break;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

// ---- What the user does ----

void PageFrame::OnCommand(int id, int notification) {
  if (events_ == nullptr) {
    return;
  }
  if (IsAmong(id, firstListId, listRows.size())) {
    OnList(static_cast<ListControl>(id - firstListId), notification);
  } else if (IsAmong(id, firstCheckId, checkRows.size()) && notification == BN_CLICKED) {
    const auto value = static_cast<int>(SendMessageW(Control(id), BM_GETCHECK, 0, 0));
    TellIfNotStored(events_->UserSetsCheck(static_cast<CheckControl>(id - firstCheckId), value));
  } else if (IsAmong(id, firstButtonId, buttonRows.size()) && notification == BN_CLICKED) {
    OnButton(id - firstButtonId);
  }
}

void PageFrame::OnList(ListControl list, int notification) {
  if (notification == CBN_SELCHANGE) {
    Report(list);
  } else if (notification == CBN_DROPDOWN && !isStored_[IndexOf(list)]) {
    selected_[IndexOf(list)] = noSelection;  // so that whoever chooses the same entry again is heard
  } else if (notification == CBN_CLOSEUP) {
    PostMessageW(frame_, dropDownClosed, static_cast<WPARAM>(list), 0);
  }
}

// Arrow keys in an open list may leave it on another entry without a word. What the list shows is what is
// stored, so this counts as a choice.
void PageFrame::OnDropDownClosed(ListControl list) {
  const auto shown = static_cast<int>(SendMessageW(Control(IdOf(list)), CB_GETCURSEL, 0, 0));
  if (shown != selected_[IndexOf(list)]) {
    Report(list);
  }
}

void PageFrame::Report(ListControl list) {
  const auto index = static_cast<int>(SendMessageW(Control(IdOf(list)), CB_GETCURSEL, 0, 0));
  if (events_ != nullptr && index != CB_ERR) {
    const Status status = events_->UserSelects(list, index);
    isStored_[IndexOf(list)] = status.Ok();
    TellIfNotStored(status);
  }
}

// The host cannot: the event has come from the page's own window.
void PageFrame::TellIfNotStored(const Status& status) const {
  if (const auto owner = owner_.lock(); owner && !status.Ok()) {
    owner->TellNotStored();
  }
}

// The focus would be lost with the operation, which disables the button.
void PageFrame::OnButton(int button) {
  const HWND focused = GetFocus();
  StoreShownChoices();
  if (events_ == nullptr) {
    return;
  }
  events_->PressButton(button);
  if (IsWindow(focused) && IsWindowEnabled(focused) && HasLostFocus()) {
    SetFocus(focused);
  }
  DiscardInput();
}

// A list that the key of a button has closed is heard of too late: the operation works with what is stored.
void PageFrame::StoreShownChoices() {
  for (int list = 0; list < static_cast<int>(listRows.size()); ++list) {
    OnDropDownClosed(static_cast<ListControl>(list));
  }
}

// What the user did with the page while it was disabled has waited until now, and would meet enabled controls: a
// second, impatient click would start the operation again.
void PageFrame::DiscardInput() const {
  if (frame_ != nullptr) {
    DiscardMessages(frame_, WM_KEYFIRST, WM_KEYLAST);
    DiscardMessages(frame_, WM_MOUSEFIRST, WM_MOUSELAST);
  }
}

// True when the window that the page is in is active, but none of the controls has the focus.
bool PageFrame::HasLostFocus() const {
  const HWND focused = GetFocus();
  const bool isActive = frame_ != nullptr && GetActiveWindow() == GetAncestor(frame_, GA_ROOT);
  return isActive && (focused == nullptr || focused == frame_ || IsChild(focused, frame_));
}

// A click on a disabled control ends up at the frame, too; it was not meant for it.
void PageFrame::OnClick(POINT place) {
  const DialogueUnits units{fonts_.Text.Get()};
  for (const auto& row : PageLayout()) {
    const RECT area = InPixels(row.Place, units);
    if (RowOf(row.Kind).TakesFocus && PtInRect(&area, place)) {
      return;
    }
  }
  if (events_ != nullptr) {
    events_->ClickFrame();
  }
}

// ---- How it looks ----

bool PageFrame::Select(ListControl list, int index) {
  const auto selected =
      static_cast<int>(SendMessageW(Control(IdOf(list)), CB_SETCURSEL, static_cast<WPARAM>(index), 0));
  selected_[IndexOf(list)] = selected;
  isStored_[IndexOf(list)] = true;
  return selected != CB_ERR;
}

void PageFrame::SetListColour(ListControl list, int systemColour) {
  colours_[IndexOf(list)] = systemColour;
  InvalidateRect(Control(IdOf(list)), nullptr, TRUE);
}

int PageFrame::ColourOf(int id) const {
  return IsAmong(id, firstListId, listRows.size()) ? colours_[static_cast<std::size_t>(id - firstListId)]
                                                   : COLOR_BTNFACE;
}

LRESULT PageFrame::OnColour(UINT message, WPARAM context, LPARAM control) const {
  DefWindowProcW(frame_, message, context, control);
  const int colour = ColourOf(GetDlgCtrlID(reinterpret_cast<HWND>(control)));
  SetBkColor(reinterpret_cast<HDC>(context), GetSysColor(colour));
  return reinterpret_cast<LRESULT>(GetSysColorBrush(colour));
}

void PageFrame::FitDropDown(ListControl list) const {
  const HWND control = Control(IdOf(list));
  const int needed = WidestText(control, fonts_.Text.Get(), EntryTexts(control)) +
                     GetSystemMetrics(SM_CXVSCROLL) + 4 * GetSystemMetrics(SM_CXEDGE);
  const int width = std::min(needed, ScreenWidthAt(control));
  SendMessageW(control, CB_SETDROPPEDWIDTH, 1, 0);  // the list's own; systems differ in making it narrower
  SendMessageW(control, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(width), 0);
}

void PageFrame::FollowScale() {
  if (frame_ != nullptr && scaleOf_(frame_) != dpi_) {
    Arrange();
  }
}

void PageFrame::Arrange() {
  if (frame_ == nullptr) {
    return;
  }
  dpi_ = scaleOf_(frame_);
  PageFonts fonts = MakePageFonts(dpi_);
  const DialogueUnits units{fonts.Text.Get()};
  for (const auto& row : PageLayout()) {
    Place(Control(row.Id), row, units, fonts);
  }
  std::swap(fonts_, fonts);  // the controls have used the old ones until now
  for (int list = 0; list < static_cast<int>(listRows.size()); ++list) {
    FitDropDown(static_cast<ListControl>(list));
  }
  Resize({units.Across(pageWidth), units.Down(pageHeight)});
  RedrawWindow(frame_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

// A host may have given the frame a size of its own, which is then kept.
void PageFrame::Resize(SIZE naturalSize) {
  const SIZE size = SizeOf(frame_);
  const bool isNatural = size.cx == naturalSize_.cx && size.cy == naturalSize_.cy;
  naturalSize_ = naturalSize;
  if (isNatural) {
    SetWindowPos(frame_, nullptr, 0, 0, naturalSize.cx, naturalSize.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
}

}  // namespace zolvane
