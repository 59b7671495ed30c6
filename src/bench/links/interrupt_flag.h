// The user's wish to stop (Ctrl-C), as the links see it.
#pragma once

#include <atomic>

namespace zolvane {

// May be raised from a signal handler. Stays raised.
class InterruptFlag {
 public:
  void Raise() { isRaised_.store(true, std::memory_order_relaxed); }
  bool IsRaised() const { return isRaised_.load(std::memory_order_relaxed); }

 private:
  static_assert(std::atomic<bool>::is_always_lock_free);
  std::atomic<bool> isRaised_ = false;
};

}  // namespace zolvane
