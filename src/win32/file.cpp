#include "win32/file.h"

namespace zolvane {

UniqueKernelHandle OpenedFile(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition,
                              DWORD flags) {
  const HANDLE file = CreateFileW(path.c_str(), access, sharing, nullptr, disposition, flags, nullptr);
  return UniqueKernelHandle{file != INVALID_HANDLE_VALUE ? file : nullptr};
}

}  // namespace zolvane
