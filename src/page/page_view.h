// What shows the page: a native window, or the bench. A view has no rules; it shows the page's model.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "config/item_lists.h"
#include "host/status.h"
#include "operations/page_port.h"
#include "page/page_controls.h"

namespace zolvane {

// What the user did on a view. The page handles it; a view calls it for enabled controls only.
class PageEvents {
 public:
  virtual ~PageEvents() = default;

  // The entry at a position of the list was picked. Fails when the choice could not be stored.
  virtual Status UserSelects(ListControl list, int index) = 0;

  // The box was set to 0, 1 or 2. Fails when that could not be stored.
  virtual Status UserSetsCheck(CheckControl box, int value) = 0;

  // The button was pressed. Returns when its operation has ended.
  virtual void PressButton(int index) = 0;

  // The frame container was clicked, beside all controls.
  virtual void ClickFrame() = 0;
};

// If a call fails, the control has not changed.
class PageView {
 public:
  virtual ~PageView() = default;

  // Replaces the entries of a list and leaves nothing selected.
  virtual Status ShowEntries(ListControl list, std::span<const ListEntry> entries) = 0;

  // Appends one entry; the selection stays.
  virtual Status ShowAddedEntry(ListControl list, const ListEntry& entry) = 0;

  // Selects the entry at a position that exists.
  virtual Status ShowSelection(ListControl list, int index) = 0;

  virtual Status ShowListColour(ListControl list, std::uint32_t systemColour) = 0;
  virtual Status ShowListEnabled(ListControl list, bool enabled) = 0;

  // 0 unticked, 1 ticked, 2 grey.
  virtual Status ShowCheck(CheckControl box, int value) = 0;
  virtual Status ShowCheckEnabled(CheckControl box, bool enabled) = 0;

  virtual Status ShowButtonEnabled(int button, bool enabled) = 0;

  // The text of lblPumps.
  virtual Status ShowPumpText(std::string_view text) = 0;

  // The handle of the page's own window, and of the frame container that the host embeds. Window handles have
  // 32 significant bits in every process. 0 where there are no windows.
  virtual std::int32_t WindowHandle() const = 0;
  virtual std::int32_t FrameHandle() const = 0;

  // Destroys the page's windows. Calls that come later fail.
  virtual void Close() = 0;
};

class PageViewFactory {
 public:
  virtual ~PageViewFactory() = default;

  // Creates the controls, all enabled and empty. `events` outlives the view. Null if they cannot be created.
  virtual std::unique_ptr<PageView> CreatePageView(PageEvents& events) = 0;
};

}  // namespace zolvane
