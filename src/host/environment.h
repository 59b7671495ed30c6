// What the add-in needs of the process it runs in, as opposed to the host's objects.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/dialogues.h"
#include "host/ini_file_service.h"
#include "host/status.h"

namespace zolvane {

class Environment {
 public:
  virtual ~Environment() = default;

  // The folder that holds the add-in module.
  virtual std::string ProgramFolder() = 0;

  // The host's settings-file service. Empty when it cannot be created; asking again tries again.
  virtual std::shared_ptr<IniFileService> CreateIniFileService() = 0;

  // Appends one empty line (CR LF) to the file, without the settings-file service.
  virtual Status AppendBlankLine(const std::string& file) = 0;

  // Lets the host's message loop run once (process pending window messages).
  virtual void RunMessageLoopOnce() = 0;

  // A system message box; the number of the button that closed it. Nothing when it could not be shown.
  virtual std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) = 0;

  // The file the user chose. Nothing when the dialogue was cancelled or could not be shown.
  virtual std::optional<std::string> ShowFileDialogue(FileDialogueKind kind,
                                                      const FileDialogue& dialogue) = 0;
};

}  // namespace zolvane
