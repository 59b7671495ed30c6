// The two window classes of the page.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// The page's own window, and the frame container within it that the host embeds.
inline constexpr const wchar_t* pageClassName = L"ZolvaneSetupPage";
inline constexpr const wchar_t* frameClassName = L"ZolvaneSetupFrame";

// Registers a class of this module, unless it is there already. False if the system refuses.
bool RegisterWindowClass(const wchar_t* name, WNDPROC procedure);

// To be called when the module is about to be unloaded: the classes would outlive it and point into nothing.
void UnregisterWindowClasses();

}  // namespace zolvane
