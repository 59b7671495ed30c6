// What the add-in needs of the process, from Windows.
#pragma once

#include <functional>
#include <utility>

#include "host/environment.h"
#include "win32/windows_headers.h"

namespace zolvane {

class WindowsEnvironment final : public Environment {
 public:
  // `owner` is asked each time for the window that boxes and dialogues belong to, which is
  // disabled while they are open.
  explicit WindowsEnvironment(std::function<HWND()> owner) : owner_{std::move(owner)} {}

  // Without a final backslash, unless it is a drive's root.
  std::string ProgramFolder() override;

  std::shared_ptr<IniFileService> CreateIniFileService() override;

  // Creates the file if there is none.
  Status AppendBlankLine(const std::string& file) override;

  // Dispatches every message that is waiting now. A request to quit is left for the host's own loop.
  void RunMessageLoopOnce() override;

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override;

  // Leaves the process's current folder as it is, wherever the user looks for a file.
  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override;

 private:
  std::function<HWND()> owner_;
};

}  // namespace zolvane
