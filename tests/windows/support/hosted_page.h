// The module's page in a window of the test's own, as a host shows it.
#pragma once

#include <hestrion_cmds.h>

#include <memory>
#include <string>
#include <utility>

#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "shell/windows/page/page_layout.h"
#include "support/fake_host.h"
#include "windows/support/program_folder.h"

namespace zolvane {

// The host's journal also has the writes to settings files, as `write [DeviceType] SensorEnableRFID`. The
// instrument answers every command with an empty text.
class HostedPage {
 public:
  explicit HostedPage(const std::string& configuration = SampleFileText());
  ~HostedPage();
  HostedPage(const HostedPage&) = delete;
  HostedPage& operator=(const HostedPage&) = delete;

  FakeHostObjects& Host() { return host_; }
  HWND Window() const { return window_; }
  HWND Frame() const { return frame_; }
  HWND Control(int id) const { return GetDlgItem(frame_, id); }
  IAddInForm* Form() const { return session_->Form(); }

  // What the configuration file says.
  static std::string Stored(const std::string& section, const std::string& key);

 private:
  const ProgramFolder& folder_;  // brings COM along
  FakeHostObjects host_;
  OfferedSettings settings_;
  const HWND window_;
  std::unique_ptr<ComSession> session_;
  const HWND frame_;
};

std::string CaptionOf(HWND window);
std::wstring ClassOf(HWND window);

// The place of a control within its parent.
RECT PlaceOf(HWND control);

}  // namespace zolvane
