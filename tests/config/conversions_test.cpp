#include "config/conversions.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "config/other_locale.h"

namespace zolvane {
namespace {

using std::nullopt;

bool IsPlainZero(double value) {
  return value == 0.0 && !std::signbit(value);
}

// ---- Leading number ----

TEST(LeadingNumber, ReadsWholeNumbersAndDecimals) {
  EXPECT_EQ(LeadingNumber("12"), 12.0);
  EXPECT_EQ(LeadingNumber("-7"), -7.0);
  EXPECT_EQ(LeadingNumber("12.5"), 12.5);
  EXPECT_EQ(LeadingNumber("0012.50"), 12.5);
  EXPECT_EQ(LeadingNumber(".25"), 0.25);
  EXPECT_EQ(LeadingNumber("-.25"), -0.25);
  EXPECT_EQ(LeadingNumber("5."), 5.0);
  EXPECT_EQ(LeadingNumber("9007199254740993"), 9007199254740992.0);
}

TEST(LeadingNumber, EndsWhereTheNumberEnds) {
  EXPECT_EQ(LeadingNumber("1.5mm"), 1.5);
  EXPECT_EQ(LeadingNumber("2.5abc"), 2.5);
  EXPECT_EQ(LeadingNumber("1.2.3"), 1.2);
  EXPECT_EQ(LeadingNumber("1-2"), 1.0);
  EXPECT_EQ(LeadingNumber("0.5 ul"), 0.5);
  EXPECT_EQ(LeadingNumber("12\"3\""), 12.0);
  EXPECT_EQ(LeadingNumber(std::string_view{"7\0"
                                           "8",
                                           3}),
            7.0);
}

TEST(LeadingNumber, IsZeroWithoutANumber) {
  for (const auto* text :
       {"", " ", "abc", "mm1.5", ".", "-", "+", "-.", "+.e5", "e5", ".e5", "\"5\"", ",5"}) {
    EXPECT_TRUE(IsPlainZero(LeadingNumber(text))) << text;
  }
}

TEST(LeadingNumber, TakesAnExponentOnlyWithDigitsBehindE) {
  EXPECT_EQ(LeadingNumber("1e3"), 1000.0);
  EXPECT_EQ(LeadingNumber("1E3"), 1000.0);
  EXPECT_EQ(LeadingNumber("1E+03"), 1000.0);
  EXPECT_EQ(LeadingNumber("25e-1x"), 2.5);
  EXPECT_EQ(LeadingNumber("1.e2"), 100.0);
  EXPECT_EQ(LeadingNumber(".5e1"), 5.0);
  EXPECT_EQ(LeadingNumber("1E-05"), 0.00001);
  EXPECT_EQ(LeadingNumber("1e"), 1.0);
  EXPECT_EQ(LeadingNumber("1e+"), 1.0);
  EXPECT_EQ(LeadingNumber("1e-"), 1.0);
  EXPECT_EQ(LeadingNumber("1e+x"), 1.0);
  EXPECT_EQ(LeadingNumber("1e 3"), 1.0);
  EXPECT_EQ(LeadingNumber("1e1.5"), 10.0);
  EXPECT_EQ(LeadingNumber("1d3"), 1.0);
  EXPECT_EQ(LeadingNumber("1D3"), 1.0);
}

TEST(LeadingNumber, ReadsOneLeadingPlusAsASign) {
  EXPECT_EQ(LeadingNumber("+5"), 5.0);
  EXPECT_EQ(LeadingNumber("+.5"), 0.5);
  EXPECT_EQ(LeadingNumber("++5"), 0.0);
  EXPECT_EQ(LeadingNumber("+-5"), 0.0);
  EXPECT_EQ(LeadingNumber("-+5"), 0.0);
  EXPECT_EQ(LeadingNumber("--5"), 0.0);
}

TEST(LeadingNumber, SkipsSpacesAndTabsBeforeTheNumberOnly) {
  EXPECT_EQ(LeadingNumber(" \t 12"), 12.0);
  EXPECT_EQ(LeadingNumber("\t-3"), -3.0);
  EXPECT_EQ(LeadingNumber("1 2"), 1.0);
  EXPECT_EQ(LeadingNumber("- 5"), 0.0);
  EXPECT_EQ(LeadingNumber("\n5"), 0.0);
  EXPECT_EQ(LeadingNumber("\r5"), 0.0);
  EXPECT_EQ(LeadingNumber("\v5"), 0.0);
  EXPECT_EQ(LeadingNumber("\xC2\xA0"
                          "5"),
            0.0);
}

TEST(LeadingNumber, KnowsNoRadixPrefix) {
  EXPECT_EQ(LeadingNumber("&H1F"), 0.0);
  EXPECT_EQ(LeadingNumber("&O17"), 0.0);
  EXPECT_EQ(LeadingNumber("0x1F"), 0.0);
  EXPECT_EQ(LeadingNumber("0b11"), 0.0);
}

TEST(LeadingNumber, KnowsTheDecimalPointAlone) {
  EXPECT_EQ(LeadingNumber("1,5"), 1.0);
  EXPECT_EQ(LeadingNumber("1,234.5"), 1.0);
  EXPECT_EQ(LeadingNumber("1'234"), 1.0);
}

TEST(LeadingNumber, IsZeroBeyondTheRange) {
  for (const auto* text : {"1e309", "-1e309", "1e99999", "1e99999999999999999999999", "123456789e301",
                           "1e9223372036854775807", "1e9223372036854775806", "-1e9223372036854775807"}) {
    EXPECT_TRUE(IsPlainZero(LeadingNumber(text))) << text;
  }
  EXPECT_EQ(LeadingNumber("1" + std::string(400, '0')), 0.0);
  EXPECT_EQ(LeadingNumber("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(LeadingNumber, IsZeroForNumbersTooSmallToTell) {
  EXPECT_TRUE(IsPlainZero(LeadingNumber("1e-400")));
  EXPECT_TRUE(IsPlainZero(LeadingNumber("-1e-400")));
  EXPECT_TRUE(IsPlainZero(LeadingNumber("1e-9223372036854775808")));
  EXPECT_EQ(LeadingNumber("5e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(LeadingNumber, HasNoNegativeZero) {
  for (const auto* text : {"-0", "-0.0", "-.0", "-0e5", "-0mm"}) {
    EXPECT_TRUE(IsPlainZero(LeadingNumber(text))) << text;
  }
}

TEST(LeadingNumber, DoesNotKnowInfinityAndNotANumber) {
  for (const auto* text : {"inf", "INF", "-inf", "infinity", "nan", "NaN", "nan(1)", "information"}) {
    EXPECT_TRUE(IsPlainZero(LeadingNumber(text))) << text;
  }
}

// ---- Strict number ----

TEST(StrictNumber, ReadsTextsThatAreANumberAndNothingElse) {
  EXPECT_EQ(StrictNumber("12.5"), 12.5);
  EXPECT_EQ(StrictNumber("-12"), -12.0);
  EXPECT_EQ(StrictNumber("0"), 0.0);
  EXPECT_EQ(StrictNumber(".5"), 0.5);
  EXPECT_EQ(StrictNumber("0.005"), 0.005);
}

TEST(StrictNumber, AcceptsBlanksAroundAPlusATrailingPointAndAnExponent) {
  EXPECT_EQ(StrictNumber(" \t12.5 \t"), 12.5);
  EXPECT_EQ(StrictNumber("+5"), 5.0);
  EXPECT_EQ(StrictNumber("5."), 5.0);
  EXPECT_EQ(StrictNumber("1e1"), 10.0);
  EXPECT_EQ(StrictNumber("1E-05"), 0.00001);
}

TEST(StrictNumber, FailsOnEverythingElse) {
  for (const auto* text :
       {"",    " ",     "abc",   "12mm",  "1,5",  "1,234", "$5",  "5 EUR", "(5)",  "5-",          "--5",
        "+-5", "1 2",   "- 5",   "&H1F",  "0x1F", "1e",    "1e+", "1d3",   ".",    "-",           "+",
        "\n5", "5\r\n", "\"5\"", "1.2.3", "inf",  "-inf",  "nan", "NaN",   "True", "information", "1e1.5"}) {
    EXPECT_EQ(StrictNumber(text), nullopt) << text;
  }
}

TEST(StrictNumber, FailsBeyondTheRange) {
  for (const auto* text : {"1e309", "-1e309", "1e99999", "1e99999999999999999999999", "123456789e301",
                           "0.1e400", "1e2147483647"}) {
    EXPECT_EQ(StrictNumber(text), nullopt) << text;
  }
  EXPECT_EQ(StrictNumber("1" + std::string(400, '0')), nullopt);
  EXPECT_EQ(StrictNumber("1" + std::string(400, '0') + "." + std::string(400, '0')), nullopt);
}

TEST(StrictNumber, FailsBeyondTheRangeForTheLongestExponentsToo) {
  EXPECT_EQ(StrictNumber("1e9223372036854775806"), nullopt);
  EXPECT_EQ(StrictNumber("1e9223372036854775807"), nullopt);
  EXPECT_EQ(StrictNumber("1000e9223372036854775807"), nullopt);
  EXPECT_EQ(StrictNumber("1e9223372036854775808"), nullopt);
}

TEST(StrictNumber, IsZeroForNumbersTooSmallToTell) {
  for (const auto* text : {"1e-400", "-1e-400", "0.0001e-330", "1e-9223372036854775808",
                           "0.1e-9223372036854775808", "0e99999", "-0", "0.0e400"}) {
    const auto value = StrictNumber(text);
    ASSERT_TRUE(value.has_value()) << text;
    EXPECT_TRUE(IsPlainZero(*value)) << text;
  }
  EXPECT_EQ(StrictNumber("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(StrictNumber, TakesALongMantissaAgainstItsExponent) {
  EXPECT_EQ(StrictNumber("0." + std::string(400, '0') + "1e401"), 1.0);
  EXPECT_EQ(StrictNumber("1" + std::string(400, '0') + "e-400"), 1.0);
}

// ---- Flags ----

TEST(StrictBoolean, ReadsTheWordsInAnyCase) {
  for (const auto* text : {"True", "true", "TRUE", "tRuE", " True\t"}) {
    EXPECT_EQ(StrictBoolean(text), true) << text;
  }
  for (const auto* text : {"False", "false", "FALSE", "fAlSe", " False "}) {
    EXPECT_EQ(StrictBoolean(text), false) << text;
  }
}

TEST(StrictBoolean, ReadsNumbersAndAnyButZeroIsTrue) {
  for (const auto* text : {"1", "-1", "2", "0.4", "-0.0001", " 1 ", "+1", "1e-300", "00.1"}) {
    EXPECT_EQ(StrictBoolean(text), true) << text;
  }
  for (const auto* text : {"0", "0.0", "-0", "000", " 0 ", "0e5", "+0"}) {
    EXPECT_EQ(StrictBoolean(text), false) << text;
  }
}

TEST(StrictBoolean, FailsOnOtherTexts) {
  for (const auto* text : {"", " ", "yes", "no", "on", "off", "T", "F", "Truee", "Tru", "2.5abc", "1 1",
                           "wahr", "\"1\"", "\"True\"", "inf", "1e309", "#TRUE#"}) {
    EXPECT_EQ(StrictBoolean(text), nullopt) << text;
  }
}

TEST(LeadingBoolean, IsWhetherTheLeadingNumberIsNotZero) {
  for (const auto* text : {"1", "-1", "2.5abc", "0.4", " 3", "1e-5"}) {
    EXPECT_TRUE(LeadingBoolean(text)) << text;
  }
  for (const auto* text : {"", "0", "abc", "True", "true1", "-0", "0.0x", "0x1", "inf", "nan"}) {
    EXPECT_FALSE(LeadingBoolean(text)) << text;
  }
}

// ---- Half to even ----

TEST(RoundHalfToEven, RoundsTiesToTheEvenNeighbour) {
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(12.5), 12);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(13.5), 14);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(0.5), 0);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(1.5), 2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2.5), 2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-0.5), 0);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-1.5), -2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2.5), -2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-13.5), -14);
}

