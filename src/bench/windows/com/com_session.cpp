#include "bench/windows/com/com_session.h"

#include <hestrion_cmds.h>

#include <stdexcept>
#include <utility>

#include "shell/windows/host/late_bound_names.h"
#include "win32/late_bound.h"
#include "win32/text.h"

namespace zolvane {

ComSession::ComSession(ComPtr<IAddIn> addIn, const ComPtr<IDispatch>& object, const ComPtr<IDispatch>& window)
    : addIn_{std::move(addIn)} {
  UniqueBstr caption;
  addIn_->get_Caption(caption.Put());
  caption_ = Utf8FromBstr(caption.Get());
  if (FAILED(addIn_->get_Form(form_.Put())) || !form_) {
    throw std::runtime_error{"the add-in gives no page"};
  }
  form_->putref_FormParent(window.Get());
  form_->putref_ObjectParent(object.Get());
  form_->LoadDefaults();
}

ComSession::~ComSession() {
  form_->SaveChanges();
  form_->putref_ObjectParent(nullptr);
}

HWND ComSession::Frame() const {
  ComPtr<IDispatch> frame;
  form_->get_Frame(frame.Put());
  const auto handle = LateBound{frame}.Read(names::frameWindow);
  const auto text = handle ? handle->ToText() : std::nullopt;
  return text ? reinterpret_cast<HWND>(static_cast<LONG_PTR>(std::stoll(*text))) : nullptr;
}

long ComSession::HelpTopic() const {
  long topic = 0;
  form_->get_HelpContextID(&topic);
  return topic;
}

bool ComSession::WantsButtons() const {
  VARIANT_BOOL wants = VARIANT_FALSE;
  form_->get_ShowButtons(&wants);
  return wants != VARIANT_FALSE;
}

bool ComSession::WantsStatusBar() const {
  VARIANT_BOOL wants = VARIANT_FALSE;
  form_->get_ShowStatusBar(&wants);
  return wants != VARIANT_FALSE;
}

void ComSession::SaveChanges() const {
  form_->SaveChanges();
}

}  // namespace zolvane
