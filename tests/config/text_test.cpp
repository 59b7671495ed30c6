#include "config/text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "config/other_locale.h"

namespace zolvane {
namespace {

TEST(UpperCase, RaisesAsciiLetters) {
  EXPECT_EQ(UpperCase("serialDilute az 09_[`{@"), "SERIALDILUTE AZ 09_[`{@");
}

TEST(UpperCase, NothingStaysNothing) {
  EXPECT_EQ(UpperCase(""), "");
}

TEST(UpperCase, RaisesTheLatinLetters) {
  EXPECT_EQ(UpperCase("àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþ"), "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞ");
}

TEST(UpperCase, RaisesTheLettersWhosePartnerStandsElsewhere) {
  EXPECT_EQ(UpperCase("ÿœšž"), "ŸŒŠŽ");
}

TEST(UpperCase, LeavesUpperCaseAlone) {
  EXPECT_EQ(UpperCase("ABCXYZÀÉÏÖØÞŸŒŠŽ"), "ABCXYZÀÉÏÖØÞŸŒŠŽ");
}

TEST(UpperCase, LeavesCharactersWithoutASinglePartner) {
  EXPECT_EQ(UpperCase("ß÷×µƒªº€ "), "ß÷×µƒªº€ ");
}

TEST(UpperCase, LeavesLettersBeyondTheFilesEncoding) {
  EXPECT_EQ(UpperCase("ğıωяẞﬁ"), "ğıωяẞﬁ");
}

TEST(UpperCase, LeavesBytesThatAreNoText) {
  EXPECT_EQ(UpperCase("\xE4\xF6"), "\xE4\xF6");
  EXPECT_EQ(UpperCase("a\xC3"), "A\xC3");
  EXPECT_EQ(UpperCase("\xC3z"), "\xC3Z");
  EXPECT_EQ(UpperCase("\x80\xBF\xFF"), "\x80\xBF\xFF");
}

TEST(UpperCase, DoesNotReadTheLastByteOfOneLetterAsTheFirstOfAnother) {
  EXPECT_EQ(UpperCase("äüß"), "ÄÜß");
  EXPECT_EQ(UpperCase("ä\xA4"), "Ä\xA4");
}

TEST(UpperCase, NeverChangesTheLengthAndIsItsOwnResult) {
  std::mt19937 random{20};
  std::uniform_int_distribution<int> byte{0, 255};
  for (int round = 0; round < 3000; ++round) {
    std::string text(static_cast<std::size_t>(round % 12), ' ');
    for (auto& character : text) {
      character = static_cast<char>(byte(random));
    }
    const auto upper = UpperCase(text);
    EXPECT_EQ(upper.size(), text.size());
    EXPECT_EQ(UpperCase(upper), upper);
  }
}

TEST(UpperCase, DoesNotDependOnTheLocale) {
  const OtherLocale other;
  EXPECT_EQ(UpperCase("microtiter ä"), "MICROTITER Ä");
  EXPECT_TRUE(EqualIgnoringCase("i", "I"));
}

TEST(EqualIgnoringCase, IgnoresCaseAndNothingElse) {
  EXPECT_TRUE(EqualIgnoringCase("serialdilute", "SERIALDILUTE"));
  EXPECT_TRUE(EqualIgnoringCase("Gerät", "GERÄT"));
  EXPECT_TRUE(EqualIgnoringCase("", ""));
  EXPECT_FALSE(EqualIgnoringCase("8_CH", "8_CH "));
  EXPECT_FALSE(EqualIgnoringCase("8_CH", "8_C"));
  EXPECT_FALSE(EqualIgnoringCase("8_CH", "12_C"));
  EXPECT_FALSE(EqualIgnoringCase("straße", "STRASSE"));
  EXPECT_FALSE(EqualIgnoringCase("e", "é"));
}

TEST(WithoutQuotes, DropsEveryQuoteAndNotOnlyTheOuterPair) {
  EXPECT_EQ(WithoutQuotes("\"8 \"\"CH\"\" head\""), "8 CH head");
  EXPECT_EQ(WithoutQuotes("\"\""), "");
  EXPECT_EQ(WithoutQuotes("'plain' "), "'plain' ");
}

TEST(InQuotes, EnclosesTheTextAndEscapesNothing) {
  EXPECT_EQ(InQuotes(""), "\"\"");
  EXPECT_EQ(InQuotes(" 8 CH "), "\" 8 CH \"");
  EXPECT_EQ(InQuotes("a\"b"), "\"a\"b\"");
}

TEST(Replaced, ReplacesEveryOccurrenceFromTheLeft) {
  EXPECT_EQ(Replaced("a\r\n\r\nb\r\n", "\r\n", ", "), "a, , b, ");
  EXPECT_EQ(Replaced("aaa", "aa", "b"), "ba");
  EXPECT_EQ(Replaced("a\rb\nc", "\r\n", ""), "a\rb\nc");
  EXPECT_EQ(Replaced("", "x", "y"), "");
  EXPECT_EQ(Replaced("\r\r\n\n", "\r\n", ""), "\r\n");
}

TEST(Trimmed, DropsSpacesAndTabsAtBothEnds) {
  EXPECT_EQ(Trimmed(" \t 8 CH\t "), "8 CH");
  EXPECT_EQ(Trimmed("\t "), "");
  EXPECT_EQ(Trimmed(""), "");
  EXPECT_EQ(Trimmed("\n8\r"), "\n8\r");
}

}  // namespace
}  // namespace zolvane