TEST(RoundHalfToEven, RoundsEverythingElseToTheNearest) {
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(7.0), 7);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2.49), 2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2.51), 3);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2.51), -3);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2.49), -2);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(0.0), 0);
}

TEST(RoundHalfToEven, DecidesOnTheExactValue) {
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(std::nextafter(2.5, 3.0)), 3);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(std::nextafter(13.5, 0.0)), 13);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(0.285 * 100.0 + 0.0), 28);  // just below 28.5
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(std::nextafter(0.5, 0.0)), 0);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-std::nextafter(0.5, 1.0)), -1);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-std::nextafter(0.5, 0.0)), 0);
}

TEST(RoundHalfToEven, FailsBeyond16Bits) {
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(32767.0), std::int16_t{32767});
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(32767.4), std::int16_t{32767});
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(32767.5), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(32768.0), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(-32768.0), std::int16_t{-32768});
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(-32768.5), std::int16_t{-32768});
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(-32769.0), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int16_t>(65536.0), nullopt);
}

TEST(RoundHalfToEven, FailsBeyond32Bits) {
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2147483647.0), 2147483647);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2147483647.5), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(2147483648.0), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2147483648.0), -2147483647 - 1);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2147483648.5), -2147483647 - 1);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-2147483649.0), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(1e300), nullopt);
  EXPECT_EQ(RoundHalfToEven<std::int32_t>(-1e300), nullopt);
}

