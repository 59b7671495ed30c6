// Ignores what the user does on a page.
#pragma once

#include "page/page_view.h"

namespace zolvane {

class SilentEvents : public PageEvents {
 public:
  Status UserSelects(ListControl, int) override { return Status::Success(); }
  Status UserSetsCheck(CheckControl, int) override { return Status::Success(); }
  void PressButton(int) override {}
  void ClickFrame() override {}
};

}  // namespace zolvane
