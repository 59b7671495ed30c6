// A witness whose clock, chance and account the test sets.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "custody/disk/witness.h"

namespace zolvane {

class FakeWitness final : public Witness {
 public:
  // Each look at the clock finds it that much later.
  std::chrono::milliseconds Tick{1000};
  Time Clock{std::chrono::sys_days{std::chrono::year{2026} / 3 / 14} + std::chrono::milliseconds{34013589}};
  std::string Account = "ada";
  char Chance = 1;  // what the next random bytes are; other ones each time

  Time Now() override { return Clock += Tick; }
  std::chrono::minutes Offset() override { return std::chrono::minutes{60}; }
  std::string Person() override { return Account; }
  std::string Machine() override { return "bench-7"; }
  std::string RandomBytes(std::size_t count) override {
    std::string bytes(count, Chance++);
    return bytes;
  }
};

}  // namespace zolvane
