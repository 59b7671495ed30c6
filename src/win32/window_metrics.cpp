#include "win32/window_metrics.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace zolvane {
namespace {

// Functions newer than the oldest supported Windows; null where they are missing.
template <class Function>
Function UserFunction(const char* name) {
  const HMODULE user = GetModuleHandleW(L"user32.dll");
  return user != nullptr ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(user, name)))
                         : nullptr;
}

using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
using SystemParametersInfoForDpiFunction = BOOL(WINAPI*)(UINT, UINT, void*, UINT, UINT);

// A device context of a window, with a font selected into it.
class WindowContext {
 public:
  WindowContext(HWND window, HFONT font) : window_{window}, context_{GetDC(window)} {
    if (font != nullptr) {
      before_ = SelectObject(context_, font);
    }
  }
  ~WindowContext() {
    if (before_ != nullptr) {
      SelectObject(context_, before_);
    }
    ReleaseDC(window_, context_);
  }
  WindowContext(const WindowContext&) = delete;
  WindowContext& operator=(const WindowContext&) = delete;

  HDC Get() const { return context_; }

 private:
  HWND window_;
  HDC context_;
  HGDIOBJ before_ = nullptr;
};

UINT SystemDpi() {
  return static_cast<UINT>(GetDeviceCaps(WindowContext{nullptr, nullptr}.Get(), LOGPIXELSY));
}

LOGFONTW MessageFont(UINT dpi) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  static const auto forDpi = UserFunction<SystemParametersInfoForDpiFunction>("SystemParametersInfoForDpi");
  if (forDpi != nullptr && forDpi(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0, dpi) != FALSE) {
    return metrics.lfMessageFont;
  }
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  return metrics.lfMessageFont;
}

LOGFONTW TitleFont(UINT dpi) {
  constexpr int points = 14;
  constexpr int pointsPerInch = 72;
  LOGFONTW font{};
  font.lfHeight = -MulDiv(points, static_cast<int>(dpi), pointsPerInch);
  font.lfWeight = FW_BOLD;
  font.lfCharSet = DEFAULT_CHARSET;
  font.lfQuality = CLEARTYPE_QUALITY;
  constexpr std::wstring_view face = L"Arial";
  std::ranges::copy(face, std::begin(font.lfFaceName));
  return font;
}

}  // namespace

UINT DpiOf(HWND window) {
  static const auto ofWindow = UserFunction<GetDpiForWindowFunction>("GetDpiForWindow");
  const UINT dpi = ofWindow != nullptr ? ofWindow(window) : 0;
  return dpi != 0 ? dpi : SystemDpi();
}

PageFonts MakePageFonts(UINT dpi) {
  const LOGFONTW text = MessageFont(dpi);
  const LOGFONTW title = TitleFont(dpi);
  return {.Text = UniqueFont{CreateFontIndirectW(&text)}, .Title = UniqueFont{CreateFontIndirectW(&title)}};
}

DialogueUnits::DialogueUnits(HFONT font) {
  const WindowContext context{nullptr, font};
  TEXTMETRICW metrics{};
  SIZE alphabet{};
  GetTextMetricsW(context.Get(), &metrics);
  GetTextExtentPoint32W(context.Get(), L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz",
                        lettersOfAlphabet, &alphabet);
  alphabetWidth_ = alphabet.cx;
  height_ = metrics.tmHeight;
}

int ScreenWidthAt(HWND window) {
  MONITORINFO screen{};
  screen.cbSize = sizeof(screen);
  GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &screen);
  return screen.rcWork.right - screen.rcWork.left;
}

int WidestText(HWND window, HFONT font, std::span<const std::wstring> texts) {
  const WindowContext context{window, font};
  LONG widest = 0;
  for (const auto& text : texts) {
    SIZE size{};
    GetTextExtentPoint32W(context.Get(), text.data(), static_cast<int>(text.size()), &size);
    widest = std::max(widest, size.cx);
  }
  return widest;
}

}  // namespace zolvane
