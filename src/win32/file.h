// Files, opened as the system opens them.
#pragma once

#include <string>

#include "win32/unique_handle.h"

namespace zolvane {

inline constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// What CreateFile opens. Null if the system refuses; GetLastError says why.
UniqueKernelHandle OpenedFile(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition,
                              DWORD flags = FILE_ATTRIBUTE_NORMAL);

}  // namespace zolvane