TEST(RoundHalfToEven, AgreesWithTheProcessorsRounding) {
  std::mt19937 random{3};
  std::uniform_int_distribution<int> quarters{-40000, 40000};
  for (int round = 0; round < 20000; ++round) {
    const double value = quarters(random) / 4.0;
    EXPECT_EQ(RoundHalfToEven<std::int32_t>(value), static_cast<std::int32_t>(std::nearbyint(value)))
        << value;
  }
}

// ---- Arithmetic ----

TEST(ToSingle, GivesTheNearestSingle) {
  EXPECT_EQ(ToSingle(0.5), 0.5F);
  EXPECT_EQ(ToSingle(0.01), 0.01F);
  EXPECT_EQ(ToSingle(16777217.0), 16777216.0F);
  EXPECT_EQ(ToSingle(1e-60), 0.0F);
}

TEST(ToSingle, FailsBeyondTheRangeOfASingle) {
  EXPECT_EQ(ToSingle(3.4028234663852886e38), std::numeric_limits<float>::max());
  EXPECT_EQ(ToSingle(3.40282350e38), std::numeric_limits<float>::max());
  EXPECT_EQ(ToSingle(0x1.ffffffp127), nullopt);  // half a step beyond the largest one
  EXPECT_EQ(ToSingle(3.4028236e38), nullopt);
  EXPECT_EQ(ToSingle(1e39), nullopt);
  EXPECT_EQ(ToSingle(-1e39), nullopt);
}

