// The forms in which a record's members stand in the settings file: each reads a text into a member's type
// and writes it back, with both directions next to each other.
//
// Strict forms take a text only if all of it converts; Leading forms take the number at its start, or else 0.
//
// Read returns nullopt if the text does not convert; the member then keeps its value. Write returns nullopt
// if the value has no file units, as with a zero factor; the piece of the line then stays empty. A form
// without Write belongs to members that are never saved. Values says which texts convert.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/conversions.h"
#include "config/step_factors.h"
#include "config/text.h"

namespace zolvane {

enum class ValueKind : std::uint8_t { Text, Flag, Whole, Real };

// Which texts convert, and to what.
struct ValueTexts {
  std::string_view ForPeople;
  ValueKind Kind;
  bool MayGoOn = false;  // of a number: what stands behind it is passed over
};

struct BareText {
  static constexpr ValueTexts Values{"text", ValueKind::Text};
  static std::optional<std::string> Read(std::string_view text, const StepFactors&) {
    return std::string{text};
  }
  static std::optional<std::string> Write(const std::string& text, const StepFactors&) { return text; }
};

// Written in double quotes; every double quote is dropped on reading.
struct QuotedText {
  static constexpr ValueTexts Values{"text in double quotes", ValueKind::Text};
  static std::optional<std::string> Read(std::string_view text, const StepFactors&) {
    return WithoutQuotes(text);
  }
  static std::optional<std::string> Write(const std::string& text, const StepFactors&) {
    return InQuotes(text);
  }
};

// A flag that fails to load unless it is a word or a number.
struct StrictFlag {
  static constexpr ValueTexts Values{"1 or 0, True or False", ValueKind::Flag};
  static std::optional<bool> Read(std::string_view text, const StepFactors&) { return StrictBoolean(text); }
  static std::optional<std::string> Write(bool flag, const StepFactors&) { return FlagText(flag); }
};

// A flag that always loads: a leading number that is not zero is true.
struct LeadingFlag {
  static constexpr ValueTexts Values{"1 or 0", ValueKind::Flag};
  static std::optional<bool> Read(std::string_view text, const StepFactors&) { return LeadingBoolean(text); }
  static std::optional<std::string> Write(bool flag, const StepFactors&) { return FlagText(flag); }
};

// The opposite of the flag in the line.
struct NegatedFlag {
  static constexpr ValueTexts Values = StrictFlag::Values;
  static std::optional<bool> Read(std::string_view text, const StepFactors&) {
    const auto flag = StrictBoolean(text);
    return flag ? std::optional{!*flag} : std::nullopt;
  }
};

struct LeadingReal {
  static constexpr ValueTexts Values{"number", ValueKind::Real, true};
  static std::optional<double> Read(std::string_view text, const StepFactors&) { return LeadingNumber(text); }
  static std::optional<std::string> Write(double value, const StepFactors&) { return GeneralText(value); }
};

struct StrictReal {
  static constexpr ValueTexts Values{"number alone", ValueKind::Real};
  static std::optional<double> Read(std::string_view text, const StepFactors&) { return StrictNumber(text); }
  static std::optional<std::string> Write(double value, const StepFactors&) { return GeneralText(value); }
};

struct StrictSingle {
  static constexpr ValueTexts Values = StrictReal::Values;
  static std::optional<float> Read(std::string_view text, const StepFactors&) {
    const auto value = StrictNumber(text);
    return value ? ToSingle(*value) : std::nullopt;
  }
};

// A leading number, rounded half to even.
template <WholeNumber T>
struct LeadingWhole {
  static constexpr ValueTexts Values{sizeof(T) == 2 ? "whole, -32768 to 32767" : "whole, 32 bits",
                                     ValueKind::Whole, true};
  static std::optional<T> Read(std::string_view text, const StepFactors&) {
    return RoundHalfToEven<T>(LeadingNumber(text));
  }
  static std::optional<std::string> Write(T value, const StepFactors&) { return WholeText(value); }
};

// A strict number, rounded half to even.
template <WholeNumber T>
struct StrictWhole {
  static constexpr ValueTexts Values{sizeof(T) == 2 ? "whole alone, -32768 to 32767" : "whole alone, 32 bits",
                                     ValueKind::Whole};
  static std::optional<T> Read(std::string_view text, const StepFactors&) {
    const auto value = StrictNumber(text);
    return value ? RoundHalfToEven<T>(*value) : std::nullopt;
  }
  static std::optional<std::string> Write(T value, const StepFactors&) { return WholeText(value); }
};

using LeadingShort = LeadingWhole<std::int16_t>;
using LeadingLong = LeadingWhole<std::int32_t>;
using StrictShort = StrictWhole<std::int16_t>;
using StrictLong = StrictWhole<std::int32_t>;

// Serial-dilute XY steps on their way to the file: whole file units, rounded half away from zero.
struct SDStepsWriting {
  static constexpr ValueTexts Values = LeadingReal::Values;
  static std::optional<std::string> Write(std::int32_t steps, const StepFactors& factors) {
    const auto units = Quotient(steps, factors.SDXY);
    return units ? std::optional{PictureText(*units, NumberPicture::Whole)} : std::nullopt;
  }
};

// Serial-dilute XY steps, rounded half to even on loading.
struct SDSteps : SDStepsWriting {
  static std::optional<std::int32_t> Read(std::string_view text, const StepFactors& factors) {
    const auto steps = Product(LeadingNumber(text), factors.SDXY);
    return steps ? RoundHalfToEven<std::int32_t>(*steps) : std::nullopt;
  }
};

// Serial-dilute XY steps, rounded half away from zero on loading.
struct SDStepsByPicture : SDStepsWriting {
  static std::optional<std::int32_t> Read(std::string_view text, const StepFactors& factors) {
    const auto steps = Product(LeadingNumber(text), factors.SDXY);
    return steps ? PictureWhole(*steps) : std::nullopt;
  }
};

// Z steps of a nest: millimetres with two decimals in the file.
struct NestZSteps {
  static constexpr ValueTexts Values = LeadingReal::Values;
  static std::optional<std::int32_t> Read(std::string_view text, const StepFactors& factors) {
    const auto steps = Quotient(LeadingNumber(text), factors.Z);
    return steps ? PictureWhole(*steps) : std::nullopt;
  }
  static std::optional<std::string> Write(std::int32_t steps, const StepFactors& factors) {
    const auto millimetres = Product(steps, factors.Z);
    return millimetres ? std::optional{PictureText(*millimetres, NumberPicture::Hundredths)} : std::nullopt;
  }
};

// A head offset: strict millimetres in the file, whole motor steps of the given axis in memory.
template <double StepFactors::* Factor>
struct OffsetSteps {
  static constexpr ValueTexts Values = StrictReal::Values;
  static std::optional<double> Read(std::string_view text, const StepFactors& factors) {
    const auto millimetres = StrictNumber(text);
    const auto steps = millimetres ? Quotient(*millimetres, factors.*Factor) : std::nullopt;
    return steps ? PictureValue(*steps, NumberPicture::Whole) : std::nullopt;
  }
};

}  // namespace zolvane
