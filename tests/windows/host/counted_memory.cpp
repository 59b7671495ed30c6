#include "windows/host/counted_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace zolvane {
namespace {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): all that the operators of memory know
long long allocationsLeft = unlimitedAllocations;
std::atomic<long long> allocationsAlive{0};
const void* watchedPlace = nullptr;
int watchedDeletions = 0;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

}  // namespace

MemoryFor::MemoryFor(long long allocations) {
  allocationsLeft = allocations;
}

MemoryFor::~MemoryFor() {
  allocationsLeft = unlimitedAllocations;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): a question to one that lives
bool MemoryFor::HasRunOut() const {
  return allocationsLeft <= 0;
}

long long AllocationsAlive() {
  return allocationsAlive;
}

WatchedDeletion::WatchedDeletion(const void* place) {
  watchedDeletions = 0;
  watchedPlace = place;
}

WatchedDeletion::~WatchedDeletion() {
  watchedPlace = nullptr;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): a question to one that lives
int WatchedDeletion::Count() const {
  return watchedDeletions;
}

}  // namespace zolvane

// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory): this is what the others stand on
void* operator new(std::size_t size) {
  if (zolvane::allocationsLeft <= 0) {
    throw std::bad_alloc{};
  }
  if (zolvane::allocationsLeft != zolvane::unlimitedAllocations) {
    --zolvane::allocationsLeft;
  }
  if (void* const memory = std::malloc(size != 0 ? size : 1)) {
    ++zolvane::allocationsAlive;
    return memory;
  }
  throw std::bad_alloc{};
}

void operator delete(void* memory) noexcept {
  const bool isWatched = memory != nullptr && memory == zolvane::watchedPlace;
  if (isWatched && zolvane::watchedDeletions++ > 0) {
    return;
  }
  zolvane::allocationsAlive -= memory != nullptr ? 1 : 0;
  std::free(memory);
}

// NOLINTNEXTLINE(misc-use-internal-linkage): stands in for the operator of the whole program
void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