TEST(Product, IsTheProductOrNothingBeyondTheRange) {
  EXPECT_EQ(Product(2.5, -4.0), -10.0);
  EXPECT_EQ(Product(1e300, 0.0), 0.0);
  EXPECT_EQ(Product(1e200, 1e200), nullopt);
  EXPECT_EQ(Product(-1e200, 1e200), nullopt);
}

TEST(Quotient, IsTheQuotientOrNothing) {
  EXPECT_EQ(Quotient(10.0, -4.0), -2.5);
  EXPECT_EQ(Quotient(0.0, 2.0), 0.0);
  EXPECT_EQ(Quotient(1.0, 0.0), nullopt);
  EXPECT_EQ(Quotient(1.0, -0.0), nullopt);
  EXPECT_EQ(Quotient(0.0, 0.0), nullopt);
  EXPECT_EQ(Quotient(1e300, 1e-300), nullopt);
}

// ---- Writing ----

TEST(FlagText, IsOneOrZero) {
  EXPECT_EQ(FlagText(true), "1");
  EXPECT_EQ(FlagText(false), "0");
}

TEST(WholeText, IsPlainDecimal) {
  EXPECT_EQ(WholeText(0), "0");
  EXPECT_EQ(WholeText(7), "7");
  EXPECT_EQ(WholeText(-12), "-12");
  EXPECT_EQ(WholeText(1234567), "1234567");
  EXPECT_EQ(WholeText(2147483647), "2147483647");
  EXPECT_EQ(WholeText(-2147483647 - 1), "-2147483648");
}

