#include "custody/disk/disk.h"

#include <utility>

#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// A name that no user's file has.
std::string FreshNameOf(const std::string& path) {
  return path + ".zolvane-new";
}

}  // namespace

Status Disk::CreateFresh(const std::string& path, std::string_view bytes) {
  const auto fresh = FreshNameOf(path);
  PassOver(Remove(fresh));  // left behind by a program that was killed
  return Create(fresh, bytes);
}

Status Disk::Replace(const std::string& path, std::string_view bytes) {
  const auto fresh = FreshNameOf(path);
  return CreateFresh(path, bytes).Then([&] { return SyncFile(fresh); }).Then([&] {
    return Rename(fresh, path);
  });
}

Status Disk::TryReplacing(const std::string& path) {
  return CreateFresh(path, "").Then([&] { return Remove(FreshNameOf(path)); });
}

Status Disk::Fail(const std::string& path, std::string_view reason) {
  return FailWith(Joined(Quoted(path), " ", reason));
}

Status Disk::FailWith(std::string reason) {
  failureReason_ = std::move(reason);
  return Status::Failure();
}

}  // namespace zolvane
