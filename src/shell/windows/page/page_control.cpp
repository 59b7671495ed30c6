#include "shell/windows/page/page_control.h"

#include <cwctype>

#include "shell/windows/page/page_layout.h"
#include "win32/guarded.h"
#include "win32/message_queue.h"

namespace zolvane {
namespace {

WNDPROC SystemProcedure(HWND control) {
  return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(control, GWLP_USERDATA));
}

LRESULT LeaveToSystem(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
  return CallWindowProcW(SystemProcedure(control), control, message, wParam, lParam);
}

LRESULT DialogueCode(HWND control) {
  return LeaveToSystem(control, WM_GETDLGCODE, 0, 0);
}

bool IsPushButton(HWND control) {
  return (DialogueCode(control) & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

bool WantsArrows(HWND control) {
  return (DialogueCode(control) & DLGC_WANTARROWS) != 0;
}

// ---- Moving the focus ----

bool MoveFocus(HWND frame, HWND target) {
  if (target == nullptr) {
    return false;
  }
  SendMessageW(frame, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
  SetFocus(target);
  return true;
}

bool AnswersKey(HWND control, WPARAM key, bool isRepeated) {
  const HWND frame = GetParent(control);
  switch (key) {
    case VK_TAB:
      return MoveFocus(frame, GetNextDlgTabItem(frame, control, GetKeyState(VK_SHIFT) < 0));
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
      return !WantsArrows(control) &&
             MoveFocus(frame, GetNextDlgGroupItem(frame, control, key == VK_LEFT || key == VK_UP));
    case VK_RETURN:
      if (!IsPushButton(control)) {
        return false;
      }
      if (!isRepeated) {
        SendMessageW(control, BM_CLICK, 0, 0);
      }
      return true;
    default:
      return false;
  }
}

// ---- Access keys ----

// A label's key reaches its list.
int IdReachedBy(const ControlRow& row) {
  return row.Kind == ControlKind::Label ? row.Id - firstListLabelId + firstListId : row.Id;
}

// A letter key has the number of its capital. The numbers of small letters belong to
// other keys, Alt+F4 among them.
bool IsLetterKey(WPARAM key) {
  return key >= 'A' && key <= 'Z';
}

// What an access key, a letter in either case, reaches. Null if it is no key of an enabled control.
const ControlRow* RowReachedBy(HWND frame, WPARAM letter) {
  for (const auto& row : PageLayout()) {
    if (row.AccessKey != 0 &&
        std::towupper(static_cast<wint_t>(row.AccessKey)) == std::towupper(static_cast<wint_t>(letter))) {
      return IsWindowEnabled(GetDlgItem(frame, IdReachedBy(row))) ? &row : nullptr;
    }
  }
  return nullptr;
}

bool AnswersAccessKey(HWND control, WPARAM letter, bool isRepeated) {
  const HWND frame = GetParent(control);
  const auto* const row = RowReachedBy(frame, letter);
  if (row == nullptr) {
    return false;
  }
  // The key's character may still be waiting. A host that handles dialogue keys
  // would answer it a second time.
  DiscardMessages(control, WM_SYSCHAR, WM_SYSCHAR);
  const HWND target = GetDlgItem(frame, IdReachedBy(*row));
  MoveFocus(frame, target);
  if (row->Kind != ControlKind::Label && !isRepeated) {
    SendMessageW(target, BM_CLICK, 0, 0);
  }
  return true;
}

// The system gets the letter too, and first: if it saw no other key between Alt down and Alt up, it
// would open the host's menu.
LRESULT AnswerLetterWithAlt(HWND control, WPARAM letter, LPARAM lParam, bool isRepeated) {
  const LRESULT result = LeaveToSystem(control, WM_SYSKEYDOWN, letter, lParam);
  return AnswersAccessKey(control, letter, isRepeated) ? 0 : result;
}

// ---- Check boxes ----

// The system's two-state boxes refuse grey; its three-state boxes pass through grey between
// ticked and unticked, and that click would only write the same value again. So a box has a third
// state only while it shows it.
void AllowGreyFor(HWND box, WPARAM value) {
  const LONG_PTR kind = value == BST_INDETERMINATE ? BS_AUTO3STATE : BS_AUTOCHECKBOX;
  if ((GetWindowLongPtrW(box, GWL_STYLE) & BS_TYPEMASK) != kind) {
    SendMessageW(box, BM_SETSTYLE, static_cast<WPARAM>(kind), FALSE);
  }
}

// ---- The controls' window procedure ----

bool IsArrow(WPARAM key) {
  return key >= VK_LEFT && key <= VK_DOWN;
}

// The page asks for Enter, so that a host that handles dialogue keys does not press a button of its own
// instead, and for the arrows, which move the focus by themselves only if the host's window is a dialogue.
bool IsAskedFor(HWND control, WPARAM key) {
  return key == VK_RETURN ? IsPushButton(control) : IsArrow(key) && !WantsArrows(control);
}

LRESULT DialogueCodeFor(HWND control, WPARAM wParam, LPARAM lParam) {
  const LRESULT code = LeaveToSystem(control, WM_GETDLGCODE, wParam, lParam);
  const auto* const message = reinterpret_cast<const MSG*>(lParam);
  const bool isKey = message != nullptr && message->message == WM_KEYDOWN;
  return isKey && IsAskedFor(control, message->wParam) ? code | DLGC_WANTMESSAGE : code;
}

LRESULT Answer(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr LPARAM wasDownBefore = 1 << 30;
  const bool isRepeated = (lParam & wasDownBefore) != 0;
  switch (message) {
    case WM_GETDLGCODE:
      return DialogueCodeFor(control, wParam, lParam);
    case WM_KEYDOWN:
      if (AnswersKey(control, wParam, isRepeated)) {
        return 0;
      }
      break;
    case WM_CHAR:
      // The key was answered. The control has no use for its character and would beep.
      if (wParam == VK_TAB || (wParam == VK_RETURN && IsPushButton(control))) {
        return 0;
      }
      break;
    case WM_SYSKEYDOWN:
      // Not left to a host that handles dialogue keys: some reach only their own controls.
      if (IsLetterKey(wParam)) {
        return AnswerLetterWithAlt(control, wParam, lParam, isRepeated);
      }
      break;
    case WM_SYSCHAR:
      if (AnswersAccessKey(control, wParam, isRepeated)) {
        return 0;
      }
      break;
    case BM_SETCHECK:
      AllowGreyFor(control, wParam);
      break;
    default:
      break;
  }
  return LeaveToSystem(control, message, wParam, lParam);
}

LRESULT CALLBACK ControlProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
  return GuardedOr(LRESULT{0}, [&] { return Answer(control, message, wParam, lParam); });
}

}  // namespace

void MakePageControl(HWND control) {
  SetWindowLongPtrW(control, GWLP_USERDATA, GetWindowLongPtrW(control, GWLP_WNDPROC));
  SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ControlProcedure));
}

}  // namespace zolvane