TEST(GeneralText, WritesOrdinaryNumbersPlainly) {
  EXPECT_EQ(GeneralText(0.0), "0");
  EXPECT_EQ(GeneralText(12.0), "12");
  EXPECT_EQ(GeneralText(-12.5), "-12.5");
  EXPECT_EQ(GeneralText(0.25), "0.25");
  EXPECT_EQ(GeneralText(-0.25), "-0.25");
  EXPECT_EQ(GeneralText(164.35), "164.35");
  EXPECT_EQ(GeneralText(1000.0), "1000");
  EXPECT_EQ(GeneralText(300000.0), "300000");
}

TEST(GeneralText, Has15SignificantDigitsWithoutTrailingZeros) {
  EXPECT_EQ(GeneralText(0.1 + 0.2), "0.3");
  EXPECT_EQ(GeneralText(1.0 / 3.0), "0.333333333333333");
  EXPECT_EQ(GeneralText(2.0 / 3.0), "0.666666666666667");
  EXPECT_EQ(GeneralText(100.0 / 3.0), "33.3333333333333");
  EXPECT_EQ(GeneralText(123456789.123456789), "123456789.123457");
  EXPECT_EQ(GeneralText(0.1F), "0.100000001490116");
}

TEST(GeneralText, WritesAnExponentBelowOneTenThousandth) {
  EXPECT_EQ(GeneralText(0.0001), "0.0001");
  EXPECT_EQ(GeneralText(0.00012345), "0.00012345");
  EXPECT_EQ(GeneralText(0.00001), "1E-05");
  EXPECT_EQ(GeneralText(0.000099), "9.9E-05");
  EXPECT_EQ(GeneralText(-0.000025), "-2.5E-05");
  EXPECT_EQ(GeneralText(1.25e-10), "1.25E-10");
  EXPECT_EQ(GeneralText(1e-300), "1E-300");
}

TEST(GeneralText, WritesAnExponentFromATensToTheFifteenthOn) {
  EXPECT_EQ(GeneralText(999999999999999.0), "999999999999999");
  EXPECT_EQ(GeneralText(123456789012345.0), "123456789012345");
  EXPECT_EQ(GeneralText(1e14), "100000000000000");
  EXPECT_EQ(GeneralText(1e15), "1E+15");
  EXPECT_EQ(GeneralText(-1.5e15), "-1.5E+15");
  EXPECT_EQ(GeneralText(1234567890123456.0), "1.23456789012346E+15");
  EXPECT_EQ(GeneralText(1e100), "1E+100");
}

TEST(GeneralText, TheRoundedDigitsDecideWhetherThereIsAnExponent) {
  EXPECT_EQ(GeneralText(999999999999999.25), "999999999999999");
  EXPECT_EQ(GeneralText(999999999999999.875), "1E+15");
  EXPECT_EQ(GeneralText(-999999999999999.875), "-1E+15");
  EXPECT_EQ(GeneralText(std::nextafter(0.0001, 0.0)), "0.0001");
  EXPECT_EQ(GeneralText(0.0000999999999999999), "9.99999999999999E-05");
}

TEST(GeneralText, NeverHasASignBeforeAZero) {
  EXPECT_EQ(GeneralText(-0.0), "0");
}

