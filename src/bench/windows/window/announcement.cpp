#include "bench/windows/window/announcement.h"

#include <ostream>

#include "win32/file.h"
#include "win32/text.h"

namespace zolvane {
namespace {

bool LeadsSomewhere(DWORD standardStream) {
  const HANDLE stream = GetStdHandle(standardStream);
  return stream != nullptr && stream != INVALID_HANDLE_VALUE && GetFileType(stream) != FILE_TYPE_UNKNOWN;
}

// Left again, because Ctrl-C there would end the program.
class ParentsConsole {
 public:
  ParentsConsole() : isAttached_{AttachConsole(ATTACH_PARENT_PROCESS) != FALSE} {}
  ~ParentsConsole() {
    if (isAttached_) {
      FreeConsole();
    }
  }
  ParentsConsole(const ParentsConsole&) = delete;
  ParentsConsole& operator=(const ParentsConsole&) = delete;

  bool Write(const std::wstring& text) const {
    if (!isAttached_) {
      return false;
    }
    const auto screen = OpenedFile(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    DWORD written = 0;
    return WriteConsoleW(screen.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) !=
           FALSE;
  }

 private:
  bool isAttached_;
};

}  // namespace

bool SayOnTerminal(Announcement kind, const std::string& text, std::ostream& stream) {
  if (LeadsSomewhere(kind == Announcement::Error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE)) {
    stream << text << std::flush;
    return true;
  }
  return ParentsConsole{}.Write(L"\r\n" + Wide(text));
}

void Announce(Announcement kind, const std::string& text, std::ostream& stream) {
  if (!SayOnTerminal(kind, text, stream)) {
    const UINT icon = kind == Announcement::Error ? MB_ICONERROR : MB_ICONINFORMATION;
    MessageBoxW(nullptr, Wide(text).c_str(), L"HestrionBench", MB_OK | MB_SETFOREGROUND | icon);
  }
}

}  // namespace zolvane
