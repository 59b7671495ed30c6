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

// Owner and permissions. Only a privileged process can give a file to another owner; for others the group is
// kept where that is allowed, and the file becomes their own.
bool GiveAttributes(const FileHandle& from, const FileHandle& to);

// Excludes those who ask for it, too. False when somebody has it, or the file system has no locks.
bool TryLock(const FileHandle& file);
void Unlock(const FileHandle& file);

// Waits for other writers of this kind. File systems without such locks are used without.
class FolderLock {
 public:
  explicit FolderLock(const FileHandle& folder);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

 private:
  int folder_;
};

// True when nobody else has the file open. From then on until the lease is given back, whoever opens it
// waits: that can only be somebody who looked up the name before the last exchange, or who looks into hidden
// files.
bool TryLease(const FileHandle& file);
void EndLease(const FileHandle& file);

}  // namespace zolvane
