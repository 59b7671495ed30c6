#include "files/file_handle_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>

#include "files/exchanged_file.h"

namespace zolvane {
namespace {

bool Control(const FileHandle& file, int command, int argument) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return ::fcntl(file.Number(), command, argument) == 0;
}

// On these a refusal only says that the server has not handed out its own lease.
bool IsOnAnotherComputer(const FileHandle& file) {
  constexpr std::array<std::uint32_t, 4> kinds{0x6969, 0x517B, 0xFF534D42,
                                               0xFE534D42};  // NFS, and three of SMB
  struct statfs system{};
  return ::fstatfs(file.Number(), &system) == 0 &&
         std::ranges::find(kinds, static_cast<std::uint32_t>(system.f_type)) != kinds.end();
}

// The system announces a visitor by a signal; it gets one that is ignored unless asked for.
LeaseAnswer TryLease(const FileHandle& file, int kind) {
  if (Control(file, F_SETSIG, SIGURG) && Control(file, F_SETLEASE, kind)) {
    return LeaseAnswer::Granted;
  }
  return errno == EAGAIN && !IsOnAnotherComputer(file) ? LeaseAnswer::Refused : LeaseAnswer::Unavailable;
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

bool IsUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

bool RenameToFree(int folder, const std::string& name, const std::string& freeName) {
  if (::renameat2(folder, name.c_str(), folder, freeName.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  return IsUnsupported(errno) && ::linkat(folder, name.c_str(), folder, freeName.c_str(), 0) == 0 &&
         ::unlinkat(folder, name.c_str(), 0) == 0;
}

bool TryLock(const FileHandle& file) {
  return Retried([&] { return ::flock(file.Number(), LOCK_EX | LOCK_NB); }) == 0;
}

FolderLock::FolderLock(const FileHandle& folder)
    : folder_{folder.Number()}, isRefused_{!TryLock(folder) && errno == EWOULDBLOCK} {}

FolderLock::~FolderLock() {
  if (!isRefused_) {
    ::flock(folder_, LOCK_UN);
  }
}

LeaseAnswer TryLeaseAgainstWriters(const FileHandle& file) {
  return TryLease(file, F_RDLCK);
}

LeaseAnswer TryLeaseAgainstAll(const FileHandle& file) {
  return TryLease(file, F_WRLCK);
}

bool HoldsLease(const FileHandle& file) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return ::fcntl(file.Number(), F_GETLEASE) != F_UNLCK;
}

void EndLease(const FileHandle& file) {
  Control(file, F_SETLEASE, F_UNLCK);
}

}  // namespace zolvane
