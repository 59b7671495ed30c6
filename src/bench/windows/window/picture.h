// Saves a picture of a window as it looks now.
#pragma once

#include <string>

#include "win32/windows_headers.h"

namespace zolvane {

// Writes a BMP if the file's name ends in .bmp, otherwise a PNG. The window must have been shown. Throws
// UsageError if the file cannot be written.
void SavePicture(HWND window, const std::string& file);

}  // namespace zolvane
