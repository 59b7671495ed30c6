// The lists of broken copies (tests/broken_copies) go along with the sources that they break.
#include <gtest/gtest.h>

#include "bench/process_support.h"

namespace zolvane {
namespace {

TEST(BrokenCopies, EachStandsOnceInTheSources) {
  const auto result =
      RunProgram("/usr/bin/env", {"python3", ZOLVANE_SOURCE_PATH "/tools/broken_copies", "--check"});
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
}

}  // namespace
}  // namespace zolvane
