// The add-in's module-wide state: the configuration with the records in force, and the one page.
#pragma once

#include <memory>

#include "config/configuration.h"
#include "host/environment.h"
#include "page/page_view.h"
#include "shell/frm_add_in.h"

namespace zolvane {

class AddInModule {
 public:
  // Both outlive the module. A host has one module per thread.
  AddInModule(Environment& environment, PageViewFactory& views);
  ~AddInModule();

  AddInModule(const AddInModule&) = delete;
  AddInModule& operator=(const AddInModule&) = delete;

  // The page; created on first use, and afresh after it was unloaded. Null when it cannot be created.
  std::shared_ptr<frmAddIn> Page();

  // Unloads the page if there is one. Whoever still refers to it keeps an empty page.
  void UnloadPage();

  // The records in force stay when the page is unloaded.
  Configuration& Config() { return configuration_; }

 private:
  Environment& environment_;
  PageViewFactory& views_;
  Configuration configuration_;
  std::shared_ptr<frmAddIn> page_;
};

}  // namespace zolvane
