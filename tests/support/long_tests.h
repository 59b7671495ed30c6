// Tests over generated cases try a few of them each time, and all of them where the environment has ZOLVANE_TRY_ALL.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace zolvane {

inline bool TriesAll() {
  return std::getenv("ZOLVANE_TRY_ALL") != nullptr;
}

// The seeds 1 to `few`, or 1 to `all`.
inline auto Seeds(unsigned few, unsigned all) {
  return testing::Range(1U, 1 + (TriesAll() ? all : few));
}

}  // namespace zolvane
