#include "custody/disk/crash_disk.h"

#include <algorithm>
#include <iterator>

#include "custody/disk/sha256.h"

namespace zolvane {
namespace {

std::string FolderOfPath(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? std::string{} : path.substr(0, slash);
}

class LastingSettings final : public ExchangedFile {
 public:
  LastingSettings(CrashDisk& disk, std::string path)
      : disk_{disk}, path_{std::move(path)}, seen_{disk.Seen().OpenSettings(path_)} {}

  bool IsCurrent() override { return seen_->IsCurrent(); }
  FileContent Read() override { return seen_->Read(); }
  WriteOutcome Write(std::string_view text, const Splice& change) override {
    const auto outcome = seen_->Write(text, change);
    if (outcome == WriteOutcome::Done) {
      disk_.PutToLast(path_);
    }
    return outcome;
  }
  Status Flush() override { return Status::Success(); }

 private:
  CrashDisk& disk_;
  std::string path_;
  std::unique_ptr<ExchangedFile> seen_;
};

}  // namespace

CrashDisk::CrashDisk(const MemoryDisk& initial, Visitor visit) : visit_{std::move(visit)} {
  for (const auto& folder : initial.Folders()) {
    PassOver(seen_.MakeFolder(folder));
    names_[folder] = NewNode(true);
  }
  for (const auto& [path, bytes] : initial.Files()) {
    seen_.Put(path, bytes);
    names_[path] = NewNode(false, bytes);
  }
  lasting_ = names_;  // NOLINT(cppcoreguidelines-prefer-member-initializer): they are found above
}

CrashDisk::Number CrashDisk::NewNode(bool isFolder, std::string lasting, std::vector<std::string> written) {
  nodes_.push_back({isFolder, std::move(lasting), std::move(written)});
  return nodes_.size() - 1;
}

void CrashDisk::Apply(const Change& change, Names& names) {
  for (const auto& name : change.Gone) {
    names.erase(name);
  }
  for (const auto& [name, node] : change.Come) {
    names[name] = node;
  }
}

void CrashDisk::ChangeNames(Change change) {
  Apply(change, names_);
  changes_.push_back(std::move(change));
}

Status CrashDisk::Took(Status status) {
  if (!status.Ok()) {
    return FailWith(seen_.FailureReason());
  }
  ShowStates();
  return status;
}

// ---- The calls ----

Status CrashDisk::Create(const std::string& path, std::string_view bytes) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.Create(path, bytes).Then([&] {
    ChangeNames({{}, {{name, NewNode(false, {}, {std::string{bytes}})}}});
    return Status::Success();
  }));
}

Status CrashDisk::Append(const std::string& path, std::string_view bytes) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.Append(path, bytes).Then([&] {
    nodes_[names_.at(name)].Written.emplace_back(bytes);
    return Status::Success();
  }));
}

Status CrashDisk::SyncFile(const std::string& path) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.SyncFile(path).Then([&] {
    auto& node = nodes_[names_.at(name)];
    for (const auto& bytes : std::exchange(node.Written, {})) {
      node.Lasting += bytes;
    }
    return Status::Success();
  }));
}

Status CrashDisk::SyncFolder(const std::string& path) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.SyncFolder(path).Then([&] {
    const auto isIn = [&name](const std::string& inside) { return FolderOfPath(inside) == name; };
    std::erase_if(changes_, [&](const Change& change) {
      const bool lasts = std::ranges::any_of(change.Gone, isIn) ||
                         std::ranges::any_of(change.Come, [&](const auto& come) { return isIn(come.first); });
      if (lasts) {
        Apply(change, lasting_);
      }
      return lasts;
    });
    return Status::Success();
  }));
}

Status CrashDisk::MakeFolder(const std::string& path) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.MakeFolder(path).Then([&] {
    if (!names_.contains(name)) {
      ChangeNames({{}, {{name, NewNode(true)}}});
    }
    return Status::Success();
  }));
}

