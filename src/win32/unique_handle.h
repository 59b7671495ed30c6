// Resources of the system, each given back by its own function.
#pragma once

#include <utility>

#include "win32/windows_headers.h"

namespace zolvane {

// `Close` gives the handle back. Null stands for nothing.
template <class Handle, auto Close>
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(Handle handle) : handle_{handle} {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_{other.Detach()} {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    Reset(other.Detach());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  Handle Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  // Where a function puts the handle that it hands out.
  Handle* Put() {
    Reset();
    return &handle_;
  }

  // Where a function may put another handle after giving this one back.
  Handle* InOut() { return &handle_; }

  // The handle itself, for a caller who will give it back.
  Handle Detach() { return std::exchange(handle_, nullptr); }

  void Reset(Handle handle = nullptr) {
    if (const Handle old = std::exchange(handle_, handle); old != nullptr) {
      Close(old);
    }
  }

 private:
  Handle handle_ = nullptr;
};

using UniqueBstr = UniqueHandle<BSTR, SysFreeString>;
using UniqueSafeArray = UniqueHandle<SAFEARRAY*, SafeArrayDestroy>;
using UniqueFont = UniqueHandle<HFONT, DeleteObject>;
using UniqueRegistryKey = UniqueHandle<HKEY, RegCloseKey>;
using UniqueKernelHandle = UniqueHandle<HANDLE, CloseHandle>;

}  // namespace zolvane
