#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "custody/disk/disk.h"
#include "files/file_handle_posix.h"

namespace zolvane {

Status SystemDisk::FailAsTheSystemSays(const std::string& path, std::string_view what) {
  return Fail(path, std::string{what} + ": " + std::generic_category().message(errno));
}

Status SystemDisk::Create(const std::string& path, std::string_view bytes) {
  const auto file = OpenAt(AT_FDCWD, path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
  if (!file.IsOpen()) {
    return FailAsTheSystemSays(path, "cannot be made");
  }
  if (!WriteAll(file, 0, bytes)) {
    const Status failed = FailAsTheSystemSays(path, "cannot be written");
    PassOver(Remove(path));
    return failed;
  }
  return Status::Success();
}

Status SystemDisk::Append(const std::string& path, std::string_view bytes) {
  const auto file = OpenAt(AT_FDCWD, path, O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK);
  struct stat state{};
  if (!file.IsOpen() || ::fstat(file.Number(), &state) != 0) {
    return FailAsTheSystemSays(path, "cannot be written");
  }
  if (!S_ISREG(state.st_mode)) {
    return Fail(path, "is not an ordinary file");
  }
  if (!WriteAll(file, static_cast<std::size_t>(state.st_size), bytes)) {
    return FailAsTheSystemSays(path, "cannot be written");
  }
  return Status::Success();
}

Status SystemDisk::SyncFile(const std::string& path) {
  const auto file = OpenAt(AT_FDCWD, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  return file.IsOpen() && MakeDurable(file) ? Status::Success()
                                            : FailAsTheSystemSays(path, "cannot be flushed to the disk");
}

Status SystemDisk::SyncFolder(const std::string& path) {
  const auto folder = OpenAt(AT_FDCWD, path, O_RDONLY | O_DIRECTORY);
  return folder.IsOpen() && MakeDurable(folder) ? Status::Success()
                                                : FailAsTheSystemSays(path, "cannot be flushed to the disk");
}

Status SystemDisk::Rename(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? Status::Success()
                                                    : FailAsTheSystemSays(from, "cannot be renamed");
}

}  // namespace zolvane
