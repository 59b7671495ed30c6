#include "bench/windows/play/dialogue_hooks.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "bench/windows/play/imports.h"
#include "text/listed.h"
#include "win32/text.h"

namespace zolvane {
namespace {

// ---- What the module asks for, in the add-in's own terms

std::string TextOf(const wchar_t* text) {
  return text != nullptr ? Utf8(text) : std::string{};
}

// Pairs ended by zeros, with bars between them instead.
std::string FilterText(const wchar_t* pairs) {
  std::string filter;
  while (pairs != nullptr && *pairs != L'\0') {
    const std::wstring_view text{pairs};
    AddListed(filter, "|", Utf8(text));
    pairs += text.size() + 1;
  }
  return filter;
}

FileDialogue DialogueOf(const OPENFILENAMEW& request) {
  return {
      .Title = TextOf(request.lpstrTitle),
      .Filter = FilterText(request.lpstrFilter),
      .FilterIndex = static_cast<std::int32_t>(request.nFilterIndex),
      .DefaultExtension = TextOf(request.lpstrDefExt),
      .Flags = request.Flags != 0 ? std::optional{static_cast<std::int32_t>(request.Flags)} : std::nullopt,
      .CancelIsError = false,
      .FileName = TextOf(request.lpstrFile)};
}

}  // namespace

// Shows what the module wanted to show, and says so before and after.
class DialogueHooks::Dialogues final : public SystemDialogues {
 public:
  explicit Dialogues(DialogueListener& listener) : listener_{listener} {}

  std::function<std::optional<std::int32_t>()> ShowBox;
  std::function<std::optional<std::string>()> ShowFile;

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    listener_.BoxOpens(request);
    const auto answer = listener_.ShowsDialogues() ? ShowBox() : listener_.AnswerUnshown(request);
    listener_.BoxClosed(request, answer);
    return answer;
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    listener_.FileDialogueOpens(kind, dialogue);
    auto chosen = listener_.ShowsDialogues() ? ShowFile() : listener_.ChooseUnshown(kind);
    listener_.FileDialogueClosed(chosen);
    return chosen;
  }

 private:
  DialogueListener& listener_;
};

DialogueHooks::DialogueHooks(HMODULE module, TraceLog* trace, DialogueListener& listener)
    : module_{module},
      real_{std::make_unique<Dialogues>(listener)},
      traced_{trace != nullptr ? Traced(*real_, *trace) : nullptr} {
  current_ = this;
  if (!Redirect(true)) {
    Redirect(false);
    throw std::runtime_error{"the module does not import the system's boxes and file dialogues"};
  }
}

DialogueHooks::~DialogueHooks() {
  Redirect(false);
  current_ = nullptr;
}

bool DialogueHooks::Redirect(bool isOn) const {
  const std::array<std::pair<ULONG_PTR, ULONG_PTR>, 3> functions{{
      {SystemFunction(L"user32.dll", "MessageBoxW"), AddressOf(OnMessageBox)},
      {SystemFunction(L"comdlg32.dll", "GetOpenFileNameW"), AddressOf(OnOpenFile)},
      {SystemFunction(L"comdlg32.dll", "GetSaveFileNameW"), AddressOf(OnSaveFile)},
  }};
  bool areAllFound = true;
  for (const auto& [system, ours] : functions) {
    areAllFound &= ReplaceImport(module_, isOn ? system : ours, isOn ? ours : system);
  }
  return areAllFound;
}

SystemDialogues& DialogueHooks::Shown() const {
  return traced_ ? *traced_ : static_cast<SystemDialogues&>(*real_);
}

int WINAPI DialogueHooks::OnMessageBox(HWND owner, const wchar_t* text, const wchar_t* title, UINT style) {
  auto& self = *current_;
  self.real_->ShowBox = [=]() -> std::optional<std::int32_t> {
    const int answer = MessageBoxW(owner, text, title, style);
    return answer != 0 ? std::optional<std::int32_t>{answer} : std::nullopt;
  };
  return self.Shown()
      .ShowMessageBox(
          {.Text = TextOf(text), .Style = static_cast<std::int32_t>(style), .Title = TextOf(title)})
      .value_or(0);
}

BOOL DialogueHooks::OnFile(FileDialogueKind kind, OPENFILENAMEW* request,
                           BOOL(WINAPI* show)(OPENFILENAMEW*)) {
  auto& self = *current_;
  self.real_->ShowFile = [=]() -> std::optional<std::string> {
    return show(request) != FALSE ? std::optional{TextOf(request->lpstrFile)} : std::nullopt;
  };
  const auto chosen = self.Shown().ShowFileDialogue(kind, DialogueOf(*request));
  if (chosen) {
    lstrcpynW(request->lpstrFile, Wide(*chosen).c_str(), static_cast<int>(request->nMaxFile));
  }
  return chosen ? TRUE : FALSE;
}

BOOL WINAPI DialogueHooks::OnOpenFile(OPENFILENAMEW* request) {
  return OnFile(FileDialogueKind::Open, request, GetOpenFileNameW);
}

BOOL WINAPI DialogueHooks::OnSaveFile(OPENFILENAMEW* request) {
  return OnFile(FileDialogueKind::Save, request, GetSaveFileNameW);
}

}  // namespace zolvane
