// The host objects that the page has been given, and the few things every operation does with them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/host_object.h"
#include "host/host_window.h"
#include "host/status.h"

namespace zolvane {

struct HostAttachment {
  std::shared_ptr<HostObject> ObjectParent;
  std::shared_ptr<HostWindow> FormParent;
  std::shared_ptr<StatusPanel> Panel;

  // The instrument link, asked for anew on each call. Empty without ObjectParent.
  std::shared_ptr<InstrumentLink> Link() const;

  // Reads the stop flag of the link afresh. False only when the flag is raised: one that cannot be read is
  // not, so that the next command is tried, fails where the link is missing, and tells the user.
  bool MayGoOn() const;

  // The progress line. A window without the panel has no text, and setting it fails.
  std::string StatusText() const;
  Status SetStatusText(std::string_view text) const;

  // The host window's "Changed" property; fails without a window.
  Status SetChanged(bool changed) const;
};

}  // namespace zolvane
