// The memory of this program, which the component's sources are a part of here: it can run out,
// and is counted.
#pragma once

#include <limits>

namespace zolvane {

inline constexpr long long unlimitedAllocations = std::numeric_limits<long long>::max();

// From the given allocation on there is no memory, until this ends.
class MemoryFor {
 public:
  explicit MemoryFor(long long allocations);
  ~MemoryFor();
  MemoryFor(const MemoryFor&) = delete;
  MemoryFor& operator=(const MemoryFor&) = delete;

  bool HasRunOut() const;
};

long long AllocationsAlive();

// Counts how often one place is given back, and lets only the first time happen.
class WatchedDeletion {
 public:
  explicit WatchedDeletion(const void* place);
  ~WatchedDeletion();
  WatchedDeletion(const WatchedDeletion&) = delete;
  WatchedDeletion& operator=(const WatchedDeletion&) = delete;

  int Count() const;
};

}  // namespace zolvane
