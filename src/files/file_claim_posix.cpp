#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "files/file_claim.h"
#include "files/file_handle_posix.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// The lock ends with the process, however that ends. The mark may outlive it; without
// a lock it claims nothing.
class PosixFileClaim final : public FileClaim {
 public:
  PosixFileClaim(std::string mark, FileHandle file) : mark_{std::move(mark)}, file_{std::move(file)} {}
  PosixFileClaim(const PosixFileClaim&) = delete;
  PosixFileClaim& operator=(const PosixFileClaim&) = delete;
  ~PosixFileClaim() override { ::unlink(mark_.c_str()); }

 private:
  std::string mark_;
  FileHandle file_;
};

[[noreturn]] void Refuse(const std::string& mark, std::string_view reason) {
  throw UsageError{Joined(Quoted(mark), " ", reason)};
}

// The name still leads to the file that was opened, and not to nothing or to a later one.
bool IsNamed(const FileHandle& file, const std::string& mark) {
  struct stat opened{};
  struct stat named{};
  return ::fstat(file.Number(), &opened) == 0 && ::lstat(mark.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

std::unique_ptr<FileClaim> TryClaim(const std::filesystem::path& mark, std::string& holder) {
  const auto path = mark.string();
  for (;;) {
    auto file = OpenAt(AT_FDCWD, path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!file.IsOpen()) {
      Refuse(path, Joined("cannot be made: ", std::generic_category().message(errno)));
    }
    const bool isLocked = TryLock(file);
    const auto written = ReadAll(file);
    if (!written || !IsProcessNumber(*written)) {
      Refuse(path, "is in the way: it holds no process number");
    }
    if (!isLocked) {
      holder = *written;
      return nullptr;
    }
    if (IsNamed(file, path)) {
      const auto number = std::to_string(::getpid());
      if (::ftruncate(file.Number(), 0) != 0 || !WriteAll(file, 0, number)) {
        Refuse(path, Joined("cannot be written: ", std::generic_category().message(errno)));
      }
      return std::make_unique<PosixFileClaim>(path, std::move(file));
    }
  }
}

}  // namespace zolvane
