#include <filesystem>
#include <system_error>
#include <utility>

#include "custody/disk/disk.h"
#include "files/file_claim.h"
#include "files/paths.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

class ClaimedPath final : public DiskLock {
 public:
  explicit ClaimedPath(std::unique_ptr<FileClaim> claim) : claim_{std::move(claim)} {}

 private:
  std::unique_ptr<FileClaim> claim_;
};

}  // namespace

DiskContent SystemDisk::Read(const std::string& path) {
  using State = DiskContent::State;
  auto content = OpenExchangedFile(path)->Read();
  switch (content.Is) {
    case FileContent::State::Present:
      return {State::Present, std::move(content.Bytes), {}};
    case FileContent::State::Missing:
      return {State::Missing, {}, "does not exist"};
    case FileContent::State::Unreadable:
      break;
  }
  return {
      State::Unreadable, {}, ReasonFileIsInaccessible(path, FileUse::ReadOnly).value_or("cannot be read")};
}

Status SystemDisk::MakeFolder(const std::string& path) {
  std::error_code failure;
  std::filesystem::create_directory(PathOf(path), failure);
  if (std::filesystem::symlink_status(PathOf(path)).type() == std::filesystem::file_type::directory) {
    return Status::Success();
  }
  return Fail(path, failure ? "cannot be made: " + failure.message() : "is in the way: it is no folder");
}

Status SystemDisk::Remove(const std::string& path) {
  std::error_code failure;
  if (std::filesystem::symlink_status(PathOf(path), failure).type() ==
      std::filesystem::file_type::directory) {
    return Fail(path, "is a folder");
  }
  if (!std::filesystem::remove(PathOf(path), failure)) {
    return Fail(path, failure ? "cannot be removed: " + failure.message() : "does not exist");
  }
  return Status::Success();
}

std::unique_ptr<DiskLock> SystemDisk::Lock(const std::string& path, std::string& holder) {
  try {
    std::string process;
    if (auto claim = TryClaim(MarkBeside(path), process)) {
      return std::make_unique<ClaimedPath>(std::move(claim));
    }
    holder = process.empty() ? "another process" : "process " + process;
  } catch (const UsageError& error) {
    PassOver(FailWith(error.what()));
    holder.clear();
  }
  return nullptr;
}

std::unique_ptr<ExchangedFile> SystemDisk::OpenSettings(const std::string& path) {
  return OpenExchangedFile(path);
}

std::optional<std::string> SystemDisk::ReasonAgainstWriting(const std::string& path) {
  return ReasonFileIsInaccessible(path, FileUse::ReadAndWrite);
}

}  // namespace zolvane
