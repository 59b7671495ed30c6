// A manifest as the system applies it to a program that has it, for a part of this program.
#pragma once

#include <filesystem>

#include "win32/windows_headers.h"

namespace zolvane {

// On the calling thread while it lives; false when the system cannot fulfil it.
class ManifestInForce {
 public:
  explicit ManifestInForce(const std::filesystem::path& file) : context_{Created(file)} {}
  ~ManifestInForce() {
    if (isInForce_) {
      DeactivateActCtx(0, cookie_);
    }
    if (context_ != INVALID_HANDLE_VALUE) {
      ReleaseActCtx(context_);
    }
  }
  ManifestInForce(const ManifestInForce&) = delete;
  ManifestInForce& operator=(const ManifestInForce&) = delete;

  explicit operator bool() const { return isInForce_; }

 private:
  static HANDLE Created(const std::filesystem::path& file) {
    ACTCTXW context{};
    context.cbSize = sizeof(context);
    context.lpSource = file.c_str();
    return CreateActCtxW(&context);
  }

  const HANDLE context_;
  ULONG_PTR cookie_ = 0;
  const bool isInForce_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;
};

}  // namespace zolvane
