// The host's window that embeds the page, handed to the page as `FormParent`.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/status.h"

namespace zolvane {

// The panel "STATUS" of the window's status bar "sbstatusbar": the page's progress line.
class StatusPanel {
 public:
  virtual ~StatusPanel() = default;

  virtual std::optional<std::string> Text() = 0;
  virtual Status SetText(const std::string& text) = 0;
};

class HostWindow {
 public:
  virtual ~HostWindow() = default;

  // The window's "Changed" property.
  virtual Status SetChanged(bool changed) = 0;

  // Empty when the window has no such status bar or the bar no such panel.
  virtual std::shared_ptr<StatusPanel> FindStatusPanel() = 0;

  // Asks the window to take the focus: a click on the page reaches the window this way.
  virtual Status TakeFocus() = 0;
};

}  // namespace zolvane
