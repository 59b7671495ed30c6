// Structures as JSON and back, after their lists of members (text/members.h). Texts are kept byte for byte
// (text/byte_text.h).
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "text/byte_text.h"
#include "text/json_text.h"
#include "text/members.h"

namespace zolvane {

template <class Struct>
concept HasMembers = requires(const Struct* part) { MembersOf(part); };

// ---- Writing ----

inline Json JsonOf(const std::string& text) {
  return TextOfBytes(text);
}

// A flag, too.
template <std::integral Number>
Json JsonOf(Number number) {
  return number;
}

template <class Type>
Json JsonOf(const std::optional<Type>& value);
template <class Type>
Json JsonOf(const std::vector<Type>& list);
template <class Type>
Json JsonOf(const std::vector<std::pair<std::string, Type>>& table);
template <class Type>
Json JsonOf(const std::map<std::string, Type>& table);

template <HasMembers Struct>
Json JsonOf(const Struct& part) {
  auto object = Json::object();
  const Struct empty{};
  const auto write = [&](const auto& member) {
    const auto& value = part.*member.Place;
    if (member.Is == Presence::Always || !(value == empty.*member.Place)) {
      object[member.Name] = JsonOf(value);
    }
  };
  std::apply([&write](const auto&... members) { (write(members), ...); }, MembersOf(&part));
  return object;
}

template <class Type>
Json JsonOf(const std::optional<Type>& value) {
  return value ? JsonOf(*value) : Json();
}

template <class Type>
Json JsonOf(const std::vector<Type>& list) {
  auto array = Json::array();
  for (const auto& value : list) {
    array.push_back(JsonOf(value));
  }
  return array;
}

// Of pairs of names and values.
template <class Table>
Json ObjectOf(const Table& table) {
  auto object = Json::object();
  for (const auto& [name, value] : table) {
    object[TextOfBytes(name)] = JsonOf(value);
  }
  return object;
}

template <class Type>
Json JsonOf(const std::vector<std::pair<std::string, Type>>& table) {
  return ObjectOf(table);
}

template <class Type>
Json JsonOf(const std::map<std::string, Type>& table) {
  return ObjectOf(table);
}

// ---- Reading: false if the JSON is of another kind, or lacks a member that is always there. Members that nobody
// knows are passed over ----

inline bool Take(const Json& from, std::string& text) {
  text = from.is_string() ? BytesOfText(from.get_ref<const std::string&>()) : std::string{};
  return from.is_string();
}

inline bool Take(const Json& from, bool& flag) {
  flag = from.is_boolean() && from.get<bool>();
  return from.is_boolean();
}

// Only whole numbers that every reader of JSON takes as they are.
template <std::integral Number>
bool Take(const Json& from, Number& number) {
  constexpr std::int64_t largest = std::int64_t{1} << 53;
  const bool isWhole = from.is_number_unsigned()
                           ? from.get<std::uint64_t>() <= std::uint64_t{largest}
                           : from.is_number_integer() && from.get<std::int64_t>() >= -largest;
  if (!isWhole || !std::in_range<Number>(from.get<std::int64_t>())) {
    return false;
  }
  number = static_cast<Number>(from.get<std::int64_t>());
  return true;
}

template <class Type>
bool Take(const Json& from, std::optional<Type>& value);
template <class Type>
bool Take(const Json& from, std::vector<Type>& list);
template <class Type>
bool Take(const Json& from, std::map<std::string, Type>& table);

template <HasMembers Struct>
bool Take(const Json& from, Struct& part) {
  bool isGood = from.is_object();
  const auto read = [&](const auto& member) {
    const auto found = isGood ? from.find(member.Name) : from.end();
    isGood = found == from.end() ? isGood && member.Is == Presence::IfAny : Take(*found, part.*member.Place);
  };
  std::apply([&read](const auto&... members) { (read(members), ...); }, MembersOf(&part));
  return isGood;
}

template <class Type>
bool Take(const Json& from, std::optional<Type>& value) {
  return Take(from, value.emplace());
}

template <class Type>
bool Take(const Json& from, std::vector<Type>& list) {
  bool isGood = from.is_array();
  for (std::size_t at = 0; isGood && at < from.size(); ++at) {
    isGood = Take(from[at], list.emplace_back());
  }
  return isGood;
}

template <class Type>
bool Take(const Json& from, std::map<std::string, Type>& table) {
  bool isGood = from.is_object();
  for (auto member = from.begin(); isGood && member != from.end(); ++member) {
    isGood = Take(*member, table[BytesOfText(member.key())]);
  }
  return isGood;
}

// Nothing unless the text is JSON of that kind.
template <class Type>
std::optional<Type> FromJson(std::string_view text) {
  Type value{};
  return Take(ParsedJson(text), value) ? std::optional{std::move(value)} : std::nullopt;
}

}  // namespace zolvane
