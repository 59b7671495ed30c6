#include "shell/windows/com_connect.h"

#include <utility>

#include "shell/windows/com_form.h"
#include "win32/text.h"

namespace zolvane {
namespace {

HRESULT GiveForm(ComConnect& connect, const Variant&, VARIANT* result) {
  IAddInForm* form = nullptr;
  const HRESULT given = connect.get_Form(&form);
  V_VT(result) = VT_DISPATCH;
  V_DISPATCH(result) = form;
  return given;
}

HRESULT GiveCaption(ComConnect& connect, const Variant&, VARIANT* result) {
  V_VT(result) = VT_BSTR;
  V_BSTR(result) = nullptr;
  return connect.get_Caption(&V_BSTR(result));
}

}  // namespace

ComConnect::ComConnect(std::shared_ptr<ThreadModule> module)
    : module_{std::move(module)}, connect_{module_->AddIn()} {}

HRESULT ComConnect::get_Form(IAddInForm** form) {
  return InMember([&](ComConnect& self) {
    const auto page = form != nullptr ? self.connect_.IAddIn_Form() : nullptr;
    const HRESULT given = Give(form, [&] { return page ? self.module_->FormOf(page).Detach() : nullptr; });
    return SUCCEEDED(given) && !page ? E_FAIL : given;
  });
}

HRESULT ComConnect::get_Caption(BSTR* caption) {
  return InMember([&](ComConnect& self) {
    const auto text = caption != nullptr ? self.connect_.IAddIn_Caption() : std::nullopt;
    const HRESULT given = Give(caption, [&] { return text ? Bstr(*text).Detach() : nullptr; });
    return SUCCEEDED(given) && !text ? E_FAIL : given;
  });
}

const std::array<NamedMember<ComConnect>, 2>& ComConnect::Members() {
  static constexpr std::array<NamedMember<ComConnect>, 2> members{{
      {L"Form", addInForm, DISPATCH_PROPERTYGET, GiveForm},
      {L"Caption", addInCaption, DISPATCH_PROPERTYGET, GiveCaption},
  }};
  return members;
}

}  // namespace zolvane
