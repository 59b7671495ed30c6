#include "shell/windows/page/window_class.h"

#include "win32/module_instance.h"

namespace zolvane {

bool RegisterWindowClass(const wchar_t* name, WNDPROC procedure) {
  WNDCLASSEXW description{};
  description.cbSize = sizeof(description);
  description.lpfnWndProc = procedure;
  description.hInstance = ThisModule();
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = name;
  return RegisterClassExW(&description) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

void UnregisterWindowClasses() {
  UnregisterClassW(frameClassName, ThisModule());
  UnregisterClassW(pageClassName, ThisModule());
}

}  // namespace zolvane
