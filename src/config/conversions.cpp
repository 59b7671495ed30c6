#include "config/conversions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "config/text.h"

namespace zolvane {
namespace {

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

std::size_t SkipDigits(std::string_view text, std::size_t position) {
  while (position < text.size() && IsDigit(text[position])) {
    ++position;
  }
  return position;
}

std::size_t SkipSign(std::string_view text, std::size_t position) {
  return position < text.size() && (text[position] == '+' || text[position] == '-') ? position + 1 : position;
}

// The end of the exponent that starts at `position`, or `position` when there is none with digits in it.
std::size_t SkipExponent(std::string_view text, std::size_t position) {
  if (position >= text.size() || (text[position] != 'e' && text[position] != 'E')) {
    return position;
  }
  const auto digits = SkipSign(text, position + 1);
  const auto end = SkipDigits(text, digits);
  return end > digits ? end : position;
}

// The length of the longest prefix that reads as a number; 0 when there is none.
std::size_t NumberLength(std::string_view text) {
  const auto whole = SkipSign(text, 0);
  auto end = SkipDigits(text, whole);
  auto digitCount = end - whole;
  if (end < text.size() && text[end] == '.') {
    const auto fraction = end + 1;
    end = SkipDigits(text, fraction);
    digitCount += end - fraction;
  }
  return digitCount == 0 ? 0 : SkipExponent(text, end);
}

// from_chars reports numbers that are too large and too small alike. Those that are too small are zero: their
// first digit that counts stands behind the decimal point by more than the exponent brings it forward.
bool IsTooSmall(std::string_view number) {
  const auto mark = number.find_first_of("eE");
  const auto mantissa = number.substr(0, mark);
  const auto firstDigit = mantissa.find_first_of("123456789");
  if (firstDigit == std::string_view::npos) {
    return true;
  }
  const auto point = std::min(mantissa.find('.'), mantissa.size());
  auto magnitude = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(firstDigit);
  if (mark != std::string_view::npos) {
    const auto exponent = number.substr(mark + 1);
    const bool isNegative = exponent.starts_with('-');
    std::int64_t size = std::numeric_limits<std::int32_t>::max();
    const auto digits = exponent.substr(SkipSign(exponent, 0));
    std::from_chars(digits.data(), digits.data() + digits.size(), size);
    size = std::min<std::int64_t>(size, std::numeric_limits<std::int32_t>::max());
    magnitude += isNegative ? -size : size;
  }
  return magnitude < 0;
}

// `number` is exactly one number, as NumberLength delimits it.
std::optional<double> ReadNumber(std::string_view number) {
  const auto unsignedPart = number.starts_with('+') ? number.substr(1) : number;
  double value = 0.0;
  const auto result = std::from_chars(unsignedPart.data(), unsignedPart.data() + unsignedPart.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    return IsTooSmall(unsignedPart) ? std::optional{0.0} : std::nullopt;
  }
  return value + 0.0;  // a negative zero becomes a plain one
}

// A value's decimal form of 15 significant digits: 0.d1d2...d15 times ten to the power of `pointPosition`.
constexpr int significantDigits = 15;

struct DecimalForm {
  bool IsNegative = false;
  std::string Digits;
  int PointPosition = 0;
};

DecimalForm ToDecimalForm(double value) {
  std::array<char, 64> buffer{};
  const auto* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                        std::chars_format::scientific, significantDigits - 1)
                              .ptr;
  const std::string_view text{buffer.data(), static_cast<std::size_t>(end - buffer.data())};
  const auto mark = text.find('e');
  DecimalForm form{
      .IsNegative = value < 0.0, .Digits = std::string{text.substr(0, mark)}, .PointPosition = 0};
  std::erase(form.Digits, '.');
  int exponent = 0;
  const auto exponentDigits = text.substr(mark + (text[mark + 1] == '+' ? 2 : 1));
  std::from_chars(exponentDigits.data(), exponentDigits.data() + exponentDigits.size(), exponent);
  form.PointPosition = value == 0.0 ? 1 : exponent + 1;
  return form;
}

void DropTrailingZeros(std::string& digits) {
  const auto last = digits.find_last_not_of('0');
  digits.resize(last == std::string::npos ? 1 : last + 1);
}

// The digits with a point behind the first `pointPosition` of them, zeros filled in as needed.
std::string PlainText(std::string digits, int pointPosition) {
  if (pointPosition <= 0) {
    digits.insert(0, static_cast<std::size_t>(1 - pointPosition), '0');
    pointPosition = 1;
  }
  const auto wholeDigits = static_cast<std::size_t>(pointPosition);
  if (digits.size() <= wholeDigits) {
    return digits.append(wholeDigits - digits.size(), '0');
  }
  return digits.insert(wholeDigits, 1, '.');
}

std::string ExponentText(const std::string& digits, int exponent) {
  std::string text = PlainText(digits, 1);
  text.append(exponent < 0 ? "E-" : "E+");
  const auto size = WholeText(std::abs(exponent));
  return text.append(size.size() < 2 ? 1 : 0, '0').append(size);
}

// Adds one in the last place.
void CarryUp(std::string& digits) {
  const auto lastBelowNine = digits.find_last_not_of('9');
  if (lastBelowNine == std::string::npos) {
    digits.assign(digits.size(), '0').insert(0, 1, '1');
    return;
  }
  ++digits[lastBelowNine];
  std::fill(digits.begin() + static_cast<std::ptrdiff_t>(lastBelowNine) + 1, digits.end(), '0');
}

// All digits down to the last decimal place, rounded half away from zero: value times
// ten to the power `decimals`.
std::string RoundedDigits(const DecimalForm& form, int decimals) {
  const int kept = form.PointPosition + decimals;
  if (kept < 0) {
    return "0";
  }
  std::string digits = form.Digits;
  const auto keptDigits = static_cast<std::size_t>(kept);
  if (keptDigits >= digits.size()) {
    return digits.append(keptDigits - digits.size(), '0');
  }
  const bool roundsUp = digits[keptDigits] >= '5';
  digits.resize(keptDigits);
  if (roundsUp) {
    CarryUp(digits);
  }
  return digits;
}

int DecimalsOf(NumberPicture picture) {
  return picture == NumberPicture::Whole ? 0 : 2;
}

std::string PictureOfMagnitude(const DecimalForm& form, int decimals) {
  std::string digits = RoundedDigits(form, decimals);
  const auto width = static_cast<std::size_t>(decimals) + 1;
  digits.insert(0, digits.size() < width ? width - digits.size() : 0, '0');
  if (decimals > 0) {
    digits.insert(digits.size() - static_cast<std::size_t>(decimals), 1, '.');
  }
  return digits;
}

std::string WithMinus(std::string text) {
  return text.insert(0, 1, '-');
}

bool ShowsZero(std::string_view digits) {
  return digits.find_first_of("123456789") == std::string_view::npos;
}

}  // namespace

double LeadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  const auto length = NumberLength(text);
  return length == 0 ? 0.0 : ReadNumber(text.substr(0, length)).value_or(0.0);
}

std::optional<double> StrictNumber(std::string_view text) {
  const auto number = Trimmed(text);
  const auto length = NumberLength(number);
  return length == 0 || length != number.size() ? std::nullopt : ReadNumber(number);
}

std::optional<bool> StrictBoolean(std::string_view text) {
  const auto word = Trimmed(text);
  if (EqualIgnoringCase(word, "True")) {
    return true;
  }
  if (EqualIgnoringCase(word, "False")) {
    return false;
  }
  const auto number = StrictNumber(word);
  return number ? std::optional{*number != 0.0} : std::nullopt;
}

bool LeadingBoolean(std::string_view text) {
  return LeadingNumber(text) != 0.0;
}

template <WholeNumber T>
std::optional<T> RoundHalfToEven(double value) {
  const double lower = std::floor(value);
  const double rest = value - lower;
  const bool roundsUp = rest > 0.5 || (rest == 0.5 && std::fmod(lower, 2.0) != 0.0);
  const double rounded = roundsUp ? lower + 1.0 : lower;
  if (rounded < std::numeric_limits<T>::min() || rounded > std::numeric_limits<T>::max()) {
    return std::nullopt;
  }
  return static_cast<T>(rounded);
}

template std::optional<std::int16_t> RoundHalfToEven(double value);
template std::optional<std::int32_t> RoundHalfToEven(double value);

std::optional<float> ToSingle(double value) {
  constexpr double firstBeyondSingle =
      0x1.ffffffp127;  // rounds up to infinity; anything below to a finite value
  return std::abs(value) < firstBeyondSingle ? std::optional{static_cast<float>(value)} : std::nullopt;
}

std::optional<double> Product(double left, double right) {
  const double product = left * right;
  return std::isfinite(product) ? std::optional{product} : std::nullopt;
}

std::optional<double> Quotient(double dividend, double divisor) {
  if (divisor == 0.0) {
    return std::nullopt;
  }
  const double quotient = dividend / divisor;
  return std::isfinite(quotient) ? std::optional{quotient} : std::nullopt;
}

std::string FlagText(bool flag) {
  return flag ? "1" : "0";
}

std::string WholeText(std::int32_t value) {
  std::array<char, 16> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string GeneralText(double value) {
  // 1e-4 and the last below 1e15. The rounded digits decide, so that a text read back is written the same.
  constexpr int smallestPlain = -3;
  constexpr int lastPlain = 15;
  DecimalForm form = ToDecimalForm(value);
  DropTrailingZeros(form.Digits);
  const bool isPlain = form.PointPosition >= smallestPlain && form.PointPosition <= lastPlain;
  const std::string text = isPlain ? PlainText(form.Digits, form.PointPosition)
                                   : ExponentText(form.Digits, form.PointPosition - 1);
  return form.IsNegative ? WithMinus(text) : text;
}

std::string PictureText(double value, NumberPicture picture) {
  const DecimalForm form = ToDecimalForm(value);
  const std::string digits = PictureOfMagnitude(form, DecimalsOf(picture));
  return form.IsNegative && !ShowsZero(digits) ? WithMinus(digits) : digits;
}

std::optional<double> PictureValue(double value, NumberPicture picture) {
  return ReadNumber(PictureText(value, picture));
}

std::optional<std::int32_t> PictureWhole(double value) {
  const auto shown = PictureValue(value, NumberPicture::Whole);
  return shown ? RoundHalfToEven<std::int32_t>(*shown) : std::nullopt;
}

std::string NegatedPictureText(double value) {
  return WithMinus(PictureOfMagnitude(ToDecimalForm(value), DecimalsOf(NumberPicture::Whole)));
}

}  // namespace zolvane
