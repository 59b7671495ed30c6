// The two window classes of the page.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// The page's own window, and the frame container within it that the host embeds.
inline constexpr const wchar_t* pageClassName = L"ZolvaneSetupPage";
inline constexpr const wchar_t* frameClassName = L"ZolvaneSetupFrame";

// Registers a class of this module; does nothing when it is there. False when the system refuses.
bool RegisterWindowClass(const wchar_t* name, WNDPROC procedure);

// Classes outlive a module that is unloaded, and point into nothing then: for the module's last moment.
void UnregisterWindowClasses();

}  // namespace zolvane
