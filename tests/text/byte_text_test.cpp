#include "text/byte_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "text/text_encoding.h"

namespace zolvane {
namespace {

TEST(ByteText, LeavesUtf8AsItIs) {
  EXPECT_EQ(TextOfBytes("Stage 2 \xc3\xa4 \\ \n"), "Stage 2 \xc3\xa4 \\ \n");
}

TEST(ByteText, NumbersBytesThatAreNoText) {
  EXPECT_EQ(TextOfBytes("caf\xe9"), "caf\\xe9");
  EXPECT_EQ(TextOfBytes("\xc3\xa4\xc3"), "\xc3\xa4\\xc3");
}

TEST(ByteText, MarksABackslashThatCouldBeginANumber) {
  EXPECT_EQ(TextOfBytes("\\x9b"), "\\x5cx9b");
  EXPECT_EQ(BytesOfText("\\x5cx9b"), "\\x9b");
  EXPECT_EQ(BytesOfText("\\xzz \\x9"), "\\xzz \\x9");
}

TEST(ByteText, GivesBackAllBytes) {
  std::mt19937 random{20260314};
  constexpr std::string_view likely = "\\\\xX9bB0\x9b\xc3\xa4";
  for (int number = 0; number < 2000; ++number) {
    std::string bytes;
    for (auto length = random() % 12; length > 0; --length) {
      bytes += random() % 4 == 0 ? static_cast<char>(random() & 0xFFU) : likely[random() % likely.size()];
    }
    EXPECT_TRUE(IsUtf8(TextOfBytes(bytes))) << number;
    EXPECT_EQ(BytesOfText(TextOfBytes(bytes)), bytes) << number;
  }
}

}  // namespace
}  // namespace zolvane
