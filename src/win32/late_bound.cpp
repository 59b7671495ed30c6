#include "win32/late_bound.h"

#include <vector>

#include "win32/guarded.h"

namespace zolvane {
namespace {

constexpr WORD readKinds = DISPATCH_PROPERTYGET | DISPATCH_METHOD;

// What a member says about an error that it raised. Only the number is used.
struct Exception {
  EXCEPINFO Info{};

  Exception() = default;
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;
  ~Exception() {
    SysFreeString(Info.bstrSource);
    SysFreeString(Info.bstrDescription);
    SysFreeString(Info.bstrHelpFile);
  }

  HRESULT Code() {
    if (Info.pfnDeferredFillIn != nullptr) {
      Info.pfnDeferredFillIn(&Info);
    }
    return FAILED(Info.scode) ? Info.scode : DISP_E_EXCEPTION;
  }
};

}  // namespace

std::optional<DISPID> LateBound::Find(const wchar_t* name) const {
  auto* names = const_cast<LPOLESTR>(name);  // only read: the parameter goes in
  DISPID member = DISPID_UNKNOWN;
  if (!object_ || FAILED(object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member))) {
    return std::nullopt;
  }
  return member;
}

Status LateBound::Invoke(DISPID member, WORD kind, DISPPARAMS& parameters, Variant* result) const {
  const ComPtr<IDispatch> object{object_};  // what the call does may drop the owner of this
  Exception exception;
  UINT badArgument = 0;
  const HRESULT called =
      object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                     result != nullptr ? result->Put() : nullptr, &exception.Info, &badArgument);
  return ToStatus(called == DISP_E_EXCEPTION ? exception.Code() : called);
}

std::optional<Variant> LateBound::Read(const wchar_t* name) const {
  const auto member = Find(name);
  DISPPARAMS none{};
  Variant result;
  if (!member || !Invoke(*member, readKinds, none, &result).Ok()) {
    return std::nullopt;
  }
  return result;
}

LateBound LateBound::ReadObject(const wchar_t* name) const {
  const auto value = Read(name);
  return LateBound{value ? value->ToObject() : ComPtr<IDispatch>{}};
}

std::optional<Variant> LateBound::ReadIndexed(DISPID member, const wchar_t* key) const {
  const Variant keyText{key};
  VARIANT argument = keyText.Get();
  DISPPARAMS parameters{&argument, nullptr, 1, 0};
  Variant result;
  if (!object_ || !Invoke(member, readKinds, parameters, &result).Ok()) {
    return std::nullopt;
  }
  return result;
}

LateBound LateBound::ReadItem(const wchar_t* collection, const wchar_t* key) const {
  if (const auto member = Find(collection)) {
    const auto value = ReadIndexed(*member, key);
    if (auto item = value ? value->ToObject() : ComPtr<IDispatch>{}) {
      return LateBound{std::move(item)};
    }
  }
  const auto item = ReadObject(collection).ReadIndexed(DISPID_VALUE, key);
  return LateBound{item ? item->ToObject() : ComPtr<IDispatch>{}};
}

Status LateBound::Write(const wchar_t* name, const Variant& value) const {
  const auto member = Find(name);
  if (!member) {
    return Status::Failure(DISP_E_UNKNOWNNAME);
  }
  VARIANT argument = value.Get();
  DISPID isPut = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&argument, &isPut, 1, 1};
  return Invoke(*member, DISPATCH_PROPERTYPUT, parameters, nullptr);
}

Status LateBound::Call(const wchar_t* name, std::span<const VARIANT> arguments, Variant* result) const {
  const auto member = Find(name);
  if (!member) {
    return Status::Failure(DISP_E_UNKNOWNNAME);
  }
  std::vector<VARIANT> lastFirst(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{lastFirst.data(), nullptr, static_cast<UINT>(lastFirst.size()), 0};
  return Invoke(*member, DISPATCH_METHOD, parameters, result);
}

}  // namespace zolvane
