// What the user does with the page's controls, told to the page.
#pragma once

#include <array>
#include <memory>

#include "page/page_view.h"
#include "shell/windows/page/page_handles.h"

namespace zolvane {

// What has to live while the page handles what the user does.
class PageOwner {
 public:
  virtual ~PageOwner() = default;

  // A choice that the user made could not be stored. Returns when the user has been told.
  virtual void TellNotStored() = 0;
};

class PageInput {
 public:
  // Posted to the frame when a drop-down list has closed, with the list's number.
  static constexpr UINT dropDownClosed = WM_APP;

  // The windows outlive this. `events` has to live until Stop.
  PageInput(const PageHandles& windows, PageEvents& events, const std::weak_ptr<PageOwner>& owner);

  // Nothing is told any more.
  void Stop() { events_ = nullptr; }

  std::shared_ptr<PageOwner> Owner() const { return owner_.lock(); }

  // Selects an entry of a list, which is not a choice of the user. False if there is no such entry.
  bool Select(ListControl list, int index);

  void OnCommand(int id, int notification);
  void OnDropDownClosed(ListControl list);
  void OnClickBesideControls() const;

 private:
  void OnList(ListControl list, int notification);
  void OnButton(int button);
  void Report(ListControl list);
  void TellIfNotStored(const Status& status) const;
  void StoreShownChoices();
  void DiscardWaiting() const;
  bool HasLostFocus() const;

  const PageHandles& windows_;
  PageEvents* events_;
  const std::weak_ptr<PageOwner> owner_;
  std::array<int, listRows.size()> selected_{};
  std::array<bool, listRows.size()> isStored_{};  // as far as is known
};

}  // namespace zolvane
