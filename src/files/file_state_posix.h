// What a POSIX system tells of a file.
#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>

#include "files/file_handle_posix.h"

namespace zolvane {

struct Instant {
  std::time_t Seconds = 0;
  long Nanoseconds = 0;

  friend bool operator==(const Instant&, const Instant&) = default;
};

Instant InstantOf(const std::timespec& time);
std::timespec TimeNow();

// Two equal ones are the same state of the same file, if the file system's clock is fine enough.
struct FileState {
  bool Exists = false;
  std::uint32_t Mode = 0;  // kind and permissions
  std::uint32_t Owner = 0;
  std::uint64_t Device = 0;
  std::uint64_t Number = 0;
  std::uint64_t Names = 0;
  std::int64_t Size = 0;
  Instant Modified;
  Instant Changed;

  friend bool operator==(const FileState&, const FileState&) = default;

  bool IsRegular() const;
  bool IsSameFile(const FileState& other) const;
  // An exchange itself sets the time of change, so that cannot be compared across one.
  bool IsSameAcrossExchange(const FileState& other) const;
};

FileState StateOf(const FileHandle& file);
FileState StateOfPath(const std::string& path);
// Of a link its own.
FileState StateOfName(const FileHandle& folder, const std::string& name);

// One number for the file, made of its number in the file system and the time of its birth, since numbers are
// given again. 0 when it is not open.
std::uint64_t IdentityOf(const FileHandle& file);

// A change so recent that another one could follow under the same time stamp cannot be told from it.
bool IsOldEnough(const FileState& state);

// Where the path leads to, so that a link stays a link. The last part may be missing.
std::optional<std::filesystem::path> WithoutLinks(std::filesystem::path path);

// The folder of a path; that of the process when the path names none.
std::string FolderOf(const std::filesystem::path& path);

}  // namespace zolvane
