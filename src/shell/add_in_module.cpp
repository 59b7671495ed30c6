#include "shell/add_in_module.h"

#include <utility>

namespace zolvane {

AddInModule::AddInModule(Environment& environment, PageViewFactory& views)
    : environment_{environment}, views_{views}, configuration_{environment} {}

AddInModule::~AddInModule() {
  UnloadPage();
}

std::shared_ptr<frmAddIn> AddInModule::Page() {
  if (!page_) {
    page_ = frmAddIn::Create(environment_, configuration_, views_, [this] { UnloadPage(); });
  }
  return page_;
}

void AddInModule::UnloadPage() {
  if (const auto page = std::exchange(page_, nullptr)) {
    page->Unload();
  }
}

}  // namespace zolvane
