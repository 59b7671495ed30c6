#include "windows/module/memory_balance.h"

#include <psapi.h>

#include <array>
#include <atomic>
#include <utility>
#include <vector>

#include "bench/windows/play/imports.h"

namespace zolvane {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): plain functions count in it
std::atomic<long long> balance = 0;

long long SizeOf(HANDLE heap, const void* block) {
  const SIZE_T size = block != nullptr ? HeapSize(heap, 0, block) : 0;
  return size != static_cast<SIZE_T>(-1) ? static_cast<long long>(size) : 0;
}

// ---- What the modules call instead of the heap. Whichever of the system's functions a program calls ends in one of
// these three, and once.

struct Heap {
  decltype(&HeapAlloc) Allocate = nullptr;
  decltype(&HeapReAlloc) Reallocate = nullptr;
  decltype(&HeapFree) Free = nullptr;
};

template <class Function>
void Find(Function& function, const char* name) {
  function = reinterpret_cast<Function>(SystemFunction(L"ntdll.dll", name));
}

const Heap& SystemHeap() {
  static const Heap heap = [] {
    Heap found;
    Find(found.Allocate, "RtlAllocateHeap");
    Find(found.Reallocate, "RtlReAllocateHeap");
    Find(found.Free, "RtlFreeHeap");
    return found;
  }();
  return heap;
}

void* WINAPI Allocate(HANDLE heap, DWORD flags, SIZE_T size) {
  void* const block = SystemHeap().Allocate(heap, flags, size);
  balance += SizeOf(heap, block);
  return block;
}

void* WINAPI Reallocate(HANDLE heap, DWORD flags, void* block, SIZE_T size) {
  const auto before = SizeOf(heap, block);
  void* const moved = SystemHeap().Reallocate(heap, flags, block, size);
  if (moved != nullptr) {
    balance += SizeOf(heap, moved) - before;
  }
  return moved;
}

BOOL WINAPI Free(HANDLE heap, DWORD flags, void* block) {
  balance -= SizeOf(heap, block);
  return SystemHeap().Free(heap, flags, block);
}

// ---- All modules of the process

std::vector<HMODULE> LoadedModules() {
  std::vector<HMODULE> modules(1000);
  DWORD size = 0;
  EnumProcessModules(GetCurrentProcess(), modules.data(),
                     static_cast<DWORD>(modules.size() * sizeof(HMODULE)), &size);
  modules.resize(size / sizeof(HMODULE));
  return modules;
}

void Redirect(bool isOn) {
  const auto& system = SystemHeap();
  const std::array<std::pair<ULONG_PTR, ULONG_PTR>, 3> functions{{
      {AddressOf(system.Allocate), AddressOf(Allocate)},
      {AddressOf(system.Reallocate), AddressOf(Reallocate)},
      {AddressOf(system.Free), AddressOf(Free)},
  }};
  for (auto* const module : LoadedModules()) {
    for (const auto& [theirs, ours] : functions) {
      ReplaceImport(module, isOn ? theirs : ours, isOn ? ours : theirs);
    }
  }
}

}  // namespace

MemoryBalance::MemoryBalance() {
  Redirect(true);
  balance = 0;  // what it took to redirect is not counted
}

MemoryBalance::~MemoryBalance() {
  Redirect(false);
}

long long MemoryBalance::Bytes() {
  return balance;
}

}  // namespace zolvane
