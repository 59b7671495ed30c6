#include "text/printable.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

TEST(PrintableText, ShowsControlCharactersAsEscapes) {
  EXPECT_EQ(Printable("a\x1b[31m\nb\tc\x7f"), "a\\u001b[31m\\u000ab\\u0009c\\u007f");
  EXPECT_EQ(Printable("\xc2\x9bx\xc2\xa0\xc3\x9b"), "\\u009bx\xc2\xa0\xc3\x9b");
}

TEST(PrintableText, ShowsBytesThatAreNoTextAsTheirNumbers) {
  EXPECT_EQ(Printable("a\x9b"
                      "b\xc2"),
            "a\\x9bb\\xc2");
  EXPECT_EQ(Printable("\xff\xe2\x80"), "\\xff\\xe2\\x80");
}

TEST(PrintableText, ShowsWhatTurnsTheDirectionOfWriting) {
  EXPECT_EQ(
      Printable("\xd8\x9c|\xe2\x80\x8e|\xe2\x80\x8f|\xe2\x80\xaa|\xe2\x80\xae|\xe2\x81\xa6|\xe2\x81\xa9"),
      "\\u061c|\\u200e|\\u200f|\\u202a|\\u202e|\\u2066|\\u2069");
}

TEST(PrintableText, ShowsSeparatorsOfLinesAndParagraphs) {
  EXPECT_EQ(Printable("a\xe2\x80\xa8"
                      "b\xe2\x80\xa9"),
            "a\\u2028b\\u2029");
}

TEST(PrintableText, LeavesEveryOtherCharacterAndItselfAsItIs) {
  const std::string text =
      "\xc3\xa4 \xd8\xb9 \xe2\x80\xa7 \xe2\x81\xa5 \xe2\x82\xac \xf0\x9f\x98\x80 \\u001b \\";
  EXPECT_EQ(Printable(text), text);
}

TEST(PrintableText, LineBreaksAreKept) {
  EXPECT_EQ(PrintableLines("a\r\nb\x1b\n"), "a\\u000d\nb\\u001b\n");
}

TEST(PrintableText, BecomesOneLine) {
  EXPECT_EQ(OneLine(" one\r\n\r\ntwo \tthree\x1b\r\n"), "one two three\\u001b");
  EXPECT_EQ(OneLine(" \r\n"), "");
}

}  // namespace
}  // namespace zolvane
