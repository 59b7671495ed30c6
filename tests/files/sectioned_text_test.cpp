#include "files/sectioned_text.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace zolvane {
namespace {

using namespace std::string_view_literals;

std::optional<std::string> Found(std::string_view bytes, std::string_view section, std::string_view key) {
  return SectionedText{std::string{bytes}}.Find(section, key);
}

// The text after the write; nothing when the write is refused.
std::optional<std::string> Written(std::string_view bytes, std::string_view section, std::string_view key,
                                   std::string_view value) {
  SectionedText text{std::string{bytes}};
  const auto edit = text.PlanValue(section, key, value);
  if (!edit) {
    return std::nullopt;
  }
  text.Apply(*edit);
  return text.Bytes();
}

std::string WithBlankLine(std::string_view bytes) {
  SectionedText text{std::string{bytes}};
  text.Apply(text.PlanBlankLine().value());
  return text.Bytes();
}

constexpr std::string_view sample =
    "; settings of the instrument\r\n"
    "stray=1\r\n"
    "[DeviceType]\r\n"
    "Installed=2\r\n"
    "Item1=\"Four, tall\",4\r\n"
    "Empty=\r\n"
    "\r\n"
    "[CageType]\r\n"
    "Installed = 7\t\r\n";

TEST(SectionedTextReading, AValueIsFoundInItsSection) {
  EXPECT_EQ(Found(sample, "DeviceType", "Installed"), "2");
  EXPECT_EQ(Found(sample, "CageType", "Installed"), "7");
  EXPECT_EQ(Found(sample, "CageType", "Item1"), std::nullopt);
  EXPECT_EQ(Found(sample, "HeadType", "Installed"), std::nullopt);
}

TEST(SectionedTextReading, QuotesAreKept) {
  EXPECT_EQ(Found(sample, "DeviceType", "Item1"), "\"Four, tall\",4");
}

TEST(SectionedTextReading, AnEmptyValueIsThere) {
  EXPECT_EQ(Found(sample, "DeviceType", "Empty"), "");
}

TEST(SectionedTextReading, NamesMatchWithoutRegardToCase) {
  EXPECT_EQ(Found(sample, "DEVICETYPE", "installed"), "2");
  EXPECT_EQ(Found("[Gerät]\nLänge=5\n", "GERÄT", "länge"), "5");
  EXPECT_EQ(Found("[Ger\xE4t]\nL\xC4nge=5\n", "GERÄT", "länge"), "5");
  EXPECT_EQ(Found("[Maß]\na=5\n", "MASS", "a"), std::nullopt);
}

TEST(SectionedTextReading, BlanksAroundNamesAndValuesAreDropped) {
  constexpr std::string_view text = " \t[ Calibration_Two  ] \n\t Key \t=\t  a b \t\n";
  EXPECT_EQ(Found(text, "Calibration_Two", "Key"), "a b");
  EXPECT_EQ(Found(text, " Calibration_Two ", "\tKey "), "a b");
}

TEST(SectionedTextReading, TheFirstSectionOfANameCounts) {
  constexpr std::string_view text = "[A]\nx=1\n[B]\n[a]\nx=2\ny=3\n";
  EXPECT_EQ(Found(text, "A", "x"), "1");
  EXPECT_EQ(Found(text, "A", "y"), std::nullopt);
}

TEST(SectionedTextReading, TheFirstLineOfAKeyCounts) {
  EXPECT_EQ(Found("[A]\nx=1\nX=2\n", "A", "X"), "1");
}

TEST(SectionedTextReading, WhatIsNotUnderstoodIsNoKeyAndNoSection) {
  constexpr std::string_view text = "x=0\n[A\nx=1\n[A]\n;x=2\n  ;x=3\n=4\nx\n[x=5\nx=6\n";
  EXPECT_EQ(Found(text, "A", "x"), "6");
  EXPECT_EQ(Found(text, "A", ""), std::nullopt);
  EXPECT_EQ(Found(text, "A", ";x"), std::nullopt);
  EXPECT_EQ(Found(text, "A", "[x"), std::nullopt);
  EXPECT_EQ(Found(text, "", "x"), std::nullopt);
}

TEST(SectionedTextReading, TextBehindAHeaderIsIgnored) {
  EXPECT_EQ(Found("[A] = b ]\nx=1\n", "A", "x"), "1");
  EXPECT_EQ(Found("[]\nx=1\n", "", "x"), "1");
}

TEST(SectionedTextReading, TheFirstEqualsSignEndsTheKey) {
  EXPECT_EQ(Found("[A]\nx=a=\"b\"\n", "A", "x"), "a=\"b\"");
}

TEST(SectionedTextReading, ALoneCarriageReturnEndsNoLine) {
  EXPECT_EQ(Found("[A]\nx=1\ry=2\n", "A", "x"), "1\ry=2");
  EXPECT_EQ(Found("[A]\nx=1\r\r\n", "A", "x"), "1\r");
  EXPECT_EQ(Found("[A]\nx=1\r", "A", "x"), "1\r");
}

TEST(SectionedTextReading, ANulIsACharacterLikeOthers) {
  EXPECT_EQ(Found("[A]\nx=1\0 2\n"sv, "A", "x"), "1\0 2"sv);
  EXPECT_EQ(Found("[A\0]\nx=1\n"sv, "A\0"sv, "x"), "1");
  EXPECT_EQ(Found("[A\0]\nx=1\n"sv, "A", "x"), std::nullopt);
}

TEST(SectionedTextReading, AByteOrderMarkHidesNothing) {
  EXPECT_EQ(Found("\xEF\xBB\xBF[A]\nx=\xC3\xA4\n", "A", "x"), "ä");
  EXPECT_EQ(Found("\xEF\xBB\xBF[A]\nx=\xE4\n", "A", "x"), "ä");
}

TEST(SectionedTextReading, OneByteThatIsNotUtf8MakesAllOfTheFileWindows1252) {
  EXPECT_EQ(Found("[A]\nx=\xC3\xA4\n", "A", "x"), "ä");
  EXPECT_EQ(Found("[A]\nx=\xC3\xA4\n;\xE4\n", "A", "x"), "Ã¤");
}

struct WriteCase {
  std::string_view What;
  std::string_view Before;
  std::string_view Section;
  std::string_view Key;
  std::string_view Value;
  std::string_view After;
};

void ExpectWritten(std::initializer_list<WriteCase> cases) {
  for (const auto& test : cases) {
    EXPECT_EQ(Written(test.Before, test.Section, test.Key, test.Value), test.After) << test.What;
  }
}

TEST(SectionedTextWriting, OnlyTheValuesBytesAreReplaced) {
  ExpectWritten({
      {"plain", "[A]\r\nx=1\r\ny=2\r\n", "A", "x", "345", "[A]\r\nx=345\r\ny=2\r\n"},
      {"blanks", "[A]\n  x \t= 1 \t\ny=2", "A", "X", "345", "[A]\n  x \t= 345 \t\ny=2"},
      {"emptied", "[A]\nx= 1 \n", "A", "x", "", "[A]\nx=  \n"},
      {"filled", "[A]\nx=\n", "A", "x", "1", "[A]\nx=1\n"},
      {"filled behind blanks", "[A]\nx= \t\n", "A", "x", "1", "[A]\nx= \t1\n"},
      {"value with equals signs", "[A]\nx=a=b\n", "A", "x", "c=d", "[A]\nx=c=d\n"},
      {"without line end", "[A]\nx=1", "A", "x", "22", "[A]\nx=22"},
      {"other line ends stay", "[A]\nx=1\r\ny=2\n", "A", "x", "3", "[A]\nx=3\r\ny=2\n"},
      {"first of two keys", "[A]\nx=1\nx=2\n", "A", "x", "3", "[A]\nx=3\nx=2\n"},
      {"first of two sections", "[A]\nx=1\n[A]\nx=2\n", "A", "x", "3", "[A]\nx=3\n[A]\nx=2\n"},
      {"lone CR in the value", "[A]\nx=1\ry=2\n", "A", "x", "3", "[A]\nx=3\n"},
      {"CR before CR LF", "[A]\r\nx=1\r\r\n", "A", "x", "3", "[A]\r\nx=3\r\n"},
      {"value ending in CR", "[A]\r\nx=1\r\n", "A", "x", "3\r", "[A]\r\nx=3\r\r\n"},
      {"NUL", "[A]\nx=\0\n"sv, "A", "x", "b\0"sv, "[A]\nx=b\0\n"sv},
      {"mark", "\xEF\xBB\xBF[A]\nx=1\n", "A", "x", "2", "\xEF\xBB\xBF[A]\nx=2\n"},
  });
}

TEST(SectionedTextWriting, BlanksOfTheNewValueTakeThePlaceOfTheOldOnes) {
  EXPECT_EQ(Written("[A]\nx=1\n", "A", "x", " 2 "), "[A]\nx= 2 \n");
  EXPECT_EQ(Written("[A]\nx=  1  \n", "A", "x", " 2"), "[A]\nx= 2  \n");
  EXPECT_EQ(Written("[A]\nx=  1  \n", "A", "x", "2 "), "[A]\nx=  2 \n");
  EXPECT_EQ(Written("[A]\nx= 2 \n", "A", "x", " 2 "), "[A]\nx= 2 \n");
  EXPECT_EQ(Written("[A]\nx=1\n", "A", "x", "   "), "[A]\nx=   \n");
}

TEST(SectionedTextWriting, ANewKeyGoesBehindTheLastLineThatIsNotBlank) {
  ExpectWritten({
      {"behind a key", "[A]\r\nx=1\r\n\r\n[B]\r\n", "A", "y", "2", "[A]\r\nx=1\r\ny=2\r\n\r\n[B]\r\n"},
      {"behind a header", "[A]\n\n \t\n[B]\n", "A", "y", "2", "[A]\ny=2\n\n \t\n[B]\n"},
      {"behind a comment", "[A]\nx=1\n; end\n\n", "A", "y", "2", "[A]\nx=1\n; end\ny=2\n\n"},
      {"behind what is not understood", "[A]\n???\n\n[B]\n", "A", "y", "2", "[A]\n???\ny=2\n\n[B]\n"},
      {"blank lines inside stay", "[A]\nx=1\n\nz=3\n", "A", "y", "2", "[A]\nx=1\n\nz=3\ny=2\n"},
      {"before unended blanks", "[A]\nx=1\n  ", "A", "y", "2", "[A]\nx=1\ny=2\n  "},
      {"last line without end", "[A]\nx=1", "A", "y", "2", "[A]\nx=1\ny=2\n"},
      {"header without end", "[A]", "A", "y", "2", "[A]\r\ny=2\r\n"},
      {"first section of the name", "[A]\n[B]\n[A]\ny=1\n", "A", "y", "2", "[A]\ny=2\n[B]\n[A]\ny=1\n"},
      {"no key but a comment", "[A]\n;y=1\n", "A", "y", "2", "[A]\n;y=1\ny=2\n"},
      {"a new name as it is given", "[A]\n", " A ", " y ", "2", "[A]\n y =2\n"},
      {"value with blanks", "[A]\n", "A", "y", " 2 ", "[A]\ny= 2 \n"},
  });
}

TEST(SectionedTextWriting, ANewSectionGoesToTheEndOfTheFile) {
  ExpectWritten({
      {"empty file", "", "A", "x", "1", "[A]\r\nx=1\r\n"},
      {"mark only", "\xEF\xBB\xBF", "A", "x", "1", "\xEF\xBB\xBF[A]\r\nx=1\r\n"},
      {"behind another", "[B]\ny=1\n", "A", "x", "1", "[B]\ny=1\n[A]\nx=1\n"},
      {"behind blank lines", "[B]\n\n\n", "A", "x", "1", "[B]\n\n\n[A]\nx=1\n"},
      {"last line without end", "[B]\ny=1", "A", "x", "1", "[B]\ny=1\n[A]\nx=1\n"},
      {"blanks without end", "[B]\n  ", "A", "x", "1", "[B]\n  \n[A]\nx=1\n"},
      {"text without section", "text", "A", "x", "1", "text\r\n[A]\r\nx=1\r\n"},
      {"no header but a start of one", "[A\n", "A", "x", "1", "[A\n[A]\nx=1\n"},
      {"name as it is given", "", " A b ", "x", "1", "[ A b ]\r\nx=1\r\n"},
      {"lone CRs only", "a\rb", "A", "x", "1", "a\rb\r\n[A]\r\nx=1\r\n"},
  });
}

TEST(SectionedTextWriting, TheFirstLineEndOfTheFileSetsTheStyle) {
  EXPECT_EQ(Written("a\n[A]\r\nx=1\r\n", "A", "y", "2"), "a\n[A]\r\nx=1\r\ny=2\n");
  EXPECT_EQ(Written("a\r\n[A]\nx=1\n", "A", "y", "2"), "a\r\n[A]\nx=1\ny=2\r\n");
  EXPECT_EQ(Written("\n[A]\r\n", "A", "y", "2"), "\n[A]\r\ny=2\n");
}

TEST(SectionedTextWriting, ACarriageReturnAtTheEndOfALineIsNotTakenIntoTheLineEnd) {
  EXPECT_EQ(Written("[A]\nx=1\r", "A", "y", "2"), "[A]\nx=1\r\r\ny=2\n");
  EXPECT_EQ(Written("[A]\nx=1\r", "B", "y", "2"), "[A]\nx=1\r\r\n[B]\ny=2\n");
  EXPECT_EQ(Written("[A]\n", "A", "y", "2\r"), "[A]\ny=2\r\r\n");
  EXPECT_EQ(Written("[A]\nx=1\n", "A", "x", "2\r"), std::nullopt);
  EXPECT_EQ(Written("[A]\nx=1 \n", "A", "x", "2\r"), "[A]\nx=2\r \n");
}

TEST(SectionedTextWriting, AValueThatIsThereChangesNothing) {
  const SectionedText text{"[A]\nx= 1 \ny=\n"};
  EXPECT_TRUE(text.PlanValue("A", "x", "1")->Change.ChangesNothing());
  EXPECT_TRUE(text.PlanValue("a", "Y", "")->Change.ChangesNothing());
  EXPECT_FALSE(text.PlanValue("A", "x", "2")->Change.ChangesNothing());
}

TEST(SectionedTextWriting, WhatCouldNotBeReadBackIsRefused) {
  constexpr std::string_view before = "[A]\nx=1\n";
  EXPECT_EQ(Written(before, "A]", "x", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A\nB", "x", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A\rB", "x", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", " \t", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "a=b", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "a\nb", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "a\rb", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", ";a", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", " ;a", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "[a", "2"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "x", "2\n"), std::nullopt);
  EXPECT_EQ(Written(before, "A", "x", "2\r\n3"), std::nullopt);
}

TEST(SectionedTextWriting, AFileOf16BitUnitsIsLeftAlone) {
  EXPECT_EQ(Written("\xFF\xFE[\0A\0]\0"sv, "A", "x", "1"), std::nullopt);
  EXPECT_EQ(Written("\xFE\xFF\0[\0A\0]"sv, "A", "x", "1"), std::nullopt);
  EXPECT_FALSE(SectionedText{"\xFF\xFE"}.PlanBlankLine().has_value());
}

TEST(SectionedTextEncoding, CharactersThatAreLostAreCounted) {
  const SectionedText text{"[A]\nx=?\n;\xFC\n"};
  EXPECT_EQ(text.PlanValue("A", "x", "\u03A9?\u00FC").value().LostCharacters, 1U);
  EXPECT_EQ(text.PlanValue("A", "x", "\u03A9").value().LostCharacters, 1U) << "stands there already";
  EXPECT_EQ(text.PlanValue("A", "\u03A9", "\u03A9\u03A9").value().LostCharacters, 3U);
  EXPECT_EQ(text.PlanValue("\u03A9", "x", "1").value().LostCharacters, 1U);
  EXPECT_EQ(text.PlanValue("A", "x", "??").value().LostCharacters, 0U);
  EXPECT_EQ(SectionedText{"[A]\n"}.PlanValue("A", "x", "\u03A9").value().LostCharacters, 0U);
}

TEST(SectionedTextEncoding, AFileKeepsItsEncoding) {
  EXPECT_EQ(Written("[A]\nx=\xC3\xA4\n", "A", "y", "ö"), "[A]\nx=\xC3\xA4\ny=\xC3\xB6\n");
  EXPECT_EQ(Written("[A]\nx=\xE4\n", "A", "y", "ö"), "[A]\nx=\xE4\ny=\xF6\n");
  EXPECT_EQ(Written("[A]\nx=1\n", "A", "x", "ö"), "[A]\nx=\xC3\xB6\n");
  EXPECT_EQ(Written("\xEF\xBB\xBF;\xE4\n", "Ö", "x", "ö"), "\xEF\xBB\xBF;\xE4\n[\xD6]\nx=\xF6\n");
}

TEST(SectionedTextEncoding, ACharacterThatWindows1252LacksIsWrittenAsQuestionMark) {
  EXPECT_EQ(Written("[A]\nx=\xE4\n", "A", "x", "ä水"), "[A]\nx=\xE4?\n");
}

TEST(SectionedTextEncoding, ANameWithSuchACharacterIsFoundAgain) {
  SectionedText text{";\xE4\n"};
  text.Apply(text.PlanValue("Ω", "Δ", "1").value());
  EXPECT_EQ(text.Bytes(), ";\xE4\n[?]\n?=1\n");
  EXPECT_EQ(text.Find("Ω", "Δ"), "1");
  text.Apply(text.PlanValue("Ω", "Δ", "2").value());
  EXPECT_EQ(text.Bytes(), ";\xE4\n[?]\n?=2\n");
}

TEST(SectionedTextEncoding, BytesThatAreNotUtf8DoNotReachAFileThatIs) {
  EXPECT_EQ(Written("[A]\nx=1\n", "A", "x", "\xE4"), "[A]\nx=?\n");
}

TEST(SectionedTextEncoding, TheEncodingIsThatOfTheTextAsItIsNow) {
  SectionedText text{"[Ger\xC3\xA4t]\nx=\xFC\n"};
  EXPECT_EQ(text.Find("GerÃ¤t", "x"), "ü");
  EXPECT_EQ(text.Find("Gerät", "x"), std::nullopt);
  text.Apply(text.PlanValue("GerÃ¤t", "x", "u").value());
  EXPECT_EQ(text.Find("Gerät", "x"), "u");
  EXPECT_EQ(text.Find("GerÃ¤t", "x"), std::nullopt);
  text.Apply(text.PlanValue("Gerät", "y", "ü").value());
  EXPECT_EQ(text.Bytes(), "[Ger\xC3\xA4t]\nx=u\ny=\xC3\xBC\n");
}

TEST(SectionedTextBlankLine, CarriageReturnAndLineFeedAreAppendedToAnyFile) {
  EXPECT_EQ(WithBlankLine(""), "\r\n");
  EXPECT_EQ(WithBlankLine("[A]\nx=1\n"), "[A]\nx=1\n\r\n");
  EXPECT_EQ(WithBlankLine("[A]\nx=1"), "[A]\nx=1\r\n");
  EXPECT_EQ(WithBlankLine("[A]\nx=1\r"), "[A]\nx=1\r\r\n");
}

TEST(SectionedTextBlankLine, LaterKeysKnowWhereTheirSectionEnds) {
  for (const std::string_view before : {"[A]\nx=1\n"sv, "[A]\nx=1"sv}) {
    SectionedText text{std::string{before}};
    text.Apply(text.PlanBlankLine().value());
    text.Apply(text.PlanBlankLine().value());
    text.Apply(text.PlanValue("A", "y", "2").value());
    const bool hadEnd = before.ends_with('\n');
    EXPECT_EQ(text.Bytes(), hadEnd ? "[A]\nx=1\ny=2\n\r\n\r\n" : "[A]\nx=1\r\ny=2\n\r\n");
  }
}

TEST(SectionedTextIndex, FollowsEveryChange) {
  SectionedText text{"[A]\na=1\nb=2\n\n[B]\nc=3\n"};
  const auto write = [&text](std::string_view section, std::string_view key, std::string_view value) {
    text.Apply(text.PlanValue(section, key, value).value());
  };
  write("A", "a", "1000");
  write("B", "d", "4");
  write("A", "e", "55");
  write("C", "f", "6");
  write("A", "b", "");
  write("B", "c", "333");
  EXPECT_EQ(text.Bytes(), "[A]\na=1000\nb=\ne=55\n\n[B]\nc=333\nd=4\n[C]\nf=6\n");
  EXPECT_EQ(text.Find("A", "e"), "55");
  EXPECT_EQ(text.Find("B", "d"), "4");
  EXPECT_EQ(text.Find("C", "f"), "6");
}

}  // namespace
}  // namespace zolvane
