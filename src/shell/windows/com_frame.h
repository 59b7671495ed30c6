// The frame container picFrame as the object that IAddInForm.Frame returns. All it has is a window handle.
#pragma once

#include <array>
#include <memory>

#include "shell/frm_add_in.h"
#include "win32/com_object.h"

namespace zolvane {

class ThreadModule;

class ComFrame final : public ComObject<ComFrame, IDispatch> {
 public:
  ComFrame(std::shared_ptr<ThreadModule> module, std::shared_ptr<frmAddIn> page);

  // 0 once the page is unloaded.
  LONG Window() const { return page_->IAddInForm_Frame(); }

  static const std::array<NamedMember<ComFrame>, 1>& Members();

 private:
  const std::shared_ptr<ThreadModule> module_;
  const std::shared_ptr<frmAddIn> page_;
};

}  // namespace zolvane
