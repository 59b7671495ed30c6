// A picture of a window as it looks now, in a file.
#pragma once

#include <string>

#include "win32/windows_headers.h"

namespace zolvane {

// A PNG or, where the file's name ends so, a BMP. The window has been shown. Throws UsageError when
// the file cannot be written.
void SavePicture(HWND window, const std::string& file);

}  // namespace zolvane
