#include "shell/windows/host/windows_environment.h"

#include <commdlg.h>

#include <algorithm>
#include <string>

#include "shell/windows/host/com_ini_file_service.h"
#include "win32/file.h"
#include "win32/guarded.h"
#include "win32/message_queue.h"
#include "win32/module_instance.h"
#include "win32/text.h"

namespace zolvane {
namespace {

Status LastFailure() {
  return Status::Failure(HRESULT_FROM_WIN32(GetLastError()));
}

// Restores the process's current folder, which belongs to the host and which file dialogues change.
class CurrentFolder {
 public:
  CurrentFolder() : folder_(GetCurrentDirectoryW(0, nullptr), L'\0') {
    folder_.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder_.size()), folder_.data()));
  }
  ~CurrentFolder() { SetCurrentDirectoryW(folder_.c_str()); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  std::wstring folder_;
};

// The system wants a filter's pairs separated and ended by zeros instead of bars.
std::wstring FilterPairs(std::string_view filter) {
  std::wstring pairs = Wide(filter);
  std::ranges::replace(pairs, L'|', L'\0');
  return pairs + L'\0';
}

// The proposed name, in a buffer that holds any path.
std::wstring NameBuffer(const std::string& proposed) {
  constexpr std::size_t longestPath = 32768;
  std::wstring buffer = Wide(proposed);
  buffer.resize(longestPath);
  return buffer;
}

}  // namespace

std::string WindowsEnvironment::ProgramFolder() {
  std::wstring path = ModulePath();
  const auto end = path.find_last_of(L'\\');
  path.resize(end == std::wstring::npos ? 0 : end);
  if (path.ends_with(L':')) {
    path += L'\\';
  }
  return Utf8(path);
}

std::shared_ptr<IniFileService> WindowsEnvironment::CreateIniFileService() {
  return CreateComIniFileService();
}

Status WindowsEnvironment::AppendBlankLine(const std::string& file) {
  const auto opened =
      OpenedFile(Wide(file), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS);
  if (!opened) {
    return LastFailure();
  }
  constexpr std::string_view blankLine = "\r\n";
  constexpr auto size = static_cast<DWORD>(blankLine.size());
  DWORD written = 0;
  return WriteFile(opened.Get(), blankLine.data(), size, &written, nullptr) != FALSE ? Status::Success()
                                                                                     : LastFailure();
}

void WindowsEnvironment::RunMessageLoopOnce() {
  DispatchWaitingMessages();
}

std::optional<std::int32_t> WindowsEnvironment::ShowMessageBox(const MessageBoxRequest& request) {
  const int answer = MessageBoxW(owner_(), Wide(request.Text).c_str(), Wide(request.Title).c_str(),
                                 static_cast<UINT>(request.Style));
  return answer != 0 ? std::optional<std::int32_t>{answer} : std::nullopt;
}

std::optional<std::string> WindowsEnvironment::ShowFileDialogue(FileDialogueKind kind,
                                                                const FileDialogue& dialogue) {
  const CurrentFolder staysAsItIs;
  const std::wstring filter = FilterPairs(dialogue.Filter);
  const std::wstring title = Wide(dialogue.Title);
  const std::wstring extension = Wide(dialogue.DefaultExtension);
  std::wstring name = NameBuffer(dialogue.FileName);

  OPENFILENAMEW request{};
  request.lStructSize = sizeof(request);
  request.hwndOwner = owner_();
  request.lpstrFilter = filter.c_str();
  request.nFilterIndex = static_cast<DWORD>(dialogue.FilterIndex);
  request.lpstrFile = name.data();
  request.nMaxFile = static_cast<DWORD>(name.size());
  request.lpstrTitle = title.c_str();
  request.lpstrDefExt = extension.c_str();
  request.Flags = static_cast<DWORD>(dialogue.Flags.value_or(0));
  const BOOL isChosen =
      kind == FileDialogueKind::Open ? GetOpenFileNameW(&request) : GetSaveFileNameW(&request);
  return isChosen != FALSE ? std::optional{Utf8(std::wstring_view{name}.substr(0, name.find(L'\0')))}
                           : std::nullopt;
}

}  // namespace zolvane
