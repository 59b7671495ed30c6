#include "program/terminal.h"

#include <fcntl.h>
#include <io.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <string>

#include "win32/text.h"
// After the header of the system that it builds on.
#include <shellapi.h>

namespace zolvane {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): the system calls a plain function
std::atomic<void (*)()> interruptCall{nullptr};

// Windows ends the program as soon as this returns, unless it was Ctrl-C or Ctrl-Break, and after some
// seconds in any case. The session has to end within that time, so nothing may wait for an instrument.
BOOL WINAPI OnControlEvent(DWORD event) {
  const bool isTheEnd = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
  const auto call = interruptCall.load();
  for (int times = isTheEnd ? 2 : 1; call != nullptr && times > 0; --times) {
    call();
  }
  if (isTheEnd) {
    ::Sleep(INFINITE);
  }
  return TRUE;
}

bool IsConsole(DWORD stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(stream), &mode) != 0;
}

class ConsoleTerminal final : public Questioner {
 public:
  std::optional<std::string> Ask(std::string_view text) override {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    std::array<wchar_t, 1024> line{};
    DWORD length = 0;
    HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    if (::ReadConsoleW(input, line.data(), line.size(), &length, nullptr) == 0 || length == 0) {
      return std::nullopt;
    }
    std::wstring_view typed{line.data(), length};
    while (typed.ends_with(L'\n') || typed.ends_with(L'\r')) {
      typed.remove_suffix(1);
    }
    return Utf8(typed);
  }
};

}  // namespace

std::vector<std::string> ProgramArguments(int, char**) {
  int count = 0;
  wchar_t** const arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int index = 1; arguments != nullptr && index < count; ++index) {
    texts.push_back(Utf8(arguments[index]));
  }
  ::LocalFree(static_cast<void*>(arguments));
  return texts;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
  const std::wstring wide{name.begin(), name.end()};
  std::wstring text(32768, L'\0');
  text.resize(::GetEnvironmentVariableW(wide.c_str(), text.data(), static_cast<DWORD>(text.size())));
  return text.empty() ? std::nullopt : std::optional{Utf8(text)};
}

// Windows does not reuse handles as other systems reuse descriptors.
void KeepStandardStreams() {
  ::_setmode(1, _O_BINARY);
  ::SetConsoleOutputCP(CP_UTF8);
}

std::unique_ptr<Questioner> OpenTerminal() {
  return IsConsole(STD_INPUT_HANDLE) && IsConsole(STD_ERROR_HANDLE) ? std::make_unique<ConsoleTerminal>()
                                                                    : nullptr;
}

std::optional<std::size_t> ErrorTerminalWidth() {
  HANDLE stream = ::GetStdHandle(STD_ERROR_HANDLE);
  CONSOLE_SCREEN_BUFFER_INFO info{};
  DWORD mode = 0;
  const bool isConsole = ::GetConsoleMode(stream, &mode) != 0 &&
                         ::SetConsoleMode(stream, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 &&
                         ::GetConsoleScreenBufferInfo(stream, &info) != 0;
  return isConsole && info.dwSize.X > 1 ? std::optional{static_cast<std::size_t>(info.dwSize.X)}
                                        : std::nullopt;
}

void TakeInterrupts(void (*interrupt)()) {
  interruptCall = interrupt;
  ::SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

}  // namespace zolvane
