#include "files/file_state_posix.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <system_error>

namespace zolvane {
namespace {

FileState StateFrom(int result, const struct stat& status) {
  if (result != 0) {
    return {};
  }
  return {true,
          status.st_mode,
          status.st_uid,
          status.st_dev,
          status.st_ino,
          status.st_nlink,
          status.st_size,
          InstantOf(status.st_mtim),
          InstantOf(status.st_ctim)};
}

}  // namespace

Instant InstantOf(const std::timespec& time) {
  return {time.tv_sec, time.tv_nsec};
}

std::timespec TimeNow() {
  std::timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

bool FileState::IsRegular() const {
  return Exists && S_ISREG(Mode);
}

bool FileState::IsSameFile(const FileState& other) const {
  return Exists && other.Exists && Device == other.Device && Number == other.Number;
}

bool FileState::IsSameAcrossExchange(const FileState& other) const {
  return IsSameFile(other) && Size == other.Size && Modified == other.Modified;
}

FileState StateOf(const FileHandle& file) {
  struct stat status{};
  return StateFrom(::fstat(file.Number(), &status), status);
}

FileState StateOfPath(const std::string& path) {
  struct stat status{};
  return StateFrom(::stat(path.c_str(), &status), status);
}

FileState StateOfName(const FileHandle& folder, const std::string& name) {
  struct stat status{};
  return StateFrom(::fstatat(folder.Number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW), status);
}

std::uint64_t IdentityOf(const FileHandle& file) {
  struct statx status{};
  if (::statx(file.Number(), "", AT_EMPTY_PATH, STATX_INO | STATX_BTIME, &status) != 0) {
    return 0;
  }
  constexpr std::uint64_t prime = 0x100000001B3;  // as in the hash of Fowler, Noll and Vo
  std::uint64_t identity = status.stx_ino;
  for (const auto part : {static_cast<std::uint64_t>(status.stx_btime.tv_sec),
                          static_cast<std::uint64_t>(status.stx_btime.tv_nsec)}) {
    identity = identity * prime ^ part;
  }
  return identity;
}

// File systems count in ticks of the system's clock, old ones in steps of two seconds.
bool IsOldEnough(const FileState& state) {
  const bool countsSeconds = state.Changed.Nanoseconds == 0 && state.Modified.Nanoseconds == 0;
  const long long milliseconds = countsSeconds ? 2500 : 50;
  const std::timespec now = TimeNow();
  if (state.Changed.Seconds < now.tv_sec - 10 || state.Changed.Seconds > now.tv_sec) {
    return state.Changed.Seconds < now.tv_sec;
  }
  const long long seconds = now.tv_sec - state.Changed.Seconds;
  return seconds * 1000 + (now.tv_nsec - state.Changed.Nanoseconds) / 1'000'000 > milliseconds;
}

std::optional<std::filesystem::path> WithoutLinks(std::filesystem::path path) {
  constexpr int mostLinks = 40;
  for (int links = 0; links < mostLinks; ++links) {
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error)) {
      return path;
    }
    const auto target = std::filesystem::read_symlink(path, error);
    if (error) {
      return std::nullopt;
    }
    path = path.parent_path() / target;
  }
  return std::nullopt;
}

std::string FolderOf(const std::filesystem::path& path) {
  return path.has_parent_path() ? path.parent_path().string() : ".";
}

}  // namespace zolvane
