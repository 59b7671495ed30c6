// Stands between a module and the system's boxes and file dialogues: what it shows can be traced, and
// answered by a program instead of the user. The real boxes and dialogues still appear, unless the
// listener does without them.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "bench/host/tracing.h"
#include "host/dialogues.h"
#include "win32/windows_headers.h"
// After the header of the system that it builds on.
#include <commdlg.h>

namespace zolvane {

// Called when a box or dialogue is about to appear, on the thread that shows it.
class DialogueListener {
 public:
  virtual ~DialogueListener() = default;

  virtual void BoxOpens(const MessageBoxRequest& request) = 0;
  virtual void BoxClosed(const MessageBoxRequest& request, std::optional<std::int32_t> answer) = 0;
  virtual void FileDialogueOpens(FileDialogueKind kind, const FileDialogue& dialogue) = 0;
  virtual void FileDialogueClosed(const std::optional<std::string>& chosen) = 0;

  // False: nothing appears, and what this answers is what the module gets.
  virtual bool ShowsDialogues() const { return true; }
  virtual std::optional<std::int32_t> AnswerUnshown(const MessageBoxRequest&) { return std::nullopt; }
  virtual std::optional<std::string> ChooseUnshown(FileDialogueKind) { return std::nullopt; }
};

// One at a time in a process. Throws std::runtime_error when the module shows no boxes or dialogues at all.
class DialogueHooks {
 public:
  // Without a trace `trace` is null. Module, trace and listener outlive the hooks.
  DialogueHooks(HMODULE module, TraceLog* trace, DialogueListener& listener);
  ~DialogueHooks();
  DialogueHooks(const DialogueHooks&) = delete;
  DialogueHooks& operator=(const DialogueHooks&) = delete;

 private:
  class Dialogues;

  static int WINAPI OnMessageBox(HWND owner, const wchar_t* text, const wchar_t* title, UINT style);
  static BOOL WINAPI OnOpenFile(OPENFILENAMEW* request);
  static BOOL WINAPI OnSaveFile(OPENFILENAMEW* request);
  static BOOL OnFile(FileDialogueKind kind, OPENFILENAMEW* request, BOOL(WINAPI* show)(OPENFILENAMEW*));

  // False when the module does not import all of them.
  bool Redirect(bool isOn) const;

  SystemDialogues& Shown() const;

  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): hooks carry no pointer of ours
  inline static DialogueHooks* current_ = nullptr;

  HMODULE module_;
  std::unique_ptr<Dialogues> real_;
  std::unique_ptr<SystemDialogues> traced_;
};

}  // namespace zolvane
