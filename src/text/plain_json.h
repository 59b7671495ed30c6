// Structures from JSON in its plainest spelling, after their lists of members: no blanks, no escapes, ASCII, whole
// numbers. That is what we write ourselves nearly always, and to read it without a document in between takes a tenth
// of the time. What is spelled otherwise is declined, not judged: text/json_members.h reads all of JSON.
#pragma once

#include <algorithm>
#include <bitset>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "text/json_members.h"

namespace zolvane {

// Takes what a text begins with; what follows a false is of no use.
class PlainJson {
 public:
  explicit PlainJson(std::string_view text) : rest_{text} {}

  bool IsAtEnd() const { return rest_.empty(); }

  bool Take(std::string& text) {
    const auto taken = TakeText();
    text = taken.value_or(std::string_view{});
    return taken.has_value();
  }

  template <std::integral Number>
  bool Take(Number& number) {
    constexpr std::int64_t largest = std::int64_t{1} << 53;
    const auto digits = rest_.substr(rest_.starts_with('-') ? 1 : 0);
    std::int64_t whole = 0;
    const auto parsed = std::from_chars(rest_.data(), rest_.data() + rest_.size(), whole);
    const bool hasLeadingZero = digits.starts_with('0') && parsed.ptr != digits.data() + 1;
    if (parsed.ec != std::errc{} || hasLeadingZero || whole < -largest || whole > largest ||
        !std::in_range<Number>(whole)) {
      return false;
    }
    rest_.remove_prefix(static_cast<std::size_t>(parsed.ptr - rest_.data()));
    number = static_cast<Number>(whole);
    return true;
  }

  template <class Type>
  bool Take(std::vector<Type>& list) {
    return TakeAll('[', ']', [&] { return Take(list.emplace_back()); });
  }

  template <class Type>
  bool Take(std::map<std::string, Type>& table) {
    return TakeAll('{', '}', [&] {
      const auto name = TakeName();
      return name && Take(table[std::string{*name}]);
    });
  }

  template <HasMembers Struct>
  bool Take(Struct& part) {
    const auto take = [&](const auto&... members) {
      std::bitset<sizeof...(members)> seen;
      const auto takeNext = [&] {
        const auto name = TakeName();
        std::size_t at = 0;
        return name && (TakeNamed(*name, members.Name, part.*members.Place, seen, at++) || ...);
      };
      std::size_t at = 0;
      return TakeAll('{', '}', takeNext) && ((seen.test(at++) || members.Is == Presence::IfAny) && ...);
    };
    return std::apply(take, MembersOf(&part));
  }

 private:
  bool TakeSign(char sign) {
    const bool isThere = rest_.starts_with(sign);
    rest_.remove_prefix(isThere ? 1 : 0);
    return isThere;
  }

  std::optional<std::string_view> TakeText() {
    constexpr auto endsPlainText = [](char sign) {
      return sign < ' ' || sign > '~' || sign == '"' || sign == '\\';
    };
    if (!TakeSign('"')) {
      return std::nullopt;
    }
    const auto size = std::ranges::find_if(rest_, endsPlainText) - rest_.begin();
    const auto text = rest_.substr(0, static_cast<std::size_t>(size));
    rest_.remove_prefix(text.size());
    return TakeSign('"') ? std::optional{text} : std::nullopt;
  }

  std::optional<std::string_view> TakeName() {
    const auto name = TakeText();
    return TakeSign(':') ? name : std::nullopt;
  }

  // Of a member that stands there twice the library says which one counts.
  template <class Type, class Seen>
  bool TakeNamed(std::string_view name, std::string_view member, Type& place, Seen& seen, std::size_t at) {
    if (name != member || seen.test(at)) {
      return false;
    }
    seen.set(at);
    return Take(place);
  }

  template <class TakeOne>
  bool TakeAll(char opening, char closing, const TakeOne& takeOne) {
    if (!TakeSign(opening)) {
      return false;
    }
    if (TakeSign(closing)) {
      return true;
    }
    do {
      if (!takeOne()) {
        return false;
      }
    } while (TakeSign(','));
    return TakeSign(closing);
  }

  std::string_view rest_;
};

// Nothing where the text is no such JSON of that kind.
template <class Type>
std::optional<Type> FromPlainJson(std::string_view text) {
  Type value{};
  PlainJson json{text};
  return json.Take(value) && json.IsAtEnd() ? std::optional{std::move(value)} : std::nullopt;
}

}  // namespace zolvane
