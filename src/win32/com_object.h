// The base of every COM object that is handed out: what each of them has, and its use by name.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cwchar>

#include "win32/com_ptr.h"
#include "win32/counted.h"
#include "win32/guarded.h"
#include "win32/variant.h"

namespace zolvane {

// One member of an object, for callers that only know its name. `Invoke` gets the value of a set, otherwise
// an empty value; it fills `result`, which is never null.
template <class Self>
struct NamedMember {
  const wchar_t* Name;
  DISPID Id;
  WORD Kinds;  // DISPATCH_METHOD and so on: every way in which it may be used
  HRESULT (*Invoke)(Self& self, const Variant& value, VARIANT* result);
};

// Finds a member by name. Fails for unknown names and for named parameters.
template <class Members>
HRESULT FindMember(const Members& members, LPOLESTR* names, UINT count, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) {
    return E_INVALIDARG;
  }
  std::fill_n(ids, count, DISPID_UNKNOWN);
  for (const auto& member : members) {
    if (names[0] != nullptr && _wcsicmp(member.Name, names[0]) == 0) {
      ids[0] = member.Id;
    }
  }
  return ids[0] != DISPID_UNKNOWN && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

template <class Self>
HRESULT InvokeMember(Self& self, const NamedMember<Self>& member, WORD kinds, const DISPPARAMS& parameters,
                     VARIANT* result) {
  constexpr WORD set = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
  const bool isSet = (member.Kinds & kinds & set) != 0;
  if (parameters.cArgs != (isSet ? 1U : 0U)) {
    return DISP_E_BADPARAMCOUNT;
  }
  if (isSet && parameters.rgvarg == nullptr) {
    return E_INVALIDARG;
  }
  const auto value = isSet ? Variant::CopyOf(parameters.rgvarg[0]) : Variant{};
  Variant unwanted;
  VARIANT* const place = result != nullptr ? result : unwanted.Put();
  VariantInit(place);
  return value ? member.Invoke(self, *value, place) : DISP_E_TYPEMISMATCH;
}

template <class Self, class Members>
HRESULT InvokeById(Self& self, const Members& members, DISPID id, WORD kinds, const DISPPARAMS& parameters,
                   VARIANT* result) {
  const auto member = std::find_if(members.begin(), members.end(), [&](const auto& candidate) {
    return candidate.Id == id && (candidate.Kinds & kinds) != 0;
  });
  return member != members.end() ? InvokeMember(self, *member, kinds, parameters, result)
                                 : DISP_E_MEMBERNOTFOUND;
}

// A counted object. What callers by name may use is what its function Members returns; it
// hides the empty one here.
template <class Self, class Interface, class... Others>
class ComObject : public Counted<Self, Interface, IDispatch, Others...> {
 public:
  static const std::array<NamedMember<Self>, 0>& Members() {
    static constexpr std::array<NamedMember<Self>, 0> none{};
    return none;
  }

  // Callers by name get no description of types; the type libraries hold it.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) {
      return E_POINTER;
    }
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info == nullptr) {
      return E_POINTER;
    }
    *info = nullptr;
    return DISP_E_BADINDEX;
  }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return Guarded([&] { return FindMember(Self::Members(), names, count, ids); });
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    return InMember([&](Self& self) {
      return parameters != nullptr ? InvokeById(self, Self::Members(), id, kinds, *parameters, result)
                                   : E_INVALIDARG;
    });
  }

 protected:
  ComObject() = default;
  ~ComObject() = default;

  // Every member runs in this: nothing thrown leaves it, and the object outlives it whatever
  // the host releases meanwhile.
  template <class Body>
  HRESULT InMember(Body body) noexcept {
    auto& self = static_cast<Self&>(*this);
    const ComPtr<Self> alive{&self};
    return Guarded([&] { return body(self); });
  }
};

// Stores a property's value, if there is a place for it.
template <class Value, class Read>
HRESULT Give(Value* place, Read read) {
  if (place == nullptr) {
    return E_POINTER;
  }
  *place = Value{};
  *place = read();
  return S_OK;
}

}  // namespace zolvane
