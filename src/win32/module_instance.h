// The module that this code is in, not the program that loaded it, and the count of what keeps it loaded.
#pragma once

#include <string>

#include "win32/windows_headers.h"

namespace zolvane {

HINSTANCE ThisModule();

// The module's full path. Empty if the system does not give it.
std::wstring ModulePath();

// Keeps the module loaded while it lives: DllCanUnloadNow says no. Whatever the host can hold on to has one.
class ModuleLock {
 public:
  ModuleLock();
  ~ModuleLock();
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;

  static bool IsHeld();

  // What a host's LockServer asks for, which comes and goes without an object.
  static void Add();
  static void Remove();
};

}  // namespace zolvane
