// What a fuzzer holds true whatever it is given.
#pragma once

#include <cstdlib>

// Ends the program, which the fuzzer reports with its input.
inline void Require(bool holds) {
  if (!holds) {
    std::abort();
  }
}
