// The host's object model for this add-in, handed to the page as `ObjectParent`.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/dialogues.h"
#include "host/instrument_link.h"
#include "host/status.h"

namespace zolvane {

class HostObject {
 public:
  virtual ~HostObject() = default;

  // A fresh reference to the instrument link on each call; callers do not keep it.
  // Empty when the host has none.
  virtual std::shared_ptr<InstrumentLink> Link() = 0;

  virtual Status WriteLogLine(const std::string& line) = 0;

  virtual std::optional<bool> HostDialogAvailable() = 0;

  // Empty when the host cannot give one.
  virtual std::shared_ptr<HostDialog> MessageDialog() = 0;
};

}  // namespace zolvane
