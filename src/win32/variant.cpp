#include "win32/variant.h"

#include <utility>

#include "win32/text.h"

namespace zolvane {
namespace {

// The system's functions only read it, though not every version of their headers says so.
VARIANT* Unchanged(const VARIANT& value) {
  return const_cast<VARIANT*>(&value);
}

}  // namespace

Variant::Variant(bool value) : Variant{} {
  V_VT(&value_) = VT_BOOL;
  V_BOOL(&value_) = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(std::int16_t value) : Variant{} {
  V_VT(&value_) = VT_I2;
  V_I2(&value_) = value;
}

Variant::Variant(std::string_view text) : Variant{} {
  V_BSTR(&value_) = Bstr(text).Detach();
  V_VT(&value_) = VT_BSTR;
}

Variant::Variant(const wchar_t* text) : Variant{} {
  V_BSTR(&value_) = Bstr(std::wstring_view{text}).Detach();
  V_VT(&value_) = VT_BSTR;
}

std::optional<Variant> Variant::CopyOf(const VARIANT& source) {
  Variant copy;
  if (FAILED(VariantCopyInd(&copy.value_, Unchanged(source)))) {
    return std::nullopt;
  }
  return copy;
}

Variant::Variant(Variant&& other) noexcept : value_{other.value_} {
  VariantInit(&other.value_);
}

Variant& Variant::operator=(Variant&& other) noexcept {
  std::swap(value_, other.value_);
  return *this;
}

VARIANT* Variant::Put() {
  VariantClear(&value_);
  return &value_;
}

std::optional<Variant> Variant::ConvertedTo(VARTYPE type) const {
  Variant converted;
  if (FAILED(VariantChangeTypeEx(&converted.value_, Unchanged(value_), LOCALE_INVARIANT, 0, type))) {
    return std::nullopt;
  }
  return converted;
}

std::optional<bool> Variant::ToBool() const {
  const auto converted = ConvertedTo(VT_BOOL);
  return converted ? std::optional{V_BOOL(&converted->value_) != VARIANT_FALSE} : std::nullopt;
}

std::optional<std::int16_t> Variant::ToInt16() const {
  const auto converted = ConvertedTo(VT_I2);
  return converted ? std::optional<std::int16_t>{V_I2(&converted->value_)} : std::nullopt;
}

std::optional<std::string> Variant::ToText() const {
  const auto converted = ConvertedTo(VT_BSTR);
  return converted ? std::optional{Utf8FromBstr(V_BSTR(&converted->value_))} : std::nullopt;
}

ComPtr<IDispatch> Variant::ToObject() const {
  const auto direct = CopyOf(value_);
  if (!direct) {
    return {};
  }
  switch (V_VT(&direct->value_)) {
    case VT_DISPATCH:
      return ComPtr<IDispatch>{V_DISPATCH(&direct->value_)};
    case VT_UNKNOWN:
      return ComPtr<IUnknown>{V_UNKNOWN(&direct->value_)}.As<IDispatch>();
    default:
      return {};
  }
}

}  // namespace zolvane
