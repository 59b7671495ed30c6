#include "text/text_encoding.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace zolvane {
namespace {

TEST(TextEncoding, AWellFormedTextOfAnyCharactersIsUtf8) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("plain"));
  EXPECT_TRUE(IsUtf8(std::string_view{"a\0b", 3}));
  EXPECT_TRUE(IsUtf8("\xC2\x80 \xDF\xBF"));
  EXPECT_TRUE(IsUtf8("\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF"));
  EXPECT_TRUE(IsUtf8("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"));
}

TEST(TextEncoding, AnythingElseIsNot) {
  constexpr std::array<std::string_view, 17> malformed{
      "\x80",              // continuation without a start
      "\xC3",              // cut short
      "\xC3(",             // continuation missing
      "\xC0\xAF",          // overlong
      "\xC1\xBF",          // overlong
      "\xE0\x9F\xBF",      // overlong
      "\xF0\x8F\xBF\xBF",  // overlong
      "\xED\xA0\x80",      // surrogate
      "\xED\xBF\xBF",      // surrogate
      "\xF4\x90\x80\x80",  // beyond the last character
      "\xF5\x80\x80\x80",
      "\xE2\x82",
      "\xE2\x82(",
      "\xF0\x9F\x98",
      "\xF0\x9F\x98(",
      "\xFF",
      "ab\xFC",
  };
  for (const auto text : malformed) {
    EXPECT_FALSE(IsUtf8(text)) << testing::PrintToString(text);
  }
}

TEST(TextEncoding, MalformedLinesAreCountedOneByOne) {
  EXPECT_EQ(CountMalformedLines(""), 0U);
  EXPECT_EQ(CountMalformedLines("a\nb\n"), 0U);
  EXPECT_EQ(CountMalformedLines("\xFC"), 1U);
  EXPECT_EQ(CountMalformedLines("\xFC\xFC\n\xC3\xBC\n\n\xE4\n"), 2U);
  EXPECT_EQ(CountMalformedLines("a\xC3\n\xBC"), 2U);
}

TEST(TextEncoding, EachByteOfWindows1252HasItsCharacter) {
  EXPECT_EQ(Utf8FromWindows1252("A~\x7F"), "A~\x7F");
  EXPECT_EQ(Utf8FromWindows1252("\x80\x82\x83\x84\x85\x86\x87"), "€‚ƒ„…†‡");
  EXPECT_EQ(Utf8FromWindows1252("\x88\x89\x8A\x8B\x8C\x8E"), "ˆ‰Š‹ŒŽ");
  EXPECT_EQ(Utf8FromWindows1252("\x91\x92\x93\x94\x95\x96\x97"), "‘’“”•–—");
  EXPECT_EQ(Utf8FromWindows1252("\x98\x99\x9A\x9B\x9C\x9E\x9F"), "˜™š›œžŸ");
  EXPECT_EQ(Utf8FromWindows1252("\xA0\xB5\xC4\xDF\xE9\xFF"), "\xC2\xA0µÄßéÿ");
  EXPECT_EQ(Utf8FromWindows1252("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(TextEncoding, EachByteOfWindows1252FindsItsWayBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) {
    all.push_back(static_cast<char>(byte));
  }
  EXPECT_EQ(Windows1252FromUtf8(Utf8FromWindows1252(all)), all);
}

TEST(TextEncoding, CharactersWithoutAByteBecomeQuestionMarks) {
  EXPECT_EQ(Windows1252FromUtf8("5 µl, 20 °C, 3 €"),
            "5 \xB5l, 20 \xB0"
            "C, 3 \x80");
  EXPECT_EQ(Windows1252FromUtf8("ΔZ 水 😀"), "?Z ? ?");
  EXPECT_EQ(Windows1252FromUtf8("\xC2\x80\xC2\x9F"), "??");
  EXPECT_EQ(Windows1252FromUtf8("a\xFF\xC3z"), "a??z");
}

TEST(TextEncoding, BytesThatAreNotUtf8BecomeQuestionMarks) {
  EXPECT_EQ(WellFormedUtf8("ä水😀"), "ä水😀");
  EXPECT_EQ(WellFormedUtf8("a\xE4z\xC3"), "a?z?");
  EXPECT_EQ(WellFormedUtf8("\xED\xA0\x80"), "???");
}

TEST(TextEncoding, OnlyATextWithoutAnyHighBitIsAscii) {
  EXPECT_TRUE(IsAscii(""));
  EXPECT_TRUE(IsAscii(std::string_view{"nine bytes\0\x7F", 12}));
  const std::string plain(20, 'x');
  for (std::size_t position = 0; position < plain.size(); ++position) {
    std::string text = plain;
    text[position] = '\x80';
    EXPECT_FALSE(IsAscii(text)) << position;
    EXPECT_FALSE(IsUtf8(text)) << position;
  }
}

// Every pair of partners, each in both encodings.
TEST(TextEncoding, NamesThatDifferInTheCaseOfLettersAreEqual) {
  const std::string small = "az\xE0\xF6\xF8\xFE\xFF\x9A\x9C\x9E";
  const std::string large = "AZ\xC0\xD6\xD8\xDE\x9F\x8A\x8C\x8E";
  using enum TextEncoding;
  EXPECT_TRUE(EqualIgnoringCase(small, large, Windows1252));
  EXPECT_EQ(HashIgnoringCase(small, Windows1252), HashIgnoringCase(large, Windows1252));
  EXPECT_TRUE(EqualIgnoringCase("azàöøþÿšœž", "AZÀÖØÞŸŠŒŽ", Utf8));
  EXPECT_EQ(HashIgnoringCase("azàöøþÿšœž", Utf8), HashIgnoringCase("AZÀÖØÞŸŠŒŽ", Utf8));
}

TEST(TextEncoding, NamesThatDifferInMoreThanTheCaseAreNotEqual) {
  using enum TextEncoding;
  EXPECT_FALSE(EqualIgnoringCase("Item1", "Item2", Utf8));
  EXPECT_FALSE(EqualIgnoringCase("Item1", "Item", Utf8));
  EXPECT_FALSE(EqualIgnoringCase("Item", "Item1", Utf8));
  EXPECT_FALSE(EqualIgnoringCase("", "a", Utf8));
  EXPECT_FALSE(EqualIgnoringCase("ω", "Ω", Utf8));  // no letter of Windows-1252
  EXPECT_FALSE(EqualIgnoringCase("÷", "×", Utf8));  // signs among the letters
  EXPECT_FALSE(EqualIgnoringCase("\xF7", "\xD7", Windows1252));
  EXPECT_FALSE(EqualIgnoringCase("\xDF", "\xFF", Windows1252));  // the sharp s has no partner
  EXPECT_FALSE(EqualIgnoringCase("@[`{", "`{@[", Utf8));
}

}  // namespace
}  // namespace zolvane
