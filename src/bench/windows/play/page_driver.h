// A user at the page's real windows: what they do with its controls, and what they see there.
#pragma once

#include <string>

#include "page/page_model.h"
#include "win32/windows_headers.h"

namespace zolvane {

class PageDriver {
 public:
  // The frame container that the add-in gives. It may be destroyed meanwhile; then nothing reacts.
  explicit PageDriver(HWND frame) : frame_{frame} {}

  // Each returns when all that it started has ended. A control that is disabled does not react.
  void Press(int button) const;
  void Select(ListControl list, int position) const;
  void SetCheck(CheckControl box, int value) const;

  // A click on the frame, beside all controls.
  void ClickFrame() const;

  // What the controls show, except for the colours of lists.
  PageModel Shown() const;

 private:
  HWND Control(int id) const { return GetDlgItem(frame_, id); }
  void Notify(int id, int notification) const;

  HWND frame_;
};

}  // namespace zolvane
