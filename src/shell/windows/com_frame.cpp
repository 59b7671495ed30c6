#include "shell/windows/com_frame.h"

#include <utility>

#include "shell/windows/host/late_bound_names.h"
#include "shell/windows/thread_module.h"

namespace zolvane {
namespace {

constexpr DISPID windowId = 1;

HRESULT GiveWindow(ComFrame& frame, const Variant&, VARIANT* result) {
  V_VT(result) = VT_I4;
  V_I4(result) = frame.Window();
  return S_OK;
}

}  // namespace

ComFrame::ComFrame(std::shared_ptr<ThreadModule> module, std::shared_ptr<frmAddIn> page)
    : module_{std::move(module)}, page_{std::move(page)} {}

const std::array<NamedMember<ComFrame>, 1>& ComFrame::Members() {
  static constexpr std::array<NamedMember<ComFrame>, 1> members{
      {{names::frameWindow, windowId, DISPATCH_PROPERTYGET, GiveWindow}}};
  return members;
}

}  // namespace zolvane
