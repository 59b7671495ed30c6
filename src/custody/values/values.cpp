#include "custody/values/values.h"

#include <algorithm>
#include <utility>

#include "config/text.h"
#include "host/instrument_link.h"

namespace zolvane {
namespace {

// A plain decimal number without what does not matter to its value.
struct Decimal {
  bool IsNegative = false;
  std::string_view Whole{};     // without zeros in front
  std::string_view Fraction{};  // without zeros at the end

  bool operator==(const Decimal&) const = default;
};

std::optional<Decimal> DecimalIn(std::string_view text) {
  Decimal number{.IsNegative = text.starts_with('-')};
  text.remove_prefix(number.IsNegative || text.starts_with('+') ? 1 : 0);
  const auto point = std::min(text.find('.'), text.size());
  number.Whole = text.substr(0, point);
  number.Fraction = text.substr(std::min(point + 1, text.size()));
  const auto isDigits = [](std::string_view digits) {
    return digits.find_first_not_of("0123456789") == std::string_view::npos;
  };
  const bool hasDigits = !number.Whole.empty() || !number.Fraction.empty();
  if (!hasDigits || !isDigits(number.Whole) || !isDigits(number.Fraction)) {
    return std::nullopt;
  }
  number.Whole.remove_prefix(std::min(number.Whole.find_first_not_of('0'), number.Whole.size()));
  number.Fraction = number.Fraction.substr(0, number.Fraction.find_last_not_of('0') + 1);
  number.IsNegative = number.IsNegative && !(number.Whole.empty() && number.Fraction.empty());
  return number;
}

}  // namespace

bool SameText(std::string_view left, std::string_view right) {
  if (left == right) {
    return true;
  }
  const auto number = DecimalIn(left);
  return number && number == DecimalIn(right);
}

bool SameValue(const std::optional<std::string>& left, const std::optional<std::string>& right) {
  return left && right ? SameText(*left, *right) : left == right;
}

std::string Values::IndexedAs(std::string_view name) const {
  return nameCase_ == NameCase::Ignored ? UpperCase(name) : std::string{name};
}

void Values::Add(Value value) {
  const auto [place, isNew] = places_.try_emplace(IndexedAs(value.Name), values_.size());
  if (isNew) {
    values_.push_back(std::move(value));
  } else {
    overridden_.push_back(std::exchange(values_[place->second], std::move(value)));
  }
}

const Value* Values::Find(std::string_view name) const {
  const auto place = places_.find(IndexedAs(name));
  return place == places_.end() ? nullptr : &values_[place->second];
}

std::optional<std::string> Values::TextOf(std::string_view name) const {
  const auto* const value = Find(name);
  return value != nullptr && value->WasAnswered ? value->Text : std::nullopt;
}

std::optional<Value> SettingIn(std::string_view line) {
  if (!line.starts_with(settingStart)) {
    return std::nullopt;
  }
  line.remove_prefix(settingStart.size());
  const auto blank = line.find(' ');
  if (blank == std::string_view::npos || blank == 0) {
    return std::nullopt;
  }
  return Value{.Name = std::string{line.substr(0, blank)}, .Text = std::string{line.substr(blank + 1)}};
}

Comparison Compare(const Values& a, const Values& b) {
  Comparison comparison;
  const Value nothing{};
  const auto take = [&](const Value& inA, const Value& inB, const std::string& name) {
    const auto differ = [&](DifferenceKind kind, std::size_t& count) {
      ++count;
      comparison.Differences.push_back({.Name = name, .A = inA.Text, .B = inB.Text, .Kind = kind});
    };
    if (!inA.WasAnswered || !inB.WasAnswered) {
      differ(DifferenceKind::NotAnswered, comparison.NotAnswered);
    } else if (SameValue(inA.Text, inB.Text)) {
      ++comparison.Same;
    } else if (!inB.Text) {
      differ(DifferenceKind::OnlyInA, comparison.OnlyInA);
    } else if (!inA.Text) {
      differ(DifferenceKind::OnlyInB, comparison.OnlyInB);
    } else {
      differ(DifferenceKind::Different, comparison.Different);
    }
  };
  for (const auto& value : a.InOrder()) {
    const auto* const other = b.Find(value.Name);
    take(value, other != nullptr ? *other : nothing, value.Name);
  }
  for (const auto& value : b.InOrder()) {
    if (a.Find(value.Name) == nullptr) {
      take(nothing, value, value.Name);
    }
  }
  return comparison;
}

}  // namespace zolvane
