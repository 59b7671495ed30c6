// The seam to the disk: everything that custody reads or keeps goes through it, so that all of it can be
// played in memory, and on a disk that loses its power. Paths are UTF-8 texts, as in files/paths.h.
//
// A call that fails changes nothing, but for Append: the file then ends in a part of the bytes, or in all of them.
// Two separate promises: after SyncFile the bytes of the file survive a power cut, after SyncFolder the names in the
// folder do. Without them any part of either may be gone.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "files/exchanged_file.h"
#include "host/status.h"

namespace zolvane {

struct DiskContent {
  enum class State { Present, Missing, Unreadable };

  State Is = State::Unreadable;
  std::string Bytes;   // empty unless it is present
  std::string Reason;  // unless it is present: the end of a sentence about the file ("is a folder")
};

// Lasts as long as the object, and never longer than the process.
class DiskLock {
 public:
  virtual ~DiskLock() = default;
};

class Disk {
 public:
  Disk() = default;
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;
  virtual ~Disk() = default;

  // Follows links, as the host does. What is no ordinary file, or too large for a settings file, is
  // unreadable.
  virtual DiskContent Read(const std::string& path) = 0;

  // A new file; fails if the name is taken, be it by a link that leads nowhere.
  virtual Status Create(const std::string& path, std::string_view bytes) = 0;

  // Fails unless an ordinary file stands under the name, not a link to one.
  virtual Status Append(const std::string& path, std::string_view bytes) = 0;

  virtual Status SyncFile(const std::string& path) = 0;
  virtual Status SyncFolder(const std::string& path) = 0;

  // Succeeds if the folder is there; a link to a folder is none.
  virtual Status MakeFolder(const std::string& path) = 0;

  // A file takes the place of the file that bears the new name.
  virtual Status Rename(const std::string& from, const std::string& to) = 0;

  // Of a file, or of a link itself; never of a folder.
  virtual Status Remove(const std::string& path) = 0;

  // Keeps others who ask for the same path out, without waiting. Null if another lock lasts: `holder` is then
  // who has it ("process 4711"). Null with an empty `holder` is a failure.
  virtual std::unique_ptr<DiskLock> Lock(const std::string& path, std::string& holder) = 0;

  // A settings file, for FileSettingsService. The disk outlives it.
  virtual std::unique_ptr<ExchangedFile> OpenSettings(const std::string& path) = 0;

  // Why a settings file cannot be written there, as the end of a sentence about it ("cannot be written"). Nothing if
  // it can; it may be missing.
  virtual std::optional<std::string> ReasonAgainstWriting(const std::string& path) = 0;

  // Puts the file there, whatever stood under its name: at any time it is the old one or the new one, whole. The
  // name lasts after the next SyncFolder.
  Status Replace(const std::string& path, std::string_view bytes);

  // Whether Replace can make a file there. Nothing of the trial stays but, after a power cut, an empty file of
  // another name.
  Status TryReplacing(const std::string& path);

  // Why the last call that failed did, as a sentence without its full stop, with the path in it.
  const std::string& FailureReason() const { return failureReason_; }

 protected:
  Status Fail(const std::string& path, std::string_view reason);
  Status FailWith(std::string reason);

 private:
  Status CreateFresh(const std::string& path, std::string_view bytes);

  std::string failureReason_;
};

// The disk of the system.
class SystemDisk final : public Disk {
 public:
  DiskContent Read(const std::string& path) override;
  Status Create(const std::string& path, std::string_view bytes) override;
  Status Append(const std::string& path, std::string_view bytes) override;
  Status SyncFile(const std::string& path) override;
  Status SyncFolder(const std::string& path) override;
  Status MakeFolder(const std::string& path) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  std::unique_ptr<DiskLock> Lock(const std::string& path, std::string& holder) override;
  std::unique_ptr<ExchangedFile> OpenSettings(const std::string& path) override;
  std::optional<std::string> ReasonAgainstWriting(const std::string& path) override;

 private:
  Status FailAsTheSystemSays(const std::string& path, std::string_view what);
};

// A disk in memory: what is written to it ends with it. A file brings the folders that it lies in along.
class MemoryDisk final : public Disk {
 public:
  MemoryDisk() = default;

  // A copy, made file by file as they are asked for. Nothing reaches the original, which outlives it.
  explicit MemoryDisk(Disk& original) : original_{&original} {}

  DiskContent Read(const std::string& path) override;
  Status Create(const std::string& path, std::string_view bytes) override;
  Status Append(const std::string& path, std::string_view bytes) override;
  Status SyncFile(const std::string& path) override;
  Status SyncFolder(const std::string& path) override;
  Status MakeFolder(const std::string& path) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  std::unique_ptr<DiskLock> Lock(const std::string& path, std::string& holder) override;
  std::unique_ptr<ExchangedFile> OpenSettings(const std::string& path) override;
  std::optional<std::string> ReasonAgainstWriting(const std::string& path) override;

  // One name for a path, however its separators are written.
  static std::string NameOnDisk(const std::string& path);

  // Puts the file there, whatever stood under its name.
  void Put(const std::string& path, std::string_view bytes);

  // Everything on it: files with their bytes, and folders, each under its one name.
  const std::map<std::string, std::string>& Files() const { return files_; }
  const std::set<std::string>& Folders() const { return folders_; }

  // Counts the changes of what it holds.
  std::size_t Changes() const { return changes_; }

 private:
  std::string Fetched(const std::string& path);
  Status FailUnlessFile(const std::string& path);

  Disk* original_ = nullptr;
  std::set<std::string> seen_;                     // of the original
  std::map<std::string, std::string> unreadable_;  // of the original, folders among them, and why
  std::map<std::string, std::string> files_;
  std::set<std::string> folders_;
  std::size_t changes_ = 0;
  std::shared_ptr<std::set<std::string>> locked_ = std::make_shared<std::set<std::string>>();
};

}  // namespace zolvane
