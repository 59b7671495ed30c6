#include "custody/disk/witness.h"

#include <gtest/gtest.h>

#include <chrono>

namespace zolvane {
namespace {

TEST(SystemWitness, KnowsTimeAndMachine) {
  SystemWitness witness;
  const auto since = std::chrono::system_clock::now() - witness.Now();
  EXPECT_LT(since, std::chrono::minutes{1});
  EXPECT_GE(since, std::chrono::minutes{-1});
  EXPECT_LE(std::chrono::abs(witness.Offset()), std::chrono::hours{24});
  EXPECT_NE(witness.Machine(), "");
}

TEST(SystemWitness, DrawsAsManyBytesAsAskedForAndOtherOnesEachTime) {
  SystemWitness witness;
  EXPECT_EQ(witness.RandomBytes(0), "");
  EXPECT_EQ(witness.RandomBytes(16).size(), 16U);
  EXPECT_NE(witness.RandomBytes(16), witness.RandomBytes(16));
}

}  // namespace
}  // namespace zolvane
