#include <array>
#include <system_error>
#include <utility>

#include "files/file_claim.h"
#include "files/paths.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "win32/file.h"

namespace zolvane {
namespace {

// The system removes the mark with the handle, however the process ends.
class WindowsFileClaim final : public FileClaim {
 public:
  explicit WindowsFileClaim(UniqueKernelHandle file) : file_{std::move(file)} {}

 private:
  UniqueKernelHandle file_;
};

std::string NumberIn(const std::filesystem::path& mark) {
  const auto file = OpenedFile(mark.native(), GENERIC_READ, sharedWithAll, OPEN_EXISTING);
  if (!file) {
    return "";
  }
  std::array<char, 32> bytes{};
  DWORD count = 0;
  ::ReadFile(file.Get(), bytes.data(), bytes.size(), &count, nullptr);
  const std::string number{bytes.data(), count};
  return IsProcessNumber(number) ? number : "";
}

}  // namespace

std::unique_ptr<FileClaim> TryClaim(const std::filesystem::path& mark, std::string& holder) {
  auto file = OpenedFile(mark.native(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, CREATE_NEW,
                         FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE);
  if (file) {
    const auto number = std::to_string(::GetCurrentProcessId());
    DWORD written = 0;
    ::WriteFile(file.Get(), number.data(), static_cast<DWORD>(number.size()), &written, nullptr);
    return std::make_unique<WindowsFileClaim>(std::move(file));
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
