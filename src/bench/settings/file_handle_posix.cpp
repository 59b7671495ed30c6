#include "bench/settings/file_handle_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "bench/settings/exchanged_file.h"

namespace zolvane {
namespace {

bool Control(const FileHandle& file, int command, int argument) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return ::fcntl(file.Number(), command, argument) == 0;
}

}  // namespace

void FileHandle::Close() {
  if (IsOpen()) {
    ::close(std::exchange(number_, -1));
  }
}

FileHandle OpenAt(int folder, const std::string& name, int flags, unsigned int permissions) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return FileHandle{Retried([&] { return ::openat(folder, name.c_str(), flags | O_CLOEXEC, permissions); })};
}

std::optional<std::string> ReadAll(const FileHandle& file) {
  std::string bytes;
  constexpr std::size_t step = std::size_t{1} << 16;
  std::size_t size = 0;
  while (size <= largestSettingsFile) {
    bytes.resize(size + step);
    const auto count =
        Retried([&] { return ::pread(file.Number(), bytes.data() + size, step, static_cast<off_t>(size)); });
    if (count < 0) {
      return std::nullopt;
    }
    if (count == 0) {
      bytes.resize(size);
      return bytes;
    }
    size += static_cast<std::size_t>(count);
  }
  return std::nullopt;
}

bool WriteAll(const FileHandle& file, std::size_t offset, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = Retried(
        [&] { return ::pwrite(file.Number(), bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
    if (written <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += static_cast<std::size_t>(written);
  }
  return true;
}

bool MakeDurable(const FileHandle& file) {
  return Retried([&] { return ::fsync(file.Number()); }) == 0;
}

bool GiveAttributes(const FileHandle& from, const FileHandle& to) {
  struct stat wanted {};
  struct stat present {};
  if (::fstat(from.Number(), &wanted) != 0 || ::fstat(to.Number(), &present) != 0) {
    return false;
  }
  const bool hasOwner = wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid;
  if (!hasOwner && ::fchown(to.Number(), wanted.st_uid, wanted.st_gid) != 0 &&
      ::fchown(to.Number(), static_cast<uid_t>(-1), wanted.st_gid) != 0 && errno != EPERM) {
    return false;
  }
  constexpr mode_t permissions = 07777;
  const mode_t mode = wanted.st_mode & permissions;
  // A change of owner may have taken permissions away.
  const bool hasMode = ::fstat(to.Number(), &present) == 0 && present.st_mode == wanted.st_mode;
  return hasMode || ::fchmod(to.Number(), mode) == 0;
}

bool TryLock(const FileHandle& file) {
  return Retried([&] { return ::flock(file.Number(), LOCK_EX | LOCK_NB); }) == 0;
}

void Unlock(const FileHandle& file) {
  ::flock(file.Number(), LOCK_UN);
}

FolderLock::FolderLock(const FileHandle& folder) : folder_{folder.Number()} {
  Retried([this] { return ::flock(folder_, LOCK_EX); });
}

FolderLock::~FolderLock() {
  ::flock(folder_, LOCK_UN);
}

// The system announces a visitor by a signal; it gets one that is ignored unless asked for.
bool TryLease(const FileHandle& file) {
  return Control(file, F_SETSIG, SIGURG) && Control(file, F_SETLEASE, F_WRLCK);
}

void EndLease(const FileHandle& file) {
  Control(file, F_SETLEASE, F_UNLCK);
}

}  // namespace zolvane
