#include "windows/bench/hestrion_windows.h"

#include <array>
#include <string_view>

#include "win32/text.h"
#include "windows/support/hosted_page.h"

namespace zolvane {
namespace {

struct Search {
  DWORD Process;
  std::wstring Class;
  HWND Found;
};

BOOL CALLBACK LookAt(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<Search*>(search);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == wanted.Process && IsWindowVisible(window) && ClassOf(window) == wanted.Class) {
    wanted.Found = window;
  }
  return wanted.Found == nullptr ? TRUE : FALSE;
}

}  // namespace

HWND WindowOf(DWORD process, const std::wstring& className) {
  Search search{.Process = process, .Class = className, .Found = nullptr};
  EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
  return search.Found;
}

std::string ShownText(HWND window) {
  std::array<wchar_t, 4096> text{};
  const LRESULT length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return Utf8(std::wstring_view{text.data(), static_cast<std::size_t>(length)});
}

std::string AnswerBoxOf(DWORD process, int button, const std::wstring& title) {
  const auto box = [process] { return WindowOf(process, L"#32770"); };
  const auto isRight = [&] { return title.empty() || CaptionOf(box()) == Utf8(title); };
  EXPECT_TRUE(Eventually([&] { return box() != nullptr && isRight(); }));
  const HWND shown = box();
  auto text = ShownText(GetDlgItem(shown, 0xFFFF));
  PostMessageW(shown, WM_COMMAND, static_cast<WPARAM>(button), 0);
  EXPECT_TRUE(Eventually([shown] { return !IsWindow(shown); }));
  return text;
}

}  // namespace zolvane
