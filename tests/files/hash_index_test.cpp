#include "files/hash_index.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zolvane {
namespace {

constexpr auto any = [](std::size_t) { return true; };

TEST(HashIndex, FindsNothingBeforeAnythingWasAdded) {
  EXPECT_EQ(HashIndex{}.Find(0, any), std::nullopt);
}

TEST(HashIndex, FindsTheNumberThatWasAddedWithTheHash) {
  HashIndex index;
  index.Add(7, 0);
  index.Add(8, 1);
  EXPECT_EQ(index.Find(7, any), 0U);
  EXPECT_EQ(index.Find(8, any), 1U);
  EXPECT_EQ(index.Find(9, any), std::nullopt);
}

TEST(HashIndex, TellsNumbersOfOneHashApartByWhatIsMeant) {
  HashIndex index;
  index.Add(7, 0);
  index.Add(7, 1);
  EXPECT_EQ(index.Find(7, [](std::size_t number) { return number == 1; }), 1U);
  EXPECT_EQ(index.Find(7, [](std::size_t number) { return number == 2; }), std::nullopt);
}

TEST(HashIndex, KeepsAllNumbersWhileItGrows) {
  // Hashes that differ in their high bits only all begin their search at the same place.
  constexpr std::uint32_t highBits = 1U << 20;
  constexpr std::uint32_t numbers = 1000;
  HashIndex index;
  for (std::uint32_t number = 0; number < numbers; ++number) {
    index.Add(number % 2 == 0 ? number : number * highBits, number);
  }
  for (std::uint32_t number = 0; number < numbers; ++number) {
    const auto isMeant = [number](std::size_t found) { return found == number; };
    ASSERT_EQ(index.Find(number % 2 == 0 ? number : number * highBits, isMeant), number);
  }
}

TEST(HashIndex, ASearchThatStartsAtTheLastPlaceGoesOnAtTheFirst) {
  HashIndex index;
  index.Add(UINT32_MAX, 0);
  index.Add(UINT32_MAX, 1);
  EXPECT_EQ(index.Find(UINT32_MAX, [](std::size_t number) { return number == 1; }), 1U);
}

}  // namespace
}  // namespace zolvane
