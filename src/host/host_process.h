// The host's process, which the add-in runs in, as opposed to the host's objects.
#pragma once

#include <memory>
#include <string>

#include "host/ini_file_service.h"
#include "host/status.h"

namespace zolvane {

class HostProcess {
 public:
  virtual ~HostProcess() = default;

  // The folder that holds the add-in module.
  virtual std::string ProgramFolder() = 0;

  // The host's settings-file service. Empty when it cannot be created; asking again tries again.
  virtual std::shared_ptr<IniFileService> CreateIniFileService() = 0;

  // Appends one empty line (CR LF) to the file, without the settings-file service.
  virtual Status AppendBlankLine(const std::string& file) = 0;

  // Lets the host's message loop run once (process pending window messages).
  virtual void RunMessageLoopOnce() = 0;
};

}  // namespace zolvane
