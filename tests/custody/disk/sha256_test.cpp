#include "custody/disk/sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace zolvane {
namespace {

TEST(Sha256, IsWhatOtherProgramsCompute) {
  EXPECT_EQ(Sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Sha256Hex(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, NameHasSixtyFourLowerCaseDigitsAndNothingElse) {
  EXPECT_TRUE(IsSha256Hex(Sha256Hex("abc")));
  EXPECT_FALSE(IsSha256Hex("BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"));
  EXPECT_FALSE(IsSha256Hex("../7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
  EXPECT_FALSE(IsSha256Hex(Sha256Hex("abc") + "0"));
  EXPECT_FALSE(IsSha256Hex(""));
}

TEST(HexOf, WritesTwoDigitsForEachByte) {
  EXPECT_EQ(HexOf(std::string{"\x00\x0f\xff", 3}), "000fff");
}

}  // namespace
}  // namespace zolvane
