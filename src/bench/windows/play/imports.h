// The import table of a loaded module: which functions of other modules it calls.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Lets the module call `after` wherever it called `before`. False when it never did.
bool ReplaceImport(HMODULE module, ULONG_PTR before, ULONG_PTR after);

// The function as import tables have it. The library is loaded and stays so; 0 when it has no such function.
ULONG_PTR SystemFunction(const wchar_t* library, const char* name);

// A function of our own, in the same form.
template <class Function>
ULONG_PTR AddressOf(Function* function) {
  return reinterpret_cast<ULONG_PTR>(function);
}

}  // namespace zolvane
