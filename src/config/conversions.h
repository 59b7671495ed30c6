// Every number and flag text of the system, with its reading and its writing, and both of its roundings.
//
// Two roundings exist and never meet:
// - half to even, when a real becomes an integer directly (RoundHalfToEven): works on the exact value;
// - half away from zero, when a value passes through a number picture (PictureText): works on the decimal
//   form of 15 significant digits, because the file's numbers are decimal texts: 0.285 * 100 is 28.5.
//
// The decimal sign is always "." and nothing depends on a locale: the file travels between machines. No
// function gives a sign before a zero, an infinity or a value that is not a number.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zolvane {

// ---- Reading ----

// The number at the start of the text: leading blanks skipped, the longest prefix that reads as a
// number (sign, digits with one ".", exponent "e" or "E" with digits). 0 without one, and 0
// beyond the range of a double.
double LeadingNumber(std::string_view text);

// The whole text as one number, with blanks around it allowed. Returns nullopt for any other
// text and beyond the range.
std::optional<double> StrictNumber(std::string_view text);

// The words True and False in any case, or a strict number: not zero is true. Returns
// nullopt for any other text.
std::optional<bool> StrictBoolean(std::string_view text);

// True when the leading number is not zero.
bool LeadingBoolean(std::string_view text);

// ---- Rounding and narrowing ----

template <class T>
concept WholeNumber = std::same_as<T, std::int16_t> || std::same_as<T, std::int32_t>;

// The nearest whole number, ties to even. Returns nullopt if it does not fit.
template <WholeNumber T>
std::optional<T> RoundHalfToEven(double value);

// The nearest single-precision value. Returns nullopt beyond its range.
std::optional<float> ToSingle(double value);

// ---- Arithmetic whose faults are values ----

// Returns nullopt if the result is beyond the range of a double.
std::optional<double> Product(double left, double right);

// Returns nullopt for a zero divisor and beyond the range of a double.
std::optional<double> Quotient(double dividend, double divisor);

// ---- Writing ----

std::string FlagText(bool flag);            // "1" or "0"
std::string WholeText(std::int32_t value);  // plain decimal

// General form: at most 15 significant digits, no trailing zeros; below 1e-4 and from 1e15 on
// with an exponent ("1E-05").
std::string GeneralText(double value);

// The pictures "0" and "0.00": rounded half away from zero, all digits written out, never an exponent.
enum class NumberPicture { Whole, Hundredths };
std::string PictureText(double value, NumberPicture picture);

// The number that the picture shows, read back. Returns nullopt if it is beyond the range of a double.
std::optional<double> PictureValue(double value, NumberPicture picture);

// The picture "0", read back as an integer. Returns nullopt if it does not fit.
std::optional<std::int32_t> PictureWhole(double value);

// The picture "-0" of tip-eject values: exactly one minus sign before the rounded
// magnitude, also before a zero.
std::string NegatedPictureText(double value);

}  // namespace zolvane
