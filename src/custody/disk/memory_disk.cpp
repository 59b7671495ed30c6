#include <algorithm>
#include <iterator>
#include <utility>

#include "custody/disk/disk.h"
#include "files/paths.h"

namespace zolvane {
namespace {

class MemoryLock final : public DiskLock {
 public:
  MemoryLock(std::shared_ptr<std::set<std::string>> locked, std::string name)
      : locked_{std::move(locked)}, name_{std::move(name)} {}
  MemoryLock(const MemoryLock&) = delete;
  MemoryLock& operator=(const MemoryLock&) = delete;
  ~MemoryLock() override { locked_->erase(name_); }

 private:
  std::shared_ptr<std::set<std::string>> locked_;
  std::string name_;
};

class MemorySettings final : public ExchangedFile {
 public:
  MemorySettings(MemoryDisk& disk, std::string path) : disk_{disk}, path_{std::move(path)} {}

  bool IsCurrent() override { return seen_ == disk_.Changes(); }

  FileContent Read() override {
    seen_ = disk_.Changes();
    auto content = disk_.Read(path_);
    switch (content.Is) {
      case DiskContent::State::Present:
        return {FileContent::State::Present, std::move(content.Bytes)};
      case DiskContent::State::Missing:
        return {FileContent::State::Missing, {}};
      default:
        return {};
    }
  }

  WriteOutcome Write(std::string_view text, const Splice& change) override {
    const auto content = disk_.Read(path_);
    if (content.Is == DiskContent::State::Unreadable) {
      return WriteOutcome::Failed;
    }
    if (content.Bytes != text) {
      return WriteOutcome::Changed;
    }
    disk_.Put(path_, std::string{text}.replace(change.Offset, change.Removed, change.Inserted));
    seen_ = disk_.Changes();
    return WriteOutcome::Done;
  }

  Status Flush() override { return Status::Success(); }

 private:
  MemoryDisk& disk_;
  std::string path_;
  std::optional<std::size_t> seen_;
};

}  // namespace

std::string MemoryDisk::NameOnDisk(const std::string& path) {
  const auto name = PathOf(path).lexically_normal().generic_u8string();
  return {name.begin(), name.end()};
}

// Copies the file from the original on first use. Returns its name on this disk.
std::string MemoryDisk::Fetched(const std::string& path) {
  auto name = NameOnDisk(path);
  if (original_ != nullptr && seen_.insert(name).second) {
    const auto content = original_->Read(path);
    if (content.Is == DiskContent::State::Present) {
      Put(path, content.Bytes);
    } else if (content.Is == DiskContent::State::Unreadable) {
      unreadable_[name] = content.Reason;
    }
  }
  return name;
}

Status MemoryDisk::FailUnlessFile(const std::string& path) {
  const auto name = Fetched(path);
  return files_.contains(name) ? Status::Success()
                               : Fail(path, folders_.contains(name) ? "is a folder" : "does not exist");
}

void MemoryDisk::Put(const std::string& path, std::string_view bytes) {
  const auto name = NameOnDisk(path);
  for (auto slash = name.rfind('/'); slash != std::string::npos && slash > 0;
       slash = name.rfind('/', slash - 1)) {
    folders_.insert(name.substr(0, slash));
  }
  files_[name] = bytes;
  ++changes_;
}

DiskContent MemoryDisk::Read(const std::string& path) {
  const auto name = Fetched(path);
  if (const auto file = files_.find(name); file != files_.end()) {
    return {DiskContent::State::Present, file->second, {}};
  }
  if (const auto there = unreadable_.find(name); there != unreadable_.end()) {
    return {DiskContent::State::Unreadable, {}, there->second};
  }
  return folders_.contains(name) ? DiskContent{DiskContent::State::Unreadable, {}, "is a folder"}
                                 : DiskContent{DiskContent::State::Missing, {}, "does not exist"};
}

Status MemoryDisk::Create(const std::string& path, std::string_view bytes) {
  if (const auto name = Fetched(path); files_.contains(name) || folders_.contains(name)) {
    return Fail(path, "cannot be made: it is there");
  }
  Put(path, bytes);
  return Status::Success();
}

Status MemoryDisk::Append(const std::string& path, std::string_view bytes) {
  return FailUnlessFile(path).Then([&] {
    files_[NameOnDisk(path)] += bytes;
    ++changes_;
    return Status::Success();
  });
}

Status MemoryDisk::SyncFile(const std::string& path) {
  return FailUnlessFile(path);
}

Status MemoryDisk::SyncFolder(const std::string& path) {
  const bool isThere =
      folders_.contains(NameOnDisk(path)) || (original_ != nullptr && original_->SyncFolder(path).Ok());
  return isThere ? Status::Success() : Fail(path, "is no folder");
}

Status MemoryDisk::MakeFolder(const std::string& path) {
  const auto name = NameOnDisk(path);
  if (files_.contains(name)) {
    return Fail(path, "is in the way: it is no folder");
  }
  folders_.insert(name);
  ++changes_;
  return Status::Success();
}

Status MemoryDisk::Rename(const std::string& from, const std::string& to) {
  const auto oldName = Fetched(from);
  const auto newName = Fetched(to);
  if (folders_.contains(newName) || !(files_.contains(oldName) || folders_.contains(oldName))) {
    return Fail(from, "cannot be renamed");
  }
  const auto renamed = [&](const std::string& name) {
    const bool isMoved = name == oldName || name.starts_with(oldName + '/');
    return isMoved ? newName + name.substr(oldName.size()) : name;
  };
  files_.erase(newName);
  decltype(files_) files;
  for (auto& [name, bytes] : files_) {
    files.emplace(renamed(name), std::move(bytes));
  }
  files_ = std::move(files);
  decltype(folders_) folders;
  std::ranges::transform(folders_, std::inserter(folders, folders.end()), renamed);
  folders_ = std::move(folders);
  ++changes_;
  return Status::Success();
}

Status MemoryDisk::Remove(const std::string& path) {
  return FailUnlessFile(path).Then([&] {
    files_.erase(NameOnDisk(path));
    ++changes_;
    return Status::Success();
  });
}

std::unique_ptr<DiskLock> MemoryDisk::Lock(const std::string& path, std::string& holder) {
  auto name = NameOnDisk(path);
  if (!locked_->insert(name).second) {
    holder = "this process";
    return nullptr;
  }
  return std::make_unique<MemoryLock>(locked_, std::move(name));
}

std::unique_ptr<ExchangedFile> MemoryDisk::OpenSettings(const std::string& path) {
  return std::make_unique<MemorySettings>(*this, path);
}

std::optional<std::string> MemoryDisk::ReasonAgainstWriting(const std::string& path) {
  return original_ != nullptr ? original_->ReasonAgainstWriting(path) : std::nullopt;
}

}  // namespace zolvane