TEST(PictureText, WholeNumbersAreRoundedHalfAwayFromZero) {
  EXPECT_EQ(PictureText(0.0, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(2.4, NumberPicture::Whole), "2");
  EXPECT_EQ(PictureText(2.5, NumberPicture::Whole), "3");
  EXPECT_EQ(PictureText(3.5, NumberPicture::Whole), "4");
  EXPECT_EQ(PictureText(-2.5, NumberPicture::Whole), "-3");
  EXPECT_EQ(PictureText(500.5, NumberPicture::Whole), "501");
  EXPECT_EQ(PictureText(0.5, NumberPicture::Whole), "1");
  EXPECT_EQ(PictureText(-0.5, NumberPicture::Whole), "-1");
  EXPECT_EQ(PictureText(0.49, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(0.05, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(0.06, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(9.5, NumberPicture::Whole), "10");
  EXPECT_EQ(PictureText(999.5, NumberPicture::Whole), "1000");
}

TEST(PictureText, HundredthsAlwaysHaveTwoDecimals) {
  EXPECT_EQ(PictureText(0.0, NumberPicture::Hundredths), "0.00");
  EXPECT_EQ(PictureText(1.5, NumberPicture::Hundredths), "1.50");
  EXPECT_EQ(PictureText(12.0, NumberPicture::Hundredths), "12.00");
  EXPECT_EQ(PictureText(0.05, NumberPicture::Hundredths), "0.05");
  EXPECT_EQ(PictureText(0.125, NumberPicture::Hundredths), "0.13");
  EXPECT_EQ(PictureText(-0.125, NumberPicture::Hundredths), "-0.13");
  EXPECT_EQ(PictureText(0.004, NumberPicture::Hundredths), "0.00");
  EXPECT_EQ(PictureText(0.005, NumberPicture::Hundredths), "0.01");
  EXPECT_EQ(PictureText(0.0006, NumberPicture::Hundredths), "0.00");
  EXPECT_EQ(PictureText(0.995, NumberPicture::Hundredths), "1.00");
  EXPECT_EQ(PictureText(99.996, NumberPicture::Hundredths), "100.00");
}

TEST(PictureText, RoundsTheDecimalFormThatGeneralTextShows) {
  EXPECT_EQ(PictureText(1.005, NumberPicture::Hundredths), "1.01");
  EXPECT_EQ(PictureText(0.285 * 100.0, NumberPicture::Whole), "29");
  EXPECT_EQ(PictureText(2.675, NumberPicture::Hundredths), "2.68");
  EXPECT_EQ(PictureText(250.0 * 0.01F, NumberPicture::Hundredths), "2.50");
  EXPECT_EQ(PictureText(2.49999999999999, NumberPicture::Whole), "2");
  EXPECT_EQ(PictureText(2.4999999999999996, NumberPicture::Whole), "3");
}

TEST(PictureText, NeverHasASignBeforeAZero) {
  EXPECT_EQ(PictureText(-0.3, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(-0.0, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(-0.004, NumberPicture::Hundredths), "0.00");
  EXPECT_EQ(PictureText(-0.0, NumberPicture::Hundredths), "0.00");
}

TEST(PictureText, WritesAllDigits) {
  EXPECT_EQ(PictureText(1e15, NumberPicture::Whole), "1000000000000000");
  EXPECT_EQ(PictureText(-1.5e20, NumberPicture::Whole), "-150000000000000000000");
  EXPECT_EQ(PictureText(1e20, NumberPicture::Hundredths), "100000000000000000000.00");
  EXPECT_EQ(PictureText(1e-300, NumberPicture::Whole), "0");
  EXPECT_EQ(PictureText(1e-300, NumberPicture::Hundredths), "0.00");
  EXPECT_EQ(PictureText(1e300, NumberPicture::Whole), "1" + std::string(300, '0'));
}

TEST(PictureValue, IsTheNumberThatThePictureShows) {
  EXPECT_EQ(PictureValue(333.33, NumberPicture::Whole), 333.0);
  EXPECT_EQ(PictureValue(-2.5, NumberPicture::Whole), -3.0);
  EXPECT_EQ(PictureValue(2.4999999, NumberPicture::Hundredths), 2.5);
  EXPECT_EQ(PictureValue(1e300, NumberPicture::Whole), 1e300);
  const auto zero = PictureValue(-0.3, NumberPicture::Whole);
  ASSERT_TRUE(zero.has_value());
  EXPECT_TRUE(IsPlainZero(*zero));
}

TEST(PictureValue, IsNothingWhenThePictureLeavesTheRange) {
  EXPECT_EQ(PictureValue(std::numeric_limits<double>::max(), NumberPicture::Whole), nullopt);
}

TEST(PictureWhole, IsThePictureAsAnInteger) {
  EXPECT_EQ(PictureWhole(2.5), 3);
  EXPECT_EQ(PictureWhole(-2.5), -3);
  EXPECT_EQ(PictureWhole(0.285 * 100.0), 29);
  EXPECT_EQ(PictureWhole(-0.3), 0);
}

TEST(PictureWhole, IsNothingBeyond32Bits) {
  EXPECT_EQ(PictureWhole(2147483647.4), 2147483647);
  EXPECT_EQ(PictureWhole(2147483647.5), nullopt);
  EXPECT_EQ(PictureWhole(-2147483648.4), -2147483647 - 1);
  EXPECT_EQ(PictureWhole(-2147483648.5), nullopt);
  EXPECT_EQ(PictureWhole(1e300), nullopt);
}

TEST(NegatedPictureText, HasExactlyOneMinusSign) {
  EXPECT_EQ(NegatedPictureText(13.0), "-13");
  EXPECT_EQ(NegatedPictureText(-13.0), "-13");
  EXPECT_EQ(NegatedPictureText(12.5), "-13");
  EXPECT_EQ(NegatedPictureText(-12.5), "-13");
  EXPECT_EQ(NegatedPictureText(1e15), "-1000000000000000");
}

TEST(NegatedPictureText, KeepsItsSignBeforeAZero) {
  EXPECT_EQ(NegatedPictureText(0.0), "-0");
  EXPECT_EQ(NegatedPictureText(-0.0), "-0");
  EXPECT_EQ(NegatedPictureText(0.4), "-0");
  EXPECT_EQ(NegatedPictureText(-0.4), "-0");
}

// ---- Properties ----

double RandomDouble(std::mt19937_64& random) {
  double value = 0.0;
  do {
    value = std::bit_cast<double>(random());
  } while (!std::isnormal(value));
  return value;
}

// A number of ordinary size, as files hold them: few decimals, often close to a tie.
double OrdinaryNumber(std::mt19937_64& random) {
  std::uniform_int_distribution<std::int64_t> digits{-9'999'999'999, 9'999'999'999};
  std::uniform_int_distribution<int> decimals{0, 6};
  return static_cast<double>(digits(random)) / std::pow(10.0, decimals(random));
}

TEST(NumberTexts, AreReadBackAsTheyWereWritten) {
  std::mt19937_64 random{11};
  for (int round = 0; round < 20000; ++round) {
    const double value = round % 2 == 0 ? RandomDouble(random) : OrdinaryNumber(random);
    const auto text = GeneralText(value);
    const double read = LeadingNumber(text);
    const auto strict = StrictNumber(text);
    if (std::abs(value) > 1.79769313486231e308) {
      continue;  // 15 digits may round up beyond the range
    }
    ASSERT_EQ(strict, read) << text;
    ASSERT_NEAR(read, value, std::abs(value) * 1e-14) << text;
    ASSERT_EQ(GeneralText(read), text);
    ASSERT_EQ(LeadingNumber(text + "mm"), read);
  }
}

// The system library's own printing of 15 digits, brought into the general form.
std::string ReferenceGeneralText(double value) {
  std::array<char, 64> digits{};
  std::snprintf(digits.data(), digits.size(), "%.15g", value);
  std::string text{digits.data()};
  const auto mark = text.find('e');
  if (mark != std::string::npos) {
    text[mark] = 'E';
  }
  return text;
}

TEST(GeneralText, AgreesWithTheSystemLibrary) {
  std::mt19937_64 random{12};
  for (int round = 0; round < 20000; ++round) {
    const double value = round % 2 == 0 ? RandomDouble(random) : OrdinaryNumber(random);
    if (value != 0.0) {
      ASSERT_EQ(GeneralText(value), ReferenceGeneralText(value));
    }
  }
}

// The picture in integers alone: the 15 digits of the value as one integer, times or divided by powers of
// ten. For magnitudes below a million millions.
std::string ReferencePicture(double value, int decimals) {
  std::array<char, 64> digits{};
  std::snprintf(digits.data(), digits.size(), "%.14e", std::abs(value));
  std::string text{digits.data()};
  int shift = std::atoi(text.c_str() + text.find('e') + 1) - 14 + decimals;
  text.erase(text.find('e'));
  text.erase(1, 1);
  auto scaled = std::strtoull(text.c_str(), nullptr, 10);
  for (; shift > 0; --shift) {
    scaled *= 10;
  }
  for (; shift < -1; ++shift) {
    scaled /= 10;  // digits behind the deciding one
  }
  if (shift == -1) {
    scaled = scaled / 10 + (scaled % 10 >= 5 ? 1 : 0);
  }
  std::string plain = std::to_string(scaled);
  if (decimals > 0) {
    plain.insert(0, plain.size() < 3 ? 3 - plain.size() : 0, '0');
    plain.insert(plain.size() - 2, ".");
  }
  return (value < 0.0 && scaled != 0 ? "-" : "") + plain;
}

TEST(PictureText, AgreesWithIntegerArithmetic) {
  std::mt19937_64 random{13};
  std::uniform_int_distribution<std::int64_t> thousandths{-5'000'000, 5'000'000};
  std::uniform_real_distribution<double> exponent{-8.0, 12.0};
  for (int round = 0; round < 30000; ++round) {
    double value = OrdinaryNumber(random);
    if (round % 3 == 0) {
      value = static_cast<double>(thousandths(random)) / 1000.0;
    } else if (round % 3 == 1) {
      value = std::pow(10.0, exponent(random)) * (round % 2 == 0 ? 1.0 : -1.0);
    }
    ASSERT_EQ(PictureText(value, NumberPicture::Whole), ReferencePicture(value, 0)) << value;
    ASSERT_EQ(PictureText(value, NumberPicture::Hundredths), ReferencePicture(value, 2)) << value;
  }
}

TEST(NumberReaders, AgreeOnEveryText) {
  std::mt19937 random{14};
  const std::string alphabet =
      "0123456789..+-eEdx ,\t&H\"\x80"
      "aintf\r";
  std::uniform_int_distribution<std::size_t> letter{0, alphabet.size() - 1};
  std::uniform_int_distribution<std::size_t> length{0, 9};
  int numbers = 0;
  for (int round = 0; round < 60000; ++round) {
    std::string text(length(random), ' ');
    for (auto& character : text) {
      character = alphabet[letter(random)];
    }
    const double leading = LeadingNumber(text);
    ASSERT_TRUE(std::isfinite(leading)) << text;
    ASSERT_TRUE(leading != 0.0 || IsPlainZero(leading)) << text;
    ASSERT_EQ(LeadingBoolean(text), leading != 0.0) << text;
    if (const auto strict = StrictNumber(text)) {
      ++numbers;
      ASSERT_EQ(*strict, leading) << text;
      ASSERT_EQ(StrictBoolean(text), *strict != 0.0) << text;
    }
  }
  EXPECT_GT(numbers, 1000);
}

TEST(NumberReaders, SurviveArbitraryBytes) {
  std::mt19937 random{15};
  std::uniform_int_distribution<int> byte{0, 255};
  for (int round = 0; round < 20000; ++round) {
    std::string text(static_cast<std::size_t>(round % 40), ' ');
    for (auto& character : text) {
      character = static_cast<char>(byte(random));
    }
    ASSERT_TRUE(std::isfinite(LeadingNumber(text)));
    const auto strict = StrictNumber(text);
    ASSERT_TRUE(!strict || *strict == LeadingNumber(text));
    const auto flag = StrictBoolean(text);
    ASSERT_TRUE(!flag || !strict || *flag == (*strict != 0.0));
  }
}

TEST(LeadingNumber, TakesTextsOfManyDigitsInOnePass) {
  const std::string nines(200000, '9');
  EXPECT_EQ(LeadingNumber("0." + nines), 1.0);
  EXPECT_EQ(LeadingNumber(nines), 0.0);
  EXPECT_EQ(LeadingNumber("1e" + nines), 0.0);
  EXPECT_EQ(LeadingNumber("1e-" + nines), 0.0);
}

// ---- Locales ----

TEST(NumberTexts, DoNotDependOnTheLocale) {
  const OtherLocale other;
  EXPECT_EQ(LeadingNumber("1.5"), 1.5);
  EXPECT_EQ(LeadingNumber("1,5"), 1.0);
  EXPECT_EQ(StrictNumber("1234.5"), 1234.5);
  EXPECT_EQ(StrictNumber("1,5"), nullopt);
  EXPECT_EQ(StrictBoolean("FALSE"), false);
  EXPECT_EQ(StrictBoolean("wahr"), nullopt);
  EXPECT_EQ(GeneralText(1234567.25), "1234567.25");
  EXPECT_EQ(GeneralText(0.00001), "1E-05");
  EXPECT_EQ(WholeText(1234567), "1234567");
  EXPECT_EQ(PictureText(1234.5, NumberPicture::Hundredths), "1234.50");
  EXPECT_EQ(PictureText(1234567.5, NumberPicture::Whole), "1234568");
}

}  // namespace
}  // namespace zolvane
