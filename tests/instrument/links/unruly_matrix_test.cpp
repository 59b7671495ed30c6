// An instrument that shares nothing with ours: late at any command, echoing, greeting, doubling, with bare values; over
// TCP, a pseudo-terminal, and a converter that keeps the line while the connection is new.
#include <gtest/gtest.h>

#include "bench/process_support.h"

namespace zolvane {
namespace {

class UnrulyMatrix : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Places, UnrulyMatrix, testing::Values("tcp", "pty", "converter"),
                         [](const auto& place) { return std::string{place.param}; });

// As many of its cases as fit into some seconds. They are spread over all; the script by itself runs every one.
TEST_P(UnrulyMatrix, NoCommandGetsTheReplyOfAnotherAndNoMissingReplyIsSuccess) {
  const std::string script = ZOLVANE_SOURCE_PATH "/tests/instrument/links/unruly_instrument.py";
  const auto result = RunProgram(
      "/usr/bin/env", {"python3", script, "--bench", ZOLVANE_BENCH_PATH, "--folder", ZOLVANE_SAMPLES_PATH,
                       "--timeout", "0.1", "--places", GetParam(), "--seconds", "5"});
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
}

}  // namespace
}  // namespace zolvane
