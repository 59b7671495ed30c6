#include "bench/host/recorded_page.h"

#include <utility>

namespace zolvane {
namespace {

class RecordedPage final : public PageView {
 public:
  explicit RecordedPage(std::shared_ptr<PageModel> shown) : shown_{std::move(shown)} {}

  Status ShowEntries(ListControl list, std::span<const ListEntry> entries) override {
    return Change([&](PageModel& shown) {
      shown.Of(list).Entries.assign(entries.begin(), entries.end());
      shown.Of(list).Selected = noSelection;
    });
  }

  Status ShowAddedEntry(ListControl list, const ListEntry& entry) override {
    return Change([&](PageModel& shown) { shown.Of(list).Entries.push_back(entry); });
  }

  Status ShowSelection(ListControl list, int index) override {
    return Change([&](PageModel& shown) { shown.Of(list).Selected = index; });
  }

  Status ShowListColour(ListControl list, std::uint32_t systemColour) override {
    return Change([&](PageModel& shown) { shown.Of(list).BackColour = systemColour; });
  }

  Status ShowListEnabled(ListControl list, bool enabled) override {
    return Change([&](PageModel& shown) { shown.Of(list).Enabled = enabled; });
  }

  Status ShowCheck(CheckControl box, int value) override {
    return Change([&](PageModel& shown) { shown.Of(box).Value = value; });
  }

  Status ShowCheckEnabled(CheckControl box, bool enabled) override {
    return Change([&](PageModel& shown) { shown.Of(box).Enabled = enabled; });
  }

  Status ShowButtonEnabled(int button, bool enabled) override {
    return Change(
        [&](PageModel& shown) { shown.ButtonsEnabled.at(static_cast<std::size_t>(button)) = enabled; });
  }

  Status ShowPumpText(std::string_view text) override {
    return Change([&](PageModel& shown) { shown.PumpText = text; });
  }

  std::int32_t WindowHandle() const override { return 0; }
  std::int32_t FrameHandle() const override { return 0; }

  void Close() override { isClosed_ = true; }

 private:
  template <class Apply>
  Status Change(Apply apply) {
    if (isClosed_) {
      return Status::Failure();
    }
    apply(*shown_);
    return Status::Success();
  }

  std::shared_ptr<PageModel> shown_;
  bool isClosed_ = false;
};

}  // namespace

std::unique_ptr<PageView> RecordedPageFactory::CreatePageView(PageEvents&) {
  shown_ = std::make_shared<PageModel>();
  return std::make_unique<RecordedPage>(shown_);
}

}  // namespace zolvane
