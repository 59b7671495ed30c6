// The page without a window: it fills the controls from the configuration file, writes every edit back at
// once, and starts the five operations. It changes its model and tells the view; a view that reports what the
// user did calls the handlers below.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "config/configuration.h"
#include "host/dialogues.h"
#include "host/environment.h"
#include "host/host_attachment.h"
#include "host/status.h"
#include "operations/operation_context.h"
#include "operations/page_port.h"
#include "page/page_model.h"
#include "page/page_view.h"

namespace zolvane {

// A boolean as hosts pass it. It may have any other value as well.
enum class HostBoolean : std::int16_t { False = 0, True = -1 };

class DeviceSetupPage final : public PagePort {
 public:
  // All of these outlive the page. `host` is filled and emptied by the hosting contract.
  DeviceSetupPage(Environment& environment, HostAttachment& host, Configuration& configuration,
                  PageView& view);

  // Loads the records in force and fills all controls. The handlers of what it selects run, so the choices
  // are written back; the host's "Changed" is left alone meanwhile.
  void LoadDefaults() override;

  // ---- What the user did. The caller makes sure that the control is enabled. ----

  // The user picked the entry at this position: writes its number as the section's installed item. The result
  // is the host's to see: it fails when the write fails.
  Status UserSelects(ListControl list, int index);

  // The user set a check box to 0, 1 or 2: writes "0" or "1" to its key, also when the value is the same.
  Status UserSetsCheck(CheckControl box, int value);

  // The user pressed a button: runs its operation to the end. Other indexes do nothing.
  void PressButton(int index);

  // ---- What operations ask of the page ----

  Status EnableControls(bool enabled) override;
  int FindListIndex(std::string_view text, ListControl list) const override;
  Status SelectEntry(ListControl list, int index) override;
  Status ShowPumpModule(bool connected) override;
  std::int16_t ShowMessage(const std::string& message, std::int16_t style, const std::string& title) override;

  // Sets a list's colour and then its enabled state: the window colour if `enabled` is exactly True,
  // otherwise the button-face colour. Any value but False enables.
  Status SetControlEnabled(ListControl list, HostBoolean enabled);

  // Tells the host window that nothing is pending: every edit is stored at once, so "Changed" is set to
  // false. Does nothing without a window and while the page is loading.
  void ResetChanged() const;

  const PageModel& Model() const { return model_; }

 private:
  void FillList(ListControl list, const std::string& installedName);
  void AddNotInstalled(ListControl list);
  void LoadCheck(CheckControl box);
  void LoadPumpModule();
  Status EnableButton(int index, bool enabled);
  Status EnableCheck(CheckControl box, bool enabled);
  Status SetCheck(CheckControl box, int value);
  Status OnListSelected(ListControl list);
  Status OnCheckClicked(CheckControl box);
  bool IsPermitted(int button) const;
  OperationContext Context() { return {environment_, environment_, host_, configuration_, *this}; }

  Environment& environment_;
  HostAttachment& host_;
  Configuration& configuration_;
  PageView& view_;
  PageModel model_;
  FileDialogue cdgFile_;
  bool isLoading_ = false;
};

}  // namespace zolvane
