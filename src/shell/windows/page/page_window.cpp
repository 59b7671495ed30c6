#include "shell/windows/page/page_window.h"

#include <string>

#include "shell/windows/page/page_layout.h"
#include "win32/guarded.h"
#include "win32/text.h"

namespace zolvane {
namespace {

Status IsGone() {
  return Status::Failure(HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE));
}

Status SetEnabled(HWND control, bool enabled) {
  if (control == nullptr) {
    return IsGone();
  }
  EnableWindow(control, enabled ? TRUE : FALSE);
  UpdateWindow(control);  // an operation may keep the thread busy for long after this
  return Status::Success();
}

bool Append(HWND control, const ListEntry& entry) {
  const auto text = Wide(entry.Text);
  const LRESULT place = SendMessageW(control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  return place >= 0 &&
         SendMessageW(control, CB_SETITEMDATA, static_cast<WPARAM>(place), entry.Data) != CB_ERR;
}

std::int32_t AsNumber(HWND window) {
  return static_cast<std::int32_t>(reinterpret_cast<LONG_PTR>(window));
}

}  // namespace

Status PageWindow::ShowEntries(ListControl list, std::span<const ListEntry> entries) {
  const HWND control = frame_->Control(IdOf(list));
  if (control == nullptr) {
    return IsGone();
  }
  SendMessageW(control, CB_SHOWDROPDOWN, FALSE, 0);  // it would stay as high as the entries before
  SendMessageW(control, CB_RESETCONTENT, 0, 0);
  for (const auto& entry : entries) {
    if (!Append(control, entry)) {
      return Status::Failure(E_OUTOFMEMORY);
    }
  }
  frame_->FitDropDown(list);
  return Status::Success();
}

Status PageWindow::ShowAddedEntry(ListControl list, const ListEntry& entry) {
  const HWND control = frame_->Control(IdOf(list));
  if (control == nullptr) {
    return IsGone();
  }
  if (!Append(control, entry)) {
    return Status::Failure(E_OUTOFMEMORY);
  }
  frame_->FitDropDown(list);
  return Status::Success();
}

Status PageWindow::ShowSelection(ListControl list, int index) {
  if (frame_->Frame() == nullptr) {
    return IsGone();
  }
  return frame_->Select(list, index) ? Status::Success() : Status::Failure(E_INVALIDARG);
}

Status PageWindow::ShowListColour(ListControl list, std::uint32_t systemColour) {
  if (frame_->Frame() == nullptr) {
    return IsGone();
  }
  constexpr std::uint32_t indexBits = 0xFF;
  frame_->SetListColour(list, static_cast<int>(systemColour & indexBits));
  return Status::Success();
}

Status PageWindow::ShowListEnabled(ListControl list, bool enabled) {
  return SetEnabled(frame_->Control(IdOf(list)), enabled);
}

Status PageWindow::ShowCheck(CheckControl box, int value) {
  const HWND control = frame_->Control(IdOf(box));
  if (control == nullptr) {
    return IsGone();
  }
  SendMessageW(control, BM_SETCHECK, static_cast<WPARAM>(value), 0);
  return Status::Success();
}

Status PageWindow::ShowCheckEnabled(CheckControl box, bool enabled) {
  return SetEnabled(frame_->Control(IdOf(box)), enabled);
}

Status PageWindow::ShowButtonEnabled(int button, bool enabled) {
  return SetEnabled(frame_->Control(IdOfButton(button)), enabled);
}

Status PageWindow::ShowPumpText(std::string_view text) {
  const HWND control = frame_->Control(pumpTextId);
  if (control == nullptr) {
    return IsGone();
  }
  SetWindowTextW(control, Wide(text).c_str());
  return Status::Success();
}

std::int32_t PageWindow::WindowHandle() const {
  return AsNumber(frame_->Page());
}

std::int32_t PageWindow::FrameHandle() const {
  return AsNumber(frame_->Frame());
}

std::unique_ptr<PageView> PageWindowFactory::CreatePageView(PageEvents& events) {
  auto frame = PageFrame::Create(events, owner_());
  if (!frame) {
    return nullptr;
  }
  latest_ = frame;
  return std::make_unique<PageWindow>(std::move(frame));
}

HWND PageWindowFactory::OwnerWindow() const {
  const auto frame = latest_.lock();
  const HWND root = frame && frame->Frame() != nullptr ? GetAncestor(frame->Frame(), GA_ROOT) : nullptr;
  return IsWindowVisible(root) ? root : GetActiveWindow();
}

}  // namespace zolvane
