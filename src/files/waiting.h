// How a caller waits for other programs: in short rests, until a time is over or the user wants to stop.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace zolvane {

struct Waiting {
  using Clock = std::chrono::steady_clock;

  std::function<Clock::time_point()> Now = Clock::now;
  std::function<void(Clock::duration)> Rest = [](Clock::duration time) { std::this_thread::sleep_for(time); };
  std::function<bool()> IsUnwanted = [] { return false; };  // the user wants to stop
};

// One wait. Its time begins with the first rest.
class Wait {
 public:
  // `how` outlives it.
  Wait(const Waiting& how, Waiting::Clock::duration longest) : how_{how}, longest_{longest} {}

  // Rests for a moment. False, without a rest, when the time is over or the user wants to stop.
  bool GoesOn() {
    const auto now = how_.Now();
    if (!hasBegun_) {
      hasBegun_ = true;
      end_ = now + longest_;
    }
    if (now >= end_ || how_.IsUnwanted()) {
      return false;
    }
    how_.Rest(std::min<Waiting::Clock::duration>(end_ - now, NextRest()));
    return true;
  }

 private:
  // Most obstacles are gone within a millisecond; for the others a hundred looks in a second are enough.
  std::chrono::microseconds NextRest() {
    constexpr std::chrono::microseconds longestRest{10'000};
    const auto rest = rest_;
    rest_ = std::min(longestRest, rest_ + rest_ / 8);
    return rest;
  }

  const Waiting& how_;
  Waiting::Clock::duration longest_;
  Waiting::Clock::time_point end_;
  std::chrono::microseconds rest_{100};
  bool hasBegun_ = false;
};

}  // namespace zolvane
