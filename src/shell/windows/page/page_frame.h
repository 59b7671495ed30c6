// The page's windows: its own, hidden one, and within it the frame container with all controls, which the
// host takes into a window of its own. Tells what the user does; knows no rule of the page.
#pragma once

#include <array>
#include <memory>

#include "page/page_view.h"
#include "win32/window_metrics.h"

namespace zolvane {

// What has to live while the page handles what the user does.
class PageOwner {
 public:
  virtual ~PageOwner() = default;

  // A choice that the user made could not be stored. Returns when the user has been told.
  virtual void TellNotStored() = 0;
};

class PageFrame final : public std::enable_shared_from_this<PageFrame> {
 public:
  // The scale that a window is drawn at, in dots per inch.
  using ScaleOf = UINT (*)(HWND window);

  // Null when the system refuses a window. `events` hears of the user until Close. `owner` stays alive while it does,
  // and is told what could not be stored.
  static std::shared_ptr<PageFrame> Create(PageEvents& events, std::weak_ptr<PageOwner> owner,
                                           ScaleOf scaleOf = DpiOf);

  ~PageFrame();
  PageFrame(const PageFrame&) = delete;
  PageFrame& operator=(const PageFrame&) = delete;

  // Null after Close, and when the host has destroyed the window that it had taken the frame into.
  HWND Page() const { return page_; }
  HWND Frame() const { return frame_; }

  // A control of the layout. Null without a frame.
  HWND Control(int id) const { return frame_ != nullptr ? GetDlgItem(frame_, id) : nullptr; }

  // Selects an entry of a list. False when there is no such entry.
  bool Select(ListControl list, int index);

  // The background of a list, as the index of a system colour.
  void SetListColour(ListControl list, int systemColour);

  // Makes the drop-down part of a list as wide as its widest entry, within the screen.
  void FitDropDown(ListControl list) const;

  // Destroys the windows. Safe to call again.
  void Close();

 private:
  using MessageHandler = LRESULT (PageFrame::*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  PageFrame(PageEvents& events, std::weak_ptr<PageOwner> owner, ScaleOf scaleOf);

  static LRESULT CALLBACK PageProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT Dispatch(MessageHandler handler, HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  bool CreateWindows();
  bool CreateControls() const;
  LRESULT OnPageMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnFrameMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(int id, int notification);
  void OnList(ListControl list, int notification);
  void OnDropDownClosed(ListControl list);
  void Report(ListControl list);
  void TellIfNotStored(const Status& status) const;
  void OnButton(int button);
  void StoreShownChoices();
  void DiscardInput() const;
  void OnClick(POINT place);
  LRESULT OnColour(UINT message, WPARAM context, LPARAM control) const;
  int ColourOf(int id) const;
  void FollowScale();
  void Arrange();
  void Resize(SIZE naturalSize);
  bool HasLostFocus() const;

  PageEvents* events_;
  const std::weak_ptr<PageOwner> owner_;
  const ScaleOf scaleOf_;
  HWND page_ = nullptr;
  HWND frame_ = nullptr;
  UINT dpi_ = 0;
  PageFonts fonts_;
  SIZE naturalSize_{};
  std::array<int, listRows.size()> colours_{};
  std::array<int, listRows.size()> selected_{};
  std::array<bool, listRows.size()> isStored_{};  // as far as has become known
};

}  // namespace zolvane
