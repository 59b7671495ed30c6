#include <windows.h>

#include <filesystem>

#include "support/writer_lock.h"

namespace zolvane {

// NOLINTBEGIN(*-reinterpret-cast,performance-no-int-to-ptr): a handle is kept as a number, as other systems have it
LockOfAnotherWriter::LockOfAnotherWriter(const std::string& file)
    : handle_{reinterpret_cast<std::intptr_t>(
          ::CreateFileW(std::filesystem::path{file + ".bench-lock"}.c_str(), GENERIC_READ | DELETE, 0,
                        nullptr, CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr))},
      isHeld_{handle_ != reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE)} {}

LockOfAnotherWriter::~LockOfAnotherWriter() {
  if (isHeld_) {
    ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
  }
}
// NOLINTEND(*-reinterpret-cast,performance-no-int-to-ptr)

}  // namespace zolvane
