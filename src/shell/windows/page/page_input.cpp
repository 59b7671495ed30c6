#include "shell/windows/page/page_input.h"

#include "page/page_model.h"
#include "win32/message_queue.h"

namespace zolvane {

PageInput::PageInput(const PageHandles& windows, PageEvents& events, const std::weak_ptr<PageOwner>& owner)
    : windows_{windows}, events_{&events}, owner_{owner} {
  selected_.fill(noSelection);
  isStored_.fill(true);
}

void PageInput::OnCommand(int id, int notification) {
  if (events_ == nullptr) {
    return;
  }
  if (const auto list = ListWith(id)) {
    OnList(*list, notification);
  } else if (const auto box = BoxWith(id); box && notification == BN_CLICKED) {
    const auto value = static_cast<int>(SendMessageW(windows_.Control(id), BM_GETCHECK, 0, 0));
    TellIfNotStored(events_->UserSetsCheck(*box, value));
  } else if (const auto button = ButtonWith(id); button && notification == BN_CLICKED) {
    OnButton(*button);
  }
}

// The host cannot tell the user: the event has come from the page's own window.
void PageInput::TellIfNotStored(const Status& status) const {
  if (const auto owner = Owner(); owner && !status.Ok()) {
    owner->TellNotStored();
  }
}

void PageInput::OnClickBesideControls() const {
  if (events_ != nullptr) {
    events_->ClickFrame();
  }
}

// ---- Lists ----

bool PageInput::Select(ListControl list, int index) {
  const auto selected =
      static_cast<int>(SendMessageW(windows_.Control(list), CB_SETCURSEL, static_cast<WPARAM>(index), 0));
  selected_[IndexOf(list)] = selected;
  isStored_[IndexOf(list)] = true;
  return selected != CB_ERR;
}

void PageInput::OnList(ListControl list, int notification) {
  if (notification == CBN_SELCHANGE) {
    Report(list);
  } else if (notification == CBN_DROPDOWN && !isStored_[IndexOf(list)]) {
    selected_[IndexOf(list)] = noSelection;  // so that choosing the same entry again is a choice
  } else if (notification == CBN_CLOSEUP) {
    PostMessageW(windows_.Frame, dropDownClosed, static_cast<WPARAM>(list), 0);
  }
}

// Arrow keys in an open list may leave it on another entry without telling. What a list shows is what is
// stored, so this counts as a choice.
void PageInput::OnDropDownClosed(ListControl list) {
  const auto shown = static_cast<int>(SendMessageW(windows_.Control(list), CB_GETCURSEL, 0, 0));
  if (shown != selected_[IndexOf(list)]) {
    Report(list);
  }
}

void PageInput::Report(ListControl list) {
  const auto index = static_cast<int>(SendMessageW(windows_.Control(list), CB_GETCURSEL, 0, 0));
  if (events_ != nullptr && index != CB_ERR) {
    const Status status = events_->UserSelects(list, index);
    isStored_[IndexOf(list)] = status.Ok();
    TellIfNotStored(status);
  }
}

// ---- Buttons ----

// The operation disables the button, which then loses the focus.
void PageInput::OnButton(int button) {
  const HWND focused = GetFocus();
  StoreShownChoices();
  if (events_ == nullptr) {
    return;
  }
  events_->PressButton(button);
  if (IsWindow(focused) && IsWindowEnabled(focused) && HasLostFocus()) {
    SetFocus(focused);
  }
  DiscardWaiting();
}

// If the key of a button closes an open list, the list's message comes too late: the operation
// works with what is stored.
void PageInput::StoreShownChoices() {
  for (int list = 0; list < static_cast<int>(listRows.size()); ++list) {
    OnDropDownClosed(static_cast<ListControl>(list));
  }
}

// What the user did with the page while it was disabled has waited until now, and would meet enabled
// controls: a second, impatient click would start the operation again.
void PageInput::DiscardWaiting() const {
  if (const HWND frame = windows_.Frame; frame != nullptr) {
    DiscardMessages(frame, WM_KEYFIRST, WM_KEYLAST);
    DiscardMessages(frame, WM_MOUSEFIRST, WM_MOUSELAST);
  }
}

// True if the window that the page is in is active, but none of the controls has the focus.
bool PageInput::HasLostFocus() const {
  const HWND frame = windows_.Frame;
  const HWND focused = GetFocus();
  const bool isActive = frame != nullptr && GetActiveWindow() == GetAncestor(frame, GA_ROOT);
  return isActive && (focused == nullptr || focused == frame || IsChild(focused, frame));
}

}  // namespace zolvane
