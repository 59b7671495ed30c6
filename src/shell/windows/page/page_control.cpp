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

// A label's key reaches the list that it stands for.
int IdReachedBy(const ControlRow& row) {
  return row.Kind == ControlKind::Label ? row.Id - firstListLabelId + firstListId : row.Id;
}

// Keys of letters have the number of the capital. The numbers of small letters belong to other keys, Alt+F4
// among them.
bool IsLetterKey(WPARAM key) {
  return key >= 'A' && key <= 'Z';
}

// What an access key, a letter in either case, reaches. Null when none of the page's enabled controls has it.
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
  // The key's character may still wait. A host that knows dialogue keys would answer it a second time.
  DiscardMessages(control, WM_SYSCHAR, WM_SYSCHAR);
  const HWND target = GetDlgItem(frame, IdReachedBy(*row));
  MoveFocus(frame, target);
  if (row->Kind != ControlKind::Label && !isRepeated) {
    SendMessageW(target, BM_CLICK, 0, 0);
  }
  return true;
}

// The system hears of the letter too, and first: Alt let go with no other key since it went down asks the host for
// its menu.
LRESULT AnswerLetterWithAlt(HWND control, WPARAM letter, LPARAM lParam, bool isRepeated) {
  const LRESULT result = LeaveToSystem(control, WM_SYSKEYDOWN, letter, lParam);
  return AnswersAccessKey(control, letter, isRepeated) ? 0 : result;
}

// ---- Check boxes ----

// The system's boxes of two states refuse grey, and those of three have it between ticked and unticked, where
// a click would only write the same once more. So a box has the third state as long as it shows it.
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

// Asked for, so that a host that knows dialogue keys does not press a button of its own by Enter instead. And
// arrows only move the focus by themselves in a host whose window is a dialogue.
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
      // The character of a key that was answered: the control has no use for it, and would beep.
      if (wParam == VK_TAB || (wParam == VK_RETURN && IsPushButton(control))) {
        return 0;
      }
      break;
    case WM_SYSKEYDOWN:
      // Not left to a host that knows dialogue keys: some reach their own lists only.
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
