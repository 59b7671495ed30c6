// A value as late-bound calls pass it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "win32/com_ptr.h"

namespace zolvane {

class Variant {
 public:
  Variant() = default;  // empty
  explicit Variant(bool value);
  explicit Variant(std::int16_t value);
  explicit Variant(std::string_view text);
  explicit Variant(const wchar_t* text);

  // A copy of the value, even if `source` only refers to it. Returns nullopt if it cannot be copied.
  static std::optional<Variant> CopyOf(const VARIANT& source);

  Variant(Variant&& other) noexcept;
  Variant& operator=(Variant&& other) noexcept;
  ~Variant() { VariantClear(&value_); }

  const VARIANT& Get() const { return value_; }
  VARIANT* Put();

  // The value as the type asked for, converted if the system knows how, else nullopt. Conversions do not
  // depend on the user's locale.
  std::optional<bool> ToBool() const;
  std::optional<std::int16_t> ToInt16() const;
  std::optional<std::string> ToText() const;

  // The object as callers by name use it. Empty if the value is no object, or one
  // that cannot be used by name.
  ComPtr<IDispatch> ToObject() const;

 private:
  std::optional<Variant> ConvertedTo(VARTYPE type) const;

  VARIANT value_{};
};

}  // namespace zolvane
