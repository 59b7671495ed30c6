// The handles of the page's windows, which its parts share. One is null before its window is made and again
// once that is destroyed, by whomever.
#pragma once

#include "shell/windows/page/page_layout.h"
#include "win32/windows_headers.h"

namespace zolvane {

struct PageHandles {
  HWND Page = nullptr;
  HWND Frame = nullptr;

  // A control of the layout. Null without a frame.
  HWND Control(int id) const { return Frame != nullptr ? GetDlgItem(Frame, id) : nullptr; }
  HWND Control(ListControl list) const { return Control(IdOf(list)); }
};

}  // namespace zolvane