// What lies in a folder goes with it: its names are those of the folder, not of the path that leads to it.
Status CrashDisk::Rename(const std::string& from, const std::string& to) {
  const auto oldName = MemoryDisk::NameOnDisk(from);
  const auto newName = MemoryDisk::NameOnDisk(to);
  return Took(seen_.Rename(from, to).Then([&] {
    Change change;
    for (const auto& [name, node] : names_) {
      if (name == oldName || name.starts_with(oldName + '/')) {
        change.Gone.push_back(name);
        change.Come[newName + name.substr(oldName.size())] = node;
      }
    }
    ChangeNames(std::move(change));
    return Status::Success();
  }));
}

Status CrashDisk::Remove(const std::string& path) {
  const auto name = MemoryDisk::NameOnDisk(path);
  return Took(seen_.Remove(path).Then([&] {
    ChangeNames({{name}, {}});
    return Status::Success();
  }));
}

std::unique_ptr<DiskLock> CrashDisk::Lock(const std::string& path, std::string& holder) {
  return seen_.Lock(path, holder);
}

std::unique_ptr<ExchangedFile> CrashDisk::OpenSettings(const std::string& path) {
  return std::make_unique<LastingSettings>(*this, path);
}

void CrashDisk::PutToLast(const std::string& path) {
  const auto name = MemoryDisk::NameOnDisk(path);
  std::erase_if(changes_, [&](const Change& change) {
    return change.Come.contains(name) || std::ranges::count(change.Gone, name) > 0;
  });
  names_[name] = lasting_[name] = NewNode(false, seen_.Read(path).Bytes);
  ShowStates();
}

// ---- The states ----

void CrashDisk::ShowStates() {
  if (!visit_) {
    return;
  }
  for (std::size_t chosen = 0; chosen < std::size_t{1} << changes_.size(); ++chosen) {
    auto names = lasting_;
    for (std::size_t index = 0; index < changes_.size(); ++index) {
      if ((chosen >> index & 1U) != 0) {
        Apply(changes_[index], names);
      }
    }
    std::map<std::string, std::string> files;
    ShowFiles(names, names.begin(), files);
  }
}

// The folders that lead to it are there.
bool CrashDisk::IsReached(const std::string& name, const Names& names) const {
  const auto folder = FolderOfPath(name);
  const auto found = names.find(folder);
  return folder.empty() ||
         (found != names.end() && nodes_[found->second].IsFolder && IsReached(folder, names));
}

// Each content of the next file with each content of the files behind it.
void CrashDisk::ShowFiles(const Names& names, Names::const_iterator next,
                          std::map<std::string, std::string>& files) {
  if (next == names.end()) {
    Show(names, files);
    return;
  }
  const auto& [name, number] = *next;
  if (nodes_[number].IsFolder || !IsReached(name, names)) {
    ShowFiles(names, std::next(next), files);
    return;
  }
  for (auto& content : ContentsOf(nodes_[number])) {
    files[name] = std::move(content);
    ShowFiles(names, std::next(next), files);
  }
  files.erase(name);
}

// The last write that the disk took may be torn: cut off, or as long as it should be with zeros at its end.
std::vector<std::string> CrashDisk::ContentsOf(const Node& node) const {
  std::vector<std::string> contents{node.Lasting};
  std::string whole = node.Lasting;
  for (const auto& bytes : node.Written) {
    for (const std::size_t size : {std::size_t{1}, bytes.size() / 2, bytes.size() - 1}) {
      if (size > 0 && size < bytes.size()) {
        contents.push_back(whole + bytes.substr(0, size));
        contents.push_back(contents.back() + std::string(bytes.size() - size, '\0'));
      }
    }
    contents.push_back(whole += bytes);
  }
  return contents;
}

void CrashDisk::Show(const Names& names, const std::map<std::string, std::string>& files) {
  std::vector<std::string> folders;
  std::string all;
  for (const auto& [name, number] : names) {
    if (nodes_[number].IsFolder && IsReached(name, names)) {
      folders.push_back(name);
      all += name + '/';
    }
  }
  for (const auto& [name, bytes] : files) {
    all += name + '=' + std::to_string(bytes.size()) + '=' + bytes;
  }
  if (!shown_.insert(Sha256Hex(all)).second) {
    return;
  }
  ++count_;
  MemoryDisk after;
  for (const auto& folder : folders) {
    PassOver(after.MakeFolder(folder));
  }
  for (const auto& [name, bytes] : files) {
    after.Put(name, bytes);
  }
  visit_(after);
}

}  // namespace zolvane
