#include "custody/disk/disk.h"

#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {

Status Disk::Fail(const std::string& path, std::string_view reason) {
  return FailWith(Joined(Quoted(path), " ", reason));
}

Status Disk::FailWith(std::string reason) {
  failureReason_ = std::move(reason);
  return Status::Failure();
}

}  // namespace zolvane
