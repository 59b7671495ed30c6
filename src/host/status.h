// How failures travel in the add-in, and how they are let pass.
//
// A step that fails is passed over: its target keeps the value it had, and the operation goes on.
// A step is let pass in one of three ways, all of them here, so that it can be found by name:
//   AssignIf(target, value)   convert and store, or keep the old value
//   PassOver(status)          a call whose failure has no consequence
//   MetOnlyIf(condition)      a condition that could not be read counts as not met
// A text of a file that could not be read is empty or left out where it is read, and the comment there says so.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

namespace zolvane {

// The outcome of a host call that returns nothing else. The code is the host's own number and is never
// interpreted; it is kept so that the shell can hand it back to the host.
class [[nodiscard]] Status {
 public:
  static constexpr std::int32_t genericFailure = -1;

  static constexpr Status Success() { return Status{0}; }
  static constexpr Status Failure(std::int32_t code = genericFailure) { return Status{code}; }

  constexpr bool Ok() const { return code_ == 0; }
  constexpr std::int32_t Code() const { return code_; }

  // The outcome of the next step, or this failure without taking it.
  template <class Step>
  constexpr Status Then(Step step) const {
    return Ok() ? step() : *this;
  }

 private:
  explicit constexpr Status(std::int32_t code) : code_{code} {}
  std::int32_t code_;
};

// Lets a failure pass. Dropping a Status without it does not compile.
constexpr void PassOver(const Status&) {}

template <class T>
constexpr void PassOver(const std::optional<T>&) {}

// Stores the value if there is one. Both sides have the same type, so a narrowing
// assignment does not compile.
template <class T>
constexpr void AssignIf(T& target, std::optional<T> value) {
  if (value) {
    target = *std::move(value);
  }
}

// True only when the condition could be read and holds.
constexpr bool MetOnlyIf(std::optional<bool> condition) {
  return condition.value_or(false);
}

}  // namespace zolvane
