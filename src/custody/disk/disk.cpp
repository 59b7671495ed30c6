#include "custody/disk/disk.h"

#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {

Status Disk::Replace(const std::string& path, std::string_view bytes) {
  const auto fresh = path + ".zolvane-new";  // as no file of a user is named
  PassOver(Remove(fresh));                   // left behind by a program that was killed
  return Create(fresh, bytes).Then([&] { return SyncFile(fresh); }).Then([&] { return Rename(fresh, path); });
}

Status Disk::Fail(const std::string& path, std::string_view reason) {
  return FailWith(Joined(Quoted(path), " ", reason));
}

Status Disk::FailWith(std::string reason) {
  failureReason_ = std::move(reason);
  return Status::Failure();
}

}  // namespace zolvane
