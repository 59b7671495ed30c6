// The page as the host sees it: the members of the host's page interface `IAddInForm`.
//
// The host's order: set FormParent, then ObjectParent, call LoadDefaults, let the user work, call
// SaveChanges, set ObjectParent to empty, which unloads the page. A failing host call inside a member is
// passed over; every member returns normally.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "config/configuration.h"
#include "host/environment.h"
#include "host/host_attachment.h"
#include "page/device_setup_page.h"
#include "page/page_view.h"

namespace zolvane {

class frmAddIn final : public PageEvents, public std::enable_shared_from_this<frmAddIn> {
 public:
  // Creates the page with its controls; nothing is loaded yet. Null when the controls cannot be
  // created. `unload` is called when the host detaches the page; whoever keeps the page then
  // calls Unload and lets it go.
  static std::shared_ptr<frmAddIn> Create(Environment& environment, Configuration& configuration,
                                          PageViewFactory& views, std::function<void()> unload);

  // ---- IAddInForm ----

  // Tells the host window that nothing is pending. Nothing is saved here: every edit is stored at once.
  void IAddInForm_SaveChanges();

  // Fills all controls from the configuration file.
  void IAddInForm_LoadDefaults();

  // The host's object model. Empty detaches the page: the link's hold flag is released and the page unloads.
  void IAddInForm_ObjectParent(std::shared_ptr<HostObject> objectParent);

  // The host's window. Empty leaves the status panel as it was.
  void IAddInForm_FormParent(const std::shared_ptr<HostWindow>& formParent);

  // The frame container `picFrame`, as a window handle; the host re-parents it into its own window.
  std::int32_t IAddInForm_Frame() const;

  // The page window's own handle.
  std::int32_t IAddInForm_hwnd() const;

  std::int32_t IAddInForm_HelpContextID() const;
  bool IAddInForm_ShowStatusBar() const;
  bool IAddInForm_ShowButtons() const;

  // ---- The page's life ----

  // Releases the link's hold flag and the host's objects, and destroys the page's windows. An operation that
  // is still running goes on without them. Safe to call again.
  void Unload();

  const DeviceSetupPage& Page() const { return *page_; }

  // ---- PageEvents: each keeps the page alive until it returns, whatever the host does meanwhile ----

  Status UserSelects(ListControl list, int index) override;
  Status UserSetsCheck(CheckControl box, int value) override;
  void PressButton(int index) override;
  void ClickFrame() override;

 private:
  explicit frmAddIn(std::function<void()> unload) : unload_{std::move(unload)} {}

  void ReleaseHold() const;

  HostAttachment host_;
  std::function<void()> unload_;
  std::unique_ptr<PageView> view_;
  std::unique_ptr<DeviceSetupPage> page_;
};

}  // namespace zolvane
