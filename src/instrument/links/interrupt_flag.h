// The user's wish to stop (Ctrl-C), as the links see it.
#pragma once

#include <atomic>

namespace zolvane {

// May be raised from a signal handler and from another thread than the link's. Stays raised until it is
// lowered for a new operation.
class InterruptFlag {
 public:
  void Raise() { timesRaised_.fetch_add(1, std::memory_order_relaxed); }
  void Lower() { timesRaised_.store(0, std::memory_order_relaxed); }

  // No further command leaves.
  bool IsRaised() const { return timesRaised_.load(std::memory_order_relaxed) > 0; }

  // Raised more than once: nothing waits any more.
  bool IsUrgent() const { return timesRaised_.load(std::memory_order_relaxed) > 1; }

 private:
  static_assert(std::atomic<unsigned>::is_always_lock_free);
  std::atomic<unsigned> timesRaised_ = 0;
};

// The program's own. It outlives everything, so that a signal finds it at any time.
inline InterruptFlag& ProgramInterrupt() {
  static constinit InterruptFlag flag;
  return flag;
}

}  // namespace zolvane
