#include "shell/frm_add_in.h"

#include <utility>

namespace zolvane {

std::shared_ptr<frmAddIn> frmAddIn::Create(Environment& environment, Configuration& configuration,
                                           PageViewFactory& views, std::function<void()> unload) {
  std::shared_ptr<frmAddIn> form{new frmAddIn{std::move(unload)}};
  form->view_ = views.CreatePageView(*form);
  if (!form->view_) {
    return nullptr;
  }
  form->page_ = std::make_unique<DeviceSetupPage>(environment, form->host_, configuration, *form->view_);
  return form;
}

void frmAddIn::IAddInForm_SaveChanges() {
  const auto self = shared_from_this();
  PassOver(host_.SetChanged(false));
}

void frmAddIn::IAddInForm_LoadDefaults() {
  const auto self = shared_from_this();
  page_->LoadDefaults();
}

void frmAddIn::IAddInForm_ObjectParent(std::shared_ptr<HostObject> objectParent) {
  const auto self = shared_from_this();
  if (objectParent) {
    host_.ObjectParent = std::move(objectParent);
    return;
  }
  ReleaseHold();
  host_.ObjectParent = nullptr;
  const auto unload = unload_;
  unload();
}

void frmAddIn::IAddInForm_FormParent(const std::shared_ptr<HostWindow>& formParent) {
  const auto self = shared_from_this();
  host_.FormParent = formParent;
  if (!formParent) {
    return;
  }
  auto panel = formParent->FindStatusPanel();
  // Answering, the host may have set another window or detached the page.
  const bool isStillTheWindow = host_.FormParent == formParent;
  if (panel && isStillTheWindow) {
    host_.Panel = std::move(panel);
  }
}

std::int32_t frmAddIn::IAddInForm_Frame() const {
  return view_->FrameHandle();
}

std::int32_t frmAddIn::IAddInForm_hwnd() const {
  return view_->WindowHandle();
}

std::int32_t frmAddIn::IAddInForm_HelpContextID() const {
  constexpr std::int32_t helpContext = 9014;
  return helpContext;
}

bool frmAddIn::IAddInForm_ShowStatusBar() const {
  return true;
}

bool frmAddIn::IAddInForm_ShowButtons() const {
  return true;
}

void frmAddIn::Unload() {
  ReleaseHold();
  host_.Panel = nullptr;
  host_.FormParent = nullptr;
  host_.ObjectParent = nullptr;
  // A host that detaches this page later must not unload the page that replaced it, but only have back what
  // it has given to this one meanwhile.
  unload_ = [this] { Unload(); };
  view_->Close();
}

Status frmAddIn::UserSelects(ListControl list, int index) {
  const auto self = shared_from_this();
  return page_->UserSelects(list, index);
}

Status frmAddIn::UserSetsCheck(CheckControl box, int value) {
  const auto self = shared_from_this();
  return page_->UserSetsCheck(box, value);
}

void frmAddIn::PressButton(int index) {
  const auto self = shared_from_this();
  page_->PressButton(index);
}

void frmAddIn::ClickFrame() {
  if (const auto window = host_.FormParent) {
    PassOver(window->TakeFocus());
  }
}

void frmAddIn::ReleaseHold() const {
  if (const auto link = host_.Link()) {
    PassOver(link->SetHold(false));
  }
}

}  // namespace zolvane
