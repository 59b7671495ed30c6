// The page as a native window: PageView over the page's windows.
#pragma once

#include <functional>
#include <memory>

#include "page/page_view.h"
#include "shell/windows/page/page_frame.h"

namespace zolvane {

class PageWindow final : public PageView {
 public:
  explicit PageWindow(std::shared_ptr<PageFrame> frame) : frame_{std::move(frame)} {}
  ~PageWindow() override { frame_->Close(); }

  Status ShowEntries(ListControl list, std::span<const ListEntry> entries) override;
  Status ShowAddedEntry(ListControl list, const ListEntry& entry) override;
  Status ShowSelection(ListControl list, int index) override;
  Status ShowListColour(ListControl list, std::uint32_t systemColour) override;
  Status ShowListEnabled(ListControl list, bool enabled) override;
  Status ShowCheck(CheckControl box, int value) override;
  Status ShowCheckEnabled(CheckControl box, bool enabled) override;
  Status ShowButtonEnabled(int button, bool enabled) override;
  Status ShowPumpText(std::string_view text) override;
  std::int32_t WindowHandle() const override;
  std::int32_t FrameHandle() const override;
  void Close() override { frame_->Close(); }

 private:
  std::shared_ptr<PageFrame> frame_;
};

class PageWindowFactory final : public PageViewFactory {
 public:
  // `owner` is called when a page is made.
  explicit PageWindowFactory(std::function<std::weak_ptr<PageOwner>()> owner) : owner_{std::move(owner)} {}

  std::unique_ptr<PageView> CreatePageView(PageEvents& events) override;

  // The window that the page is in now, which owns the boxes and dialogues shown meanwhile. Without one, the
  // active window of this thread.
  HWND OwnerWindow() const;

 private:
  std::function<std::weak_ptr<PageOwner>()> owner_;
  std::weak_ptr<PageFrame> latest_;
};

}  // namespace zolvane
