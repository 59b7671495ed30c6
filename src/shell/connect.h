// The class that the host creates: gives it a caption for its menu of add-ins and the page to embed.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/status.h"
#include "shell/add_in_module.h"

namespace zolvane {

// Holds nothing of its own: it refers to the module's one page, whose life is tied to it. Asking for the form
// or the caption after the page was unloaded silently creates a fresh page.
class Connect {
 public:
  // The module outlives this object. Call Class_Initialize before anything else.
  explicit Connect(AddInModule& module) : module_{module} {}
  ~Connect() { Class_Terminate(); }

  Connect(const Connect&) = delete;
  Connect& operator=(const Connect&) = delete;

  // Loads the page. Fails when it cannot be created.
  Status Class_Initialize();

  // Unloads the page, if there is one.
  void Class_Terminate();

  // The page; the caller shares it. Null when it cannot be created.
  std::shared_ptr<frmAddIn> IAddIn_Form();

  // The page's caption. Nothing when the page cannot be created.
  std::optional<std::string> IAddIn_Caption();

 private:
  AddInModule& module_;
};

}  // namespace zolvane
