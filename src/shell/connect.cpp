#include "shell/connect.h"

#include "page/page_controls.h"

namespace zolvane {

Status Connect::Class_Initialize() {
  return module_.Page() ? Status::Success() : Status::Failure();
}

void Connect::Class_Terminate() {
  module_.UnloadPage();
}

std::shared_ptr<frmAddIn> Connect::IAddIn_Form() {
  return module_.Page();
}

std::optional<std::string> Connect::IAddIn_Caption() {
  return module_.Page() ? std::optional<std::string>{pageCaption} : std::nullopt;
}

}  // namespace zolvane
