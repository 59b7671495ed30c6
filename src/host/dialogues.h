// What the add-in shows the user outside its page: the host's message dialogue, system message boxes, and the
// common file dialogue. The style numbers are the system's own and are named here once.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/status.h"

namespace zolvane {

namespace message_style {
inline constexpr std::int32_t okOnly = 0;
inline constexpr std::int32_t okCancel = 1;
inline constexpr std::int32_t yesNoCancel = 3;
inline constexpr std::int32_t buttonMask = 0xF;
inline constexpr std::int32_t stopIcon = 16;
inline constexpr std::int32_t exclamationIcon = 48;
inline constexpr std::int32_t informationIcon = 64;
inline constexpr std::int32_t bringToForeground = 65536;
}  // namespace message_style

namespace message_answer {
inline constexpr std::int32_t ok = 1;
inline constexpr std::int32_t cancel = 2;
inline constexpr std::int32_t yes = 6;
inline constexpr std::int32_t no = 7;
}  // namespace message_answer

// The host's own message dialogue: set it up, show it, then poll its result.
class HostDialog {
 public:
  virtual ~HostDialog() = default;

  virtual Status SetStyle(std::int16_t style) = 0;
  virtual Status SetTitle(const std::string& title) = 0;
  virtual Status SetMessage(const std::string& message) = 0;
  virtual Status Show(bool show) = 0;

  // Negative while the dialogue is open, the chosen button's number once it is closed.
  virtual std::optional<std::int16_t> Result() = 0;
};

struct MessageBoxRequest {
  std::string Text;
  std::int32_t Style = message_style::okOnly;
  std::string Title;
};

namespace file_dialogue_flag {
inline constexpr std::int32_t overwritePrompt = 2;
inline constexpr std::int32_t hideReadOnly = 4;
inline constexpr std::int32_t pathMustExist = 2048;
}  // namespace file_dialogue_flag

enum class FileDialogueKind { Open, Save };

// The settings of the page's one file dialogue. They stay between two uses, as those of a control do.
struct FileDialogue {
  std::string Title;
  std::string Filter;  // pairs of description and pattern, separated by bars
  std::int32_t FilterIndex = 1;
  std::string DefaultExtension;
  std::optional<std::int32_t> Flags;  // empty until they are set for the first time
  bool CancelIsError = false;
  std::string FileName;  // proposed to the user; afterwards the file that was chosen last
};

class SystemDialogues {
 public:
  virtual ~SystemDialogues() = default;

  // A message box; the number of the button that closed it. Empty if it could not be shown.
  virtual std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) = 0;

  // The file the user chose. Empty if the dialogue was cancelled or could not be shown.
  virtual std::optional<std::string> ShowFileDialogue(FileDialogueKind kind,
                                                      const FileDialogue& dialogue) = 0;
};

}  // namespace zolvane
