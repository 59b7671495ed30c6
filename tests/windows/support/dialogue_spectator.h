// Somebody who only looks on at the boxes and dialogues of a module.
#pragma once

#include "bench/windows/play/dialogue_hooks.h"

namespace zolvane {

class DialogueSpectator : public DialogueListener {
 public:
  void BoxOpens(const MessageBoxRequest&) override {}
  void BoxClosed(const MessageBoxRequest&, std::optional<std::int32_t>) override {}
  void FileDialogueOpens(FileDialogueKind, const FileDialogue&) override {}
  void FileDialogueClosed(const std::optional<std::string>&) override {}
};

}  // namespace zolvane
