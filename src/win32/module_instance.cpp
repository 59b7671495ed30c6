#include "win32/module_instance.h"

#include <atomic>

// The linker's own name for the start of the module, which is also its handle.
extern "C" const IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)

namespace zolvane {
namespace {

std::atomic<long> heldLocks{0};  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

}  // namespace

HINSTANCE ThisModule() {
  return reinterpret_cast<HINSTANCE>(const_cast<IMAGE_DOS_HEADER*>(&__ImageBase));
}

std::wstring ModulePath() {
  constexpr std::size_t longestPath = 32768;
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    if (path.size() >= longestPath) {
      return {};
    }
    path.resize(path.size() * 2);
  }
}

ModuleLock::ModuleLock() {
  Add();
}

ModuleLock::~ModuleLock() {
  Remove();
}

bool ModuleLock::IsHeld() {
  return heldLocks > 0;
}

void ModuleLock::Add() {
  ++heldLocks;
}

void ModuleLock::Remove() {
  --heldLocks;
}

}  // namespace zolvane
