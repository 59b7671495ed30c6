// A disk that may lose its power at any moment. It keeps apart what programs see and what would still be
// there: of each file the bytes that were made to last and behind them any part of those written since; of
// the names all that were made to last and any of the changes since, each by itself and in their order. A
// renaming is one change. A settings file changes in one step that lasts, as ExchangedFile promises.
//
// After each call that changes something, every state that a power cut could leave now is shown to a visitor;
// states with equal contents once, until new ones are asked for. So whatever runs on this disk once has all
// its power cuts tried out.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/disk/disk.h"

namespace zolvane {

class CrashDisk final : public Disk {
 public:
  // What the disk holds after a power cut. The visitor may change it.
  using Visitor = std::function<void(MemoryDisk& after)>;

  // What is there at the beginning lasts.
  CrashDisk(const MemoryDisk& initial, Visitor visit);

  // From now on states are shown again, because more has been promised of them.
  void ShowAgain() { shown_.clear(); }

  // What a power cut could leave now, though nothing was changed.
  void ShowStates();
  std::size_t CountOfStates() const { return count_; }

  // The power as it is now: what programs see.
  MemoryDisk& Seen() { return seen_; }

  DiskContent Read(const std::string& path) override { return seen_.Read(path); }
  Status Create(const std::string& path, std::string_view bytes) override;
  Status Append(const std::string& path, std::string_view bytes) override;
  Status SyncFile(const std::string& path) override;
  Status SyncFolder(const std::string& path) override;
  Status MakeFolder(const std::string& path) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  std::unique_ptr<DiskLock> Lock(const std::string& path, std::string& holder) override;
  std::unique_ptr<ExchangedFile> OpenSettings(const std::string& path) override;
  std::optional<std::string> ReasonAgainstWriting(const std::string& path) override {
    return seen_.ReasonAgainstWriting(path);
  }

  // A settings file was changed.
  void PutToLast(const std::string& path);

 private:
  using Number = std::size_t;                   // of a file or folder, whatever names lead to it
  using Names = std::map<std::string, Number>;  // by path

  struct Node {
    bool IsFolder = false;
    std::string Lasting;
    std::vector<std::string> Written;  // since
  };
  // What a call does to names: some go, then some come.
  struct Change {
    std::vector<std::string> Gone;
    Names Come;
  };

  Number NewNode(bool isFolder, std::string lasting = {}, std::vector<std::string> written = {});
  void ChangeNames(Change change);
  static void Apply(const Change& change, Names& names);
  Status Took(Status status);

  bool IsReached(const std::string& name, const Names& names) const;
  void ShowFiles(const Names& names, Names::const_iterator next, std::map<std::string, std::string>& files);
  std::vector<std::string> ContentsOf(const Node& node) const;
  void Show(const Names& names, const std::map<std::string, std::string>& files);

  MemoryDisk seen_;
  Visitor visit_;
  std::vector<Node> nodes_;
  Names names_;  // as they are seen
  Names lasting_;
  std::vector<Change> changes_;  // since
  std::set<std::string> shown_;
  std::size_t count_ = 0;
};

}  // namespace zolvane
