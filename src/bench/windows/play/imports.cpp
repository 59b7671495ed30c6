#include "bench/windows/play/imports.h"

#include <cstddef>

namespace zolvane {
namespace {

template <class Entry>
Entry* At(HMODULE module, std::size_t offset) {
  return reinterpret_cast<Entry*>(reinterpret_cast<std::byte*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* Imports(HMODULE module) {
  const auto* const headers =
      At<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  return directory.Size != 0 ? At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress) : nullptr;
}

void Overwrite(ULONG_PTR& slot, ULONG_PTR value) {
  DWORD protection = 0;
  VirtualProtect(&slot, sizeof(slot), PAGE_READWRITE, &protection);
  slot = value;
  VirtualProtect(&slot, sizeof(slot), protection, &protection);
}

}  // namespace

bool ReplaceImport(HMODULE module, ULONG_PTR before, ULONG_PTR after) {
  bool isFound = false;
  for (const auto* library = Imports(module); library != nullptr && library->Name != 0; ++library) {
    for (auto* entry = At<IMAGE_THUNK_DATA>(module, library->FirstThunk); entry->u1.Function != 0; ++entry) {
      auto& slot = reinterpret_cast<ULONG_PTR&>(entry->u1.Function);
      if (slot == before) {
        Overwrite(slot, after);
        isFound = true;
      }
    }
  }
  return isFound;
}

ULONG_PTR SystemFunction(const wchar_t* library, const char* name) {
  return reinterpret_cast<ULONG_PTR>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(library), name)));
}

}  // namespace zolvane
