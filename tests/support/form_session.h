// The whole add-in in a host: module, page with a recorded view, window and object model, on one journal.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "shell/add_in_module.h"
#include "shell/connect.h"
#include "support/fake_host.h"
#include "support/operation_fixture.h"
#include "support/recorded_view.h"

namespace zolvane {

struct FormSession : FakeHost {
  // The configuration file's content. The page is created and attached, nothing is loaded.
  explicit FormSession(std::string_view text = "") {
    Settings().Load(text);
    Form = Module.Page();
    Form->IAddInForm_FormParent(Window);
    Form->IAddInForm_ObjectParent(Object);
    Calls.Clear();
  }

  RecordedViewFactory Views{Calls};
  AddInModule Module{Process, Views};
  std::shared_ptr<frmAddIn> Form;

  RecordedView& View() const { return *Views.View; }
  const PageModel& Model() const { return Form->Page().Model(); }

  // Fills the controls, without leaving events.
  void LoadDefaults() {
    Form->IAddInForm_LoadDefaults();
    Calls.Clear();
  }

  std::string Value(std::string_view section, std::string_view key) {
    return Settings().Value(section, key).value_or("(missing)");
  }
};

}  // namespace zolvane
