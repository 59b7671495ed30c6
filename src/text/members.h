// What a structure consists of, told once: what is written of it and what is read into it follow from one list.
//
//   constexpr auto MembersOf(const Value*) {
//     return std::tuple{Member{"name", &Value::Name, Presence::Always}, Member{"text", &Value::Text}};
//   }
#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

namespace zolvane {

// A member that is not always there is left out where it says nothing: where it is as in a structure that nobody
// has filled in.
enum class Presence : std::uint8_t { IfAny, Always };

template <class Struct, class Type>
struct Member {
  std::string_view Name;
  Type Struct::* Place;
  Presence Is = Presence::IfAny;
};

template <class Struct, class Type>
Member(const char*, Type Struct::*) -> Member<Struct, Type>;
template <class Struct, class Type>
Member(const char*, Type Struct::*, Presence) -> Member<Struct, Type>;

}  // namespace zolvane
