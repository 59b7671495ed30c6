#include "bench/windows/com/offered_object.h"

#include <atomic>
#include <cwchar>
#include <utility>

#include "win32/com_object.h"
#include "win32/text.h"
#include "win32/variant.h"

namespace zolvane {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): counts over the whole process
std::atomic<long> alive{0};

constexpr WORD setKinds = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

std::optional<Variant> Direct(const MemberUse& use, std::size_t index) {
  return index < use.Arguments.size() ? Variant::CopyOf(*use.Arguments[index]) : std::nullopt;
}

class OfferedObject final : public ComObject<OfferedObject, IDispatch> {
 public:
  explicit OfferedObject(std::vector<OfferedMember> members) : members_{std::move(members)} { ++alive; }
  ~OfferedObject() { --alive; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;

 private:
  const OfferedMember* Member(DISPID id) const;

  std::vector<OfferedMember> members_;
};

HRESULT OfferedObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count != 1) {
    return E_INVALIDARG;
  }
  for (std::size_t index = 0; index < members_.size(); ++index) {
    if (_wcsicmp(members_[index].Name, names[0]) == 0) {
      *ids = static_cast<DISPID>(index) + 1;
      return S_OK;
    }
  }
  *ids = DISPID_UNKNOWN;
  return DISP_E_UNKNOWNNAME;
}

// A member's number is its position, from 1. The default member also has the system's number for it.
const OfferedMember* OfferedObject::Member(DISPID id) const {
  for (std::size_t index = 0; index < members_.size(); ++index) {
    const bool isDefault = id == DISPID_VALUE && *members_[index].Name == L'\0';
    if (isDefault || id == static_cast<DISPID>(index) + 1) {
      return &members_[index];
    }
  }
  return nullptr;
}

HRESULT OfferedObject::Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
                              EXCEPINFO*, UINT*) {
  return InMember([&](const OfferedObject& self) {
    const auto* const member = self.Member(id);
    if (member == nullptr || (member->Kinds & kinds) == 0) {
      return DISP_E_MEMBERNOTFOUND;
    }
    if (parameters == nullptr) {
      return E_INVALIDARG;
    }
    Variant unwanted;
    MemberUse use{.Arguments = {}, .IsSet = (kinds & setKinds) != 0, .Result = unwanted.Put()};
    if (result != nullptr) {
      VariantInit(result);
      use.Result = result;
    }
    for (UINT last = parameters->cArgs; last > 0; --last) {
      use.Arguments.push_back(&parameters->rgvarg[last - 1]);
    }
    return member->Run(use);
  });
}

}  // namespace

std::optional<bool> MemberUse::BoolAt(std::size_t index) const {
  const auto value = Direct(*this, index);
  return value ? value->ToBool() : std::nullopt;
}

std::optional<std::int16_t> MemberUse::Int16At(std::size_t index) const {
  const auto value = Direct(*this, index);
  return value ? value->ToInt16() : std::nullopt;
}

std::optional<std::int32_t> MemberUse::Int32At(std::size_t index) const {
  const auto value = Direct(*this, index);
  if (!value) {
    return std::nullopt;
  }
  VARIANT source = value->Get();  // stays the argument's
  Variant number;
  const HRESULT changed = VariantChangeType(number.Put(), &source, 0, VT_I4);
  return SUCCEEDED(changed) ? std::optional{static_cast<std::int32_t>(V_I4(&number.Get()))} : std::nullopt;
}

std::optional<std::string> MemberUse::TextAt(std::size_t index) const {
  const auto value = Direct(*this, index);
  return value ? value->ToText() : std::nullopt;
}

BSTR* MemberUse::TextVariableAt(std::size_t index) const {
  const bool isVariable = index < Arguments.size() && V_VT(Arguments[index]) == (VT_BYREF | VT_BSTR);
  return isVariable ? V_BSTRREF(Arguments[index]) : nullptr;
}

HRESULT MemberUse::Give(std::optional<bool> value) const {
  if (!value) {
    return E_FAIL;
  }
  V_VT(Result) = VT_BOOL;
  V_BOOL(Result) = *value ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT MemberUse::Give(std::optional<std::int16_t> value) const {
  if (!value) {
    return E_FAIL;
  }
  V_VT(Result) = VT_I2;
  V_I2(Result) = *value;
  return S_OK;
}

HRESULT MemberUse::Give(std::optional<std::int32_t> value) const {
  if (!value) {
    return E_FAIL;
  }
  V_VT(Result) = VT_I4;
  V_I4(Result) = *value;
  return S_OK;
}

HRESULT MemberUse::Give(const std::optional<std::string>& value) const {
  if (!value) {
    return E_FAIL;
  }
  V_BSTR(Result) = Bstr(*value).Detach();
  V_VT(Result) = VT_BSTR;
  return S_OK;
}

HRESULT MemberUse::Give(ComPtr<IDispatch> object) const {
  V_VT(Result) = VT_DISPATCH;
  V_DISPATCH(Result) = object.Detach();
  return S_OK;
}

ComPtr<IDispatch> Offer(std::vector<OfferedMember> members) {
  return OfferedObject::Make(std::move(members)).As<IDispatch>();
}

long OfferedObjectsAlive() {
  return alive;
}

}  // namespace zolvane
