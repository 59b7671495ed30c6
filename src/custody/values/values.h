// What a side holds, value by value, and what two sides differ in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

struct Value {
  std::string Name;                 // a key of the instrument, or a place in the file
  std::optional<std::string> Text;  // empty: the side does not know the name
  bool WasAnswered = true;          // false: nothing is known, as the instrument did not answer

  bool operator==(const Value&) const = default;
};

// The bytes are equal, or both are plain decimal numbers of one value: "2.5", "2.50" and "+2.5"; "0" and
// "-0". Numbers of any length are compared digit by digit, so nothing is rounded.
bool SameText(std::string_view left, std::string_view right);

// The same of values that may be unknown: an unknown one is the same as no other.
bool SameValue(const std::optional<std::string>& left, const std::optional<std::string>& right);

enum class NameCase : std::uint8_t { Matters, Ignored };

// The values of a side, in the order in which their names first came. Of several values of one name the last
// counts; the earlier ones are overridden.
class Values {
 public:
  explicit Values(NameCase nameCase = NameCase::Matters) : nameCase_{nameCase} {}

  void Add(Value value);

  // Null if there is no value of that name.
  const Value* Find(std::string_view name) const;

  // Nothing if the value is not known there.
  std::optional<std::string> TextOf(std::string_view name) const;

  const std::vector<Value>& InOrder() const { return values_; }
  const std::vector<Value>& Overridden() const { return overridden_; }

  // The same values in the same order, whatever they have overridden.
  bool operator==(const Values& other) const { return values_ == other.values_; }

 private:
  std::string IndexedAs(std::string_view name) const;

  NameCase nameCase_;
  std::vector<Value> values_;
  std::vector<Value> overridden_;
  std::map<std::string, std::size_t, std::less<>> places_;
};

// The value that a line "SET_CALIBRATION KEY TEXT" sends: its key ends at the first blank. Returns nullopt
// for any other line, "SET_CALIBRATION SAVE" among them.
std::optional<Value> SettingIn(std::string_view line);

enum class DifferenceKind : std::uint8_t { Different, OnlyInA, OnlyInB, NotAnswered };

struct Difference {
  std::string Name;
  std::optional<std::string> A;
  std::optional<std::string> B;
  DifferenceKind Kind = DifferenceKind::Different;
};

// The counts add up to the number of names that either side has.
struct Comparison {
  std::vector<Difference> Differences;  // in the order of A, then what only B has
  std::size_t Same = 0;
  std::size_t Different = 0;
  std::size_t OnlyInA = 0;
  std::size_t OnlyInB = 0;
  std::size_t NotAnswered = 0;
};

// A name that neither side knows is the same on both.
Comparison Compare(const Values& a, const Values& b);

}  // namespace zolvane
