// The page without a window: it shows nothing and remembers what a window would show.
#pragma once

#include <memory>

#include "page/page_model.h"
#include "page/page_view.h"

namespace zolvane {

class RecordedPageFactory final : public PageViewFactory {
 public:
  std::unique_ptr<PageView> CreatePageView(PageEvents& events) override;

  // What the page created last shows, also after it was closed.
  const PageModel& Shown() const { return *shown_; }

 private:
  std::shared_ptr<PageModel> shown_ = std::make_shared<PageModel>();
};

}  // namespace zolvane
