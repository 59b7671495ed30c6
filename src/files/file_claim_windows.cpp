#include <windows.h>

#include <array>
#include <system_error>

#include "files/file_claim.h"
#include "files/paths.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// The system removes the mark with the handle, however the process ends.
class WindowsFileClaim final : public FileClaim {
 public:
  explicit WindowsFileClaim(HANDLE file) : file_{file} {}
  WindowsFileClaim(const WindowsFileClaim&) = delete;
  WindowsFileClaim& operator=(const WindowsFileClaim&) = delete;
  ~WindowsFileClaim() override { ::CloseHandle(file_); }

 private:
  HANDLE file_;
};

std::string NumberIn(const std::filesystem::path& mark) {
  constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = ::CreateFileW(mark.c_str(), GENERIC_READ, shareAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return "";
  }
  std::array<char, 32> bytes{};
  DWORD count = 0;
  ::ReadFile(file, bytes.data(), bytes.size(), &count, nullptr);
  ::CloseHandle(file);
  const std::string number{bytes.data(), count};
  return IsProcessNumber(number) ? number : "";
}

}  // namespace

std::unique_ptr<FileClaim> TryClaim(const std::filesystem::path& mark, std::string& holder) {
  const HANDLE file = ::CreateFileW(mark.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    const auto number = std::to_string(::GetCurrentProcessId());
    DWORD written = 0;
    ::WriteFile(file, number.data(), static_cast<DWORD>(number.size()), &written, nullptr);
    return std::make_unique<WindowsFileClaim>(file);
  }
  const DWORD reason = ::GetLastError();
  if (reason == ERROR_FILE_EXISTS || reason == ERROR_SHARING_VIOLATION || reason == ERROR_ACCESS_DENIED) {
    holder = NumberIn(mark);
    return nullptr;
  }
  throw UsageError{Joined(Quoted(TextOf(mark)),
                          " cannot be made: ", std::system_category().message(static_cast<int>(reason)))};
}

}  // namespace zolvane
