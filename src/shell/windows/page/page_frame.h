// The page's windows: its own, hidden one, and within it the frame container with all controls,
// which the host takes into a window of its own. Makes and ends them, and hands their messages
// to the parts that answer.
#pragma once

#include <memory>

#include "shell/windows/page/page_appearance.h"
#include "shell/windows/page/page_input.h"

namespace zolvane {

class PageFrame final : public std::enable_shared_from_this<PageFrame> {
 public:
  // Null if the system refuses a window. Reports what the user does to `events` until Close. `owner` stays
  // alive meanwhile, and learns what could not be stored.
  static std::shared_ptr<PageFrame> Create(PageEvents& events, const std::weak_ptr<PageOwner>& owner,
                                           PageAppearance::ScaleOf scaleOf = DpiOf);

  ~PageFrame();
  PageFrame(const PageFrame&) = delete;
  PageFrame& operator=(const PageFrame&) = delete;

  // Null after Close, and when the host has destroyed the window that it had taken the frame into.
  HWND Page() const { return windows_.Page; }
  HWND Frame() const { return windows_.Frame; }
  HWND Control(int id) const { return windows_.Control(id); }

  bool Select(ListControl list, int index) { return input_.Select(list, index); }
  void SetListColour(ListControl list, int systemColour) { appearance_.SetListColour(list, systemColour); }
  void FitDropDown(ListControl list) const { appearance_.FitDropDown(list); }

  // Destroys the windows. Safe to call again.
  void Close();

 private:
  using MessageHandler = LRESULT (PageFrame::*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  PageFrame(PageEvents& events, const std::weak_ptr<PageOwner>& owner, PageAppearance::ScaleOf scaleOf);

  static LRESULT CALLBACK PageProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT Dispatch(MessageHandler handler, HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  bool CreateWindows();
  bool CreateControls() const;
  LRESULT OnPageMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnFrameMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void OnClick(POINT place) const;

  PageHandles windows_;
  PageInput input_;
  PageAppearance appearance_;
};

}  // namespace zolvane
