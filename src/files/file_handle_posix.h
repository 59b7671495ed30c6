// An open file or folder of a POSIX system, and what is done with one.
#pragma once

#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zolvane {

// A system call that a signal interrupts is made again.
template <class Call>
auto Retried(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

class FileHandle {
 public:
  FileHandle() = default;
  explicit FileHandle(int number) : number_{number} {}
  FileHandle(FileHandle&& other) noexcept : number_{std::exchange(other.number_, -1)} {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(number_, other.number_);
    other.Close();
    return *this;
  }
  ~FileHandle() { Close(); }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  void Close();

 private:
  int number_ = -1;
};

// `folder` is the number of an open folder, or AT_FDCWD. When the handle is not open, errno says why.
FileHandle OpenAt(int folder, const std::string& name, int flags, unsigned int permissions = 0);

// Nothing when it cannot be read, or is too large for a settings file.
std::optional<std::string> ReadAll(const FileHandle& file);

bool WriteAll(const FileHandle& file, std::size_t offset, std::string_view bytes);

// What was written survives a power cut; of a folder, the names in it.
bool MakeDurable(const FileHandle& file);

// Never over a file that is there already: then errno is EEXIST.
bool RenameToFree(int folder, const std::string& name, const std::string& freeName);

// Excludes those who ask for it, too. False when somebody has it, or the file system has no locks.
bool TryLock(const FileHandle& file);

// The call is unknown to the system or the file system.
bool IsUnsupported(int error);

// Excludes other writers of this kind. File systems without such locks are used without.
class FolderLock {
 public:
  explicit FolderLock(const FileHandle& folder);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

  bool IsRefused() const { return isRefused_; }  // somebody else has it

 private:
  int folder_;
  bool isRefused_;
};

// A lease is granted when nobody else has a file open: for writing, or at all. As long as it is held, whoever
// opens the file so waits for its end. It ends when the handle is closed, at the latest.
enum class LeaseAnswer {
  Granted,
  Refused,     // somebody has the file open
  Unavailable  // the system does not tell: a file of somebody else, or on a computer elsewhere
};

// The handle must be for reading only.
LeaseAnswer TryLeaseAgainstWriters(const FileHandle& file);
// The handle must be the only one of this process.
LeaseAnswer TryLeaseAgainstAll(const FileHandle& file);

// Nobody has asked for the file since the lease was granted.
bool HoldsLease(const FileHandle& file);
void EndLease(const FileHandle& file);

}  // namespace zolvane
