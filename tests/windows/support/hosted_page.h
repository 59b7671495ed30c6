// The module's page in a window of the test's own, as a host shows it.
#pragma once

#include <hestrion_cmds.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "shell/windows/page/page_layout.h"
#include "windows/support/program_folder.h"

namespace zolvane {

// A host that notes what the page asks for. The test sees each command to the instrument while it
// is under way.
struct PageHost {
  int FocusRequests = 0;
  int Writes = 0;              // to settings files
  bool RefusesWrites = false;  // which then fail and change nothing
  std::string Status;
  std::function<void(const std::string& command)> OnCommand = [](const std::string&) {};
};

class HostedPage {
 public:
  explicit HostedPage(const std::string& configuration = SampleConfiguration());
  ~HostedPage();
  HostedPage(const HostedPage&) = delete;
  HostedPage& operator=(const HostedPage&) = delete;

  PageHost& Host() { return *host_; }
  HWND Window() const { return window_; }
  HWND Frame() const { return frame_; }
  HWND Control(int id) const { return GetDlgItem(frame_, id); }
  IAddInForm* Form() const { return session_->Form(); }

  // What the configuration file says.
  static std::string Stored(const std::string& section, const std::string& key);

 private:
  const ProgramFolder& folder_;  // brings COM along
  std::shared_ptr<PageHost> host_ = std::make_shared<PageHost>();
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
