#include "windows/support/add_in_use.h"

#include "win32/late_bound.h"

namespace zolvane {

ComPtr<IAddInForm> FormOf(const ComPtr<IAddIn>& addIn) {
  ComPtr<IAddInForm> form;
  addIn->get_Form(form.Put());
  return form;
}

HWND FrameOf(const ComPtr<IAddInForm>& form) {
  ComPtr<IDispatch> frame;
  form->get_Frame(frame.Put());
  const auto handle = LateBound{frame}.Read(L"hWnd");
  return handle ? reinterpret_cast<HWND>(static_cast<LONG_PTR>(V_I4(&handle->Get()))) : nullptr;
}

}  // namespace zolvane
