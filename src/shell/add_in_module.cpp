#include "shell/add_in_module.h"

#include <utility>

namespace zolvane {

AddInModule::AddInModule(Environment& process, PageViewFactory& views)
    : process_{process}, views_{views}, configuration_{process} {}

AddInModule::~AddInModule() {
  UnloadPage();
}

std::shared_ptr<frmAddIn> AddInModule::Page() {
  if (!page_) {
    page_ = frmAddIn::Create(process_, configuration_, views_, [this] { UnloadPage(); });
  }
  return page_;
}

void AddInModule::UnloadPage() {
  if (const auto page = std::exchange(page_, nullptr)) {
    page->Unload();
  }
}

}  // namespace zolvane
