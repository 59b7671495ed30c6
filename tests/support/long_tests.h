// Tests over generated cases try a few of them each time, and all of them where the environment has ZOLVANE_TRY_ALL.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <vector>

namespace zolvane {

inline bool TriesAll() {
  return std::getenv("ZOLVANE_TRY_ALL") != nullptr;
}

// The seeds 1 to `few`, or 1 to `all`.
inline auto Seeds(unsigned few, unsigned all) {
  return testing::Range(1U, 1 + (TriesAll() ? all : few));
}

// Places of that many bytes. A few of them are every seventh, which meets each bit of a byte in turn, and all of the
// last, where the seal of a file stands.
inline std::vector<std::size_t> PlacesIn(std::size_t size) {
  constexpr std::size_t stride = 7;
  constexpr std::size_t last = 200;
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < size; ++place) {
    if (TriesAll() || place % stride == 0 || place + last >= size) {
      places.push_back(place);
    }
  }
  return places;
}

}  // namespace zolvane
