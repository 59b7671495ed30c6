#include "instrument/links/line_reader.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

TEST(LineReader, ALineEndsWithLineFeedAndOneCarriageReturnBeforeItIsNotPartOfIt) {
  LineReader lines;
  lines.Append("one\r\ntwo\n\r\r\n\nfi");
  EXPECT_EQ(lines.Take(), "one");
  EXPECT_EQ(lines.Take(), "two");
  EXPECT_EQ(lines.Take(), "\r");
  EXPECT_EQ(lines.Take(), "");
  EXPECT_EQ(lines.Take(), std::nullopt);
  lines.Append("ve\n");
  EXPECT_EQ(lines.Take(), "five");
}

TEST(LineReader, CountsTheBytesOfTheLineThatHasNotEnded) {
  LineReader lines;
  EXPECT_EQ(lines.Begun(), 0U);
  lines.Append("abc");
  lines.Append("de");
  EXPECT_EQ(lines.Begun(), 5U);
  lines.Append("\nf");
  EXPECT_EQ(lines.Begun(), 1U);
  lines.Take();
  EXPECT_EQ(lines.Begun(), 1U);
}

TEST(LineReader, ALineThatHadBegunIsDroppedToItsEnd) {
  LineReader lines;
  lines.Append("whole\nbeg");
  EXPECT_EQ(lines.Take(), "whole");
  lines.DropBegunLine();
  lines.Append("un");
  lines.DropBegunLine();
  EXPECT_FALSE(lines.HasLine());
  lines.Append("\nnext\n");
  EXPECT_EQ(lines.Take(), "next");
}

TEST(LineReader, NothingIsDroppedWhereNoLineHasBegun) {
  LineReader lines;
  lines.DropBegunLine();
  lines.Append("first\n");
  EXPECT_EQ(lines.Take(), "first");
  lines.DropBegunLine();
  lines.Append("second\n");
  EXPECT_EQ(lines.Take(), "second");
}

}  // namespace
}  // namespace zolvane
