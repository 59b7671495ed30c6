// How the page looks: fonts, colours, and where the controls stand at the scale of the screen.
#pragma once

#include <array>

#include "shell/windows/page/page_handles.h"
#include "win32/window_metrics.h"

namespace zolvane {

class PageAppearance {
 public:
  // The scale that a window is drawn at, in dots per inch.
  using ScaleOf = UINT (*)(HWND window);

  // The windows outlive this.
  PageAppearance(const PageHandles& windows, ScaleOf scaleOf);

  // Puts everything into its place, in the system's present font. Does nothing without a frame.
  void Arrange();

  // The same, if the scale is another one than before.
  void FollowScale();

  // Makes the drop-down part of a list as wide as its widest entry, within the screen.
  void FitDropDown(ListControl list) const;

  // The background of a list, as the index of a system colour.
  void SetListColour(ListControl list, int systemColour);

  // Answers a control's question for its colours.
  LRESULT OnColour(UINT message, WPARAM context, LPARAM control) const;

  // Whether a control that takes the focus stands there, enabled or not.
  bool HasControlAt(POINT place) const;

 private:
  int ColourOf(int id) const;
  void Resize(SIZE naturalSize);

  const PageHandles& windows_;
  const ScaleOf scaleOf_;
  UINT dpi_ = 0;
  PageFonts fonts_;
  SIZE naturalSize_{};
  std::array<int, listRows.size()> colours_{};
};

}  // namespace zolvane
