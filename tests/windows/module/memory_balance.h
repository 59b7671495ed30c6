// What the process allocates and does not free.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Counts, while it lives, in all heaps and for all modules that are loaded when it is made. One at a time in
// a process. It stands between the modules and the heap, because a walk through a heap does not show every
// block: Wine 10 hands small ones out of groups, each of which it shows as one block.
class MemoryBalance {
 public:
  MemoryBalance();
  ~MemoryBalance();
  MemoryBalance(const MemoryBalance&) = delete;
  MemoryBalance& operator=(const MemoryBalance&) = delete;

  // Allocated since it was made, less what was freed since then, whenever that was allocated.
  static long long Bytes();
};

}  // namespace zolvane
