// How large things are on a window's screen: its dots per inch, the system's font at that scale, and the
// dialogue units of that font.
#pragma once

#include <span>
#include <string>

#include "win32/unique_handle.h"

namespace zolvane {

// The dots per inch that the window is drawn at: 96 at 100 %. On systems without a scale for each
// screen, the system's own.
UINT DpiOf(HWND window);

// The fonts of the page at a scale: Arial for the title, the system's own font for everything else.
struct PageFonts {
  UniqueFont Text;
  UniqueFont Title;
};

PageFonts MakePageFonts(UINT dpi);

// Dialogue units of a font in pixels.
class DialogueUnits {
 public:
  DialogueUnits() = default;
  explicit DialogueUnits(HFONT font);

  int Across(int units) const { return MulDiv(units, alphabetWidth_, 4 * lettersOfAlphabet); }
  int Down(int units) const { return MulDiv(units, height_, 8); }

 private:
  static constexpr int lettersOfAlphabet = 52;

  int alphabetWidth_ = 0;
  int height_ = 0;
};

// The width, without task bars, of the screen that the window is on.
int ScreenWidthAt(HWND window);

// The width in pixels of the widest of the texts; 0 without any.
int WidestText(HWND window, HFONT font, std::span<const std::wstring> texts);

}  // namespace zolvane
