#include "zolvane/operations/rehearsal.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "custody/transfer/twin_link.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// A copy of a disk, made file by file as they are asked for. Nothing reaches the disk itself.
class CopiedDisk final : public Disk {
 public:
  explicit CopiedDisk(Disk& original) : original_{original} {}

  DiskContent Read(const std::string& path) override { return Copied(path).Read(path); }
  Status Create(const std::string& path, std::string_view bytes) override {
    return Passed(Copied(path).Create(path, bytes));
  }
  Status Append(const std::string& path, std::string_view bytes) override {
    return Passed(Copied(path).Append(path, bytes));
  }
  Status SyncFile(const std::string& path) override { return Passed(Copied(path).SyncFile(path)); }
  Status SyncFolder(const std::string& path) override {
    return copy_.SyncFolder(path).Ok() ? Status::Success() : original_.SyncFolder(path);
  }
  Status MakeFolder(const std::string& path) override { return Passed(copy_.MakeFolder(path)); }
  Status Rename(const std::string& from, const std::string& to) override {
    Copied(to);
    return Passed(Copied(from).Rename(from, to));
  }
  Status Remove(const std::string& path) override { return Passed(Copied(path).Remove(path)); }
  std::unique_ptr<DiskLock> Lock(const std::string& path, std::string& holder) override {
    return copy_.Lock(path, holder);
  }
  std::unique_ptr<ExchangedFile> OpenSettings(const std::string& path) override {
    return Copied(path).OpenSettings(path);
  }

 private:
  MemoryDisk& Copied(const std::string& path) {
    if (seen_.insert(path).second) {
      const auto content = original_.Read(path);
      if (content.Is == DiskContent::State::Present) {
        copy_.Put(path, content.Bytes);
      }
    }
    return copy_;
  }

  Status Passed(const Status& status) { return status.Ok() ? status : FailWith(copy_.FailureReason()); }

  Disk& original_;
  MemoryDisk copy_;
  std::set<std::string> seen_;
};

}  // namespace

void Rehearse(Workplace& work, const std::function<void(Workplace& copy)>& command) {
  CopiedDisk files{work.Files};
  const auto twin =
      work.Link != nullptr ? std::make_shared<TwinLink>(Values{}, work.Link, ProgramInterrupt()) : nullptr;
  Workplace copy{.Options = work.Options,
                 .Files = files,
                 .Who = work.Who,
                 .Link = twin,
                 .Terminal = work.Terminal,
                 .Out = work.Out,
                 .Trace = work.Trace,
                 .Result = work.Result,
                 .IsRehearsal = true};
  command(copy);
  const auto guesses = twin != nullptr ? twin->Guesses() : std::vector<std::string>{};
  for (const auto& guess : guesses) {
    work.Out.Note(Joined("a guess: ", guess));
  }
  work.Result.More["rehearsal"] = {{"would_be_proven", work.Result.Outcome == outcome::done},
                                   {"guesses", guesses}};
  work.Result.Outcome.clear();
  work.Result.Checkpoint.reset();
}

}  // namespace zolvane
