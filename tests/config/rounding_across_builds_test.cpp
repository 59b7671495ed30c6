// Every conversion on a hundred thousand numbers: each build of the program has to give the same results to the last
// bit, as files and instruments are shared between them. The sums were taken from a native build.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "config/conversions.h"

namespace zolvane {
namespace {

// A sum over results in their order, by the method of Fowler, Noll and Vo.
class Sum {
 public:
  void Add(std::string_view bytes) {
    for (const char byte : bytes) {
      Take(static_cast<unsigned char>(byte));
    }
    Take(0);
  }
  void Add(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (int shift = 0; shift < 64; shift += 8) {
      Take(static_cast<unsigned char>(bits >> shift));
    }
  }
  template <class Value>
  void Add(const std::optional<Value>& value) {
    Take(value ? 1 : 0);
    if (value) {
      Add(static_cast<double>(*value));
    }
  }

  std::uint64_t Value() const { return sum_; }

 private:
  void Take(unsigned char byte) { sum_ = (sum_ ^ byte) * 0x100000001B3U; }

  std::uint64_t sum_ = 0xCBF29CE484222325U;
};

constexpr int numberCount = 100'000;

// Digits with a point somewhere among them, as they stand in files; some with an exponent.
std::string DecimalText(std::mt19937_64& random) {
  const auto digits = std::to_string(random() >> (random() % 60));
  std::string text = random() % 2 == 0 ? "-" : "";
  text += digits;
  text.insert(text.size() - static_cast<std::size_t>(random() % (digits.size() + 1)), ".");
  if (random() % 16 == 0) {
    text += "E" + std::to_string(static_cast<int>(random() % 640) - 320);
  }
  return text;
}

// Halves, where two roundings part, in steps of 1, 0.1 and 0.01.
std::string HalfText(std::mt19937_64& random) {
  const auto whole = std::to_string(random() % 40'000);
  const std::array<std::string_view, 4> endings{".5", ".05", ".005", ".995"};
  const std::string ending{endings[static_cast<std::size_t>(random() % endings.size())]};
  const std::string sign = random() % 2 == 0 ? "-" : "";
  return sign + whole + ending;
}

const std::vector<std::string>& GeneratedTexts() {
  static const auto texts = [] {
    std::mt19937_64 random{20'030'711};
    std::vector<std::string> made;
    for (int number = 0; number < numberCount; ++number) {
      made.push_back(number % 4 == 0 ? HalfText(random) : DecimalText(random));
    }
    return made;
  }();
  return texts;
}

// Numbers of any size in any bits.
const std::vector<double>& Numbers() {
  static const auto numbers = [] {
    std::mt19937_64 random{19'991'102};
    std::vector<double> made;
    for (const auto& text : GeneratedTexts()) {
      const auto bits = std::bit_cast<double>(random());
      made.push_back(random() % 4 == 0 && std::isfinite(bits) ? bits : LeadingNumber(text));
    }
    return made;
  }();
  return numbers;
}

template <class Convert>
std::uint64_t SumOverTexts(Convert convert) {
  Sum sum;
  for (const auto& text : GeneratedTexts()) {
    sum.Add(convert(text));
  }
  return sum.Value();
}

template <class Convert>
std::uint64_t SumOverNumbers(Convert convert) {
  Sum sum;
  for (const double number : Numbers()) {
    sum.Add(convert(number));
  }
  return sum.Value();
}

// Neighbours, so that both sides have all sizes.
template <class Combine>
std::uint64_t SumOverPairs(Combine combine) {
  Sum sum;
  for (std::size_t number = 1; number < Numbers().size(); ++number) {
    sum.Add(combine(Numbers()[number - 1], Numbers()[number]));
  }
  return sum.Value();
}

TEST(RoundingAcrossBuilds, ReadsTheSameNumbers) {
  EXPECT_EQ(SumOverTexts(LeadingNumber), 0x3DE55EF37BDB3EC8U);
  EXPECT_EQ(SumOverTexts(StrictNumber), 0x1C9190A1F84093E0U);
}

TEST(RoundingAcrossBuilds, RoundsToTheSameNumbers) {
  EXPECT_EQ(SumOverNumbers(RoundHalfToEven<std::int16_t>), 0x5911D9BFF4D44677U);
  EXPECT_EQ(SumOverNumbers(RoundHalfToEven<std::int32_t>), 0xD9C2FB8E2E42251AU);
  EXPECT_EQ(SumOverNumbers(ToSingle), 0x985387EB46BDA550U);
}

TEST(RoundingAcrossBuilds, MultipliesAndDividesToTheSameNumbers) {
  EXPECT_EQ(SumOverPairs(Product), 0x080FFA7610DCE516U);
  EXPECT_EQ(SumOverPairs(Quotient), 0xC4BD44E692E64DD3U);
  // As the operations chain them: a single-precision scale, and a picture of what comes out.
  EXPECT_EQ(SumOverPairs([](double scale, double value) {
              const auto product = Product(ToSingle(scale).value_or(1.0F), value);
              const auto hundredfold = product ? Product(*product, 100) : std::nullopt;
              return hundredfold ? PictureText(*hundredfold, NumberPicture::Whole) : std::string{};
            }),
            0xB454699F491B9901U);
}

TEST(RoundingAcrossBuilds, WritesTheSameTexts) {
  EXPECT_EQ(SumOverNumbers(GeneralText), 0x45E45BE6257611C5U);
  EXPECT_EQ(SumOverNumbers([](double number) { return PictureText(number, NumberPicture::Whole); }),
            0x3AEC0177B7E71CB5U);
  EXPECT_EQ(SumOverNumbers([](double number) { return PictureText(number, NumberPicture::Hundredths); }),
            0xBC5A4CB30BE89AABU);
  EXPECT_EQ(SumOverNumbers(NegatedPictureText), 0x4C2C5E8AAA27028CU);
}

TEST(RoundingAcrossBuilds, ReadsTheSameNumbersBackFromPictures) {
  EXPECT_EQ(SumOverNumbers([](double number) { return PictureValue(number, NumberPicture::Whole); }),
            0x0CFE0911A8FB3952U);
  EXPECT_EQ(SumOverNumbers([](double number) { return PictureValue(number, NumberPicture::Hundredths); }),
            0x7AEDDDD1EF0FAE65U);
  EXPECT_EQ(SumOverNumbers(PictureWhole), 0x79207B73C89D3867U);
}

}  // namespace
}  // namespace zolvane
