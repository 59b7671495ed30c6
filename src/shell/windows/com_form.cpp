#include "shell/windows/com_form.h"

#include <utility>

#include "shell/windows/com_frame.h"
#include "shell/windows/host/com_host.h"
#include "shell/windows/thread_module.h"

namespace zolvane {
namespace {

constexpr VARIANT_BOOL ToVariantBool(bool value) {
  return value ? VARIANT_TRUE : VARIANT_FALSE;
}

// Hosts set an object by either kind of put.
constexpr WORD setObject = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

bool IsNothing(const VARIANT& value) {
  switch (V_VT(&value)) {
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return V_UNKNOWN(&value) == nullptr;
    default:
      return V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_NULL;
  }
}

template <HRESULT (STDMETHODCALLTYPE ComForm::*Set)(IDispatch*)>
HRESULT PutObject(ComForm& form, const Variant& value, VARIANT*) {
  const auto object = value.ToObject();
  return object || IsNothing(value.Get()) ? (form.*Set)(object.Get()) : DISP_E_TYPEMISMATCH;
}

template <HRESULT (STDMETHODCALLTYPE ComForm::*Run)()>
HRESULT CallMethod(ComForm& form, const Variant&, VARIANT*) {
  return (form.*Run)();
}

template <HRESULT (STDMETHODCALLTYPE ComForm::*Get)(LONG*)>
HRESULT GiveNumber(ComForm& form, const Variant&, VARIANT* result) {
  V_VT(result) = VT_I4;
  return (form.*Get)(&V_I4(result));
}

template <HRESULT (STDMETHODCALLTYPE ComForm::*Get)(VARIANT_BOOL*)>
HRESULT GiveBool(ComForm& form, const Variant&, VARIANT* result) {
  V_VT(result) = VT_BOOL;
  return (form.*Get)(&V_BOOL(result));
}

HRESULT GiveFrame(ComForm& form, const Variant&, VARIANT* result) {
  IDispatch* object = nullptr;
  const HRESULT given = form.get_Frame(&object);
  V_VT(result) = VT_DISPATCH;
  V_DISPATCH(result) = object;
  return given;
}

}  // namespace

ComForm::ComForm(std::shared_ptr<ThreadModule> module, std::shared_ptr<frmAddIn> page)
    : module_{std::move(module)}, page_{std::move(page)} {}

ComForm::~ComForm() {
  module_->Forget(*this);
}

HRESULT ComForm::SaveChanges() {
  return InMember([](ComForm& self) {
    self.page_->IAddInForm_SaveChanges();
    return S_OK;
  });
}

HRESULT ComForm::LoadDefaults() {
  return InMember([](ComForm& self) {
    self.page_->IAddInForm_LoadDefaults();
    return S_OK;
  });
}

HRESULT ComForm::putref_ObjectParent(IDispatch* objectParent) {
  return InMember([&](ComForm& self) {
    self.page_->IAddInForm_ObjectParent(WrapHostObject(objectParent));
    return S_OK;
  });
}

HRESULT ComForm::putref_FormParent(IDispatch* formParent) {
  return InMember([&](ComForm& self) {
    self.page_->IAddInForm_FormParent(WrapHostWindow(formParent));
    return S_OK;
  });
}

HRESULT ComForm::get_Frame(IDispatch** frame) {
  return InMember([&](ComForm& self) {
    return Give(frame, [&] { return ComFrame::Make(self.module_, self.page_).Detach(); });
  });
}

HRESULT ComForm::get_hwnd(LONG* hwnd) {
  return InMember([&](ComForm& self) { return Give(hwnd, [&] { return self.page_->IAddInForm_hwnd(); }); });
}

HRESULT ComForm::get_HelpContextID(LONG* helpContextID) {
  return InMember([&](ComForm& self) {
    return Give(helpContextID, [&] { return self.page_->IAddInForm_HelpContextID(); });
  });
}

HRESULT ComForm::get_ShowStatusBar(VARIANT_BOOL* showStatusBar) {
  return InMember([&](ComForm& self) {
    return Give(showStatusBar, [&] { return ToVariantBool(self.page_->IAddInForm_ShowStatusBar()); });
  });
}

HRESULT ComForm::get_ShowButtons(VARIANT_BOOL* showButtons) {
  return InMember([&](ComForm& self) {
    return Give(showButtons, [&] { return ToVariantBool(self.page_->IAddInForm_ShowButtons()); });
  });
}

const std::array<NamedMember<ComForm>, 9>& ComForm::Members() {
  static constexpr WORD method = DISPATCH_METHOD;
  static constexpr WORD get = DISPATCH_PROPERTYGET;
  static constexpr std::array<NamedMember<ComForm>, 9> members{{
      {L"SaveChanges", formSaveChanges, method, CallMethod<&ComForm::SaveChanges>},
      {L"LoadDefaults", formLoadDefaults, method, CallMethod<&ComForm::LoadDefaults>},
      {L"ObjectParent", formObjectParent, setObject, PutObject<&ComForm::putref_ObjectParent>},
      {L"FormParent", formFormParent, setObject, PutObject<&ComForm::putref_FormParent>},
      {L"Frame", formFrame, get, GiveFrame},
      {L"hwnd", formHwnd, get, GiveNumber<&ComForm::get_hwnd>},
      {L"HelpContextID", formHelpContextID, get, GiveNumber<&ComForm::get_HelpContextID>},
      {L"ShowStatusBar", formShowStatusBar, get, GiveBool<&ComForm::get_ShowStatusBar>},
      {L"ShowButtons", formShowButtons, get, GiveBool<&ComForm::get_ShowButtons>},
  }};
  return members;
}

}  // namespace zolvane
