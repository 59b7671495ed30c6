#include "instrument/links/bench_link.h"

#include <utility>

namespace zolvane {

Status BenchLink::SetStop(bool stop) {
  stop_ = stop;
  return Status::Success();
}

std::optional<bool> BenchLink::SendCommand(std::string& command, std::string& reply,
                                           std::int32_t /*number*/) {
  delivery_ = {};
  if (command.find_first_of("\r\n") != std::string::npos || interrupt_.IsRaised()) {
    return false;
  }
  delivery_.HasLeft = true;
  auto answer = Exchange(command, delivery_);
  if (!answer) {
    return false;
  }
  reply = *std::move(answer);
  return true;
}

}  // namespace zolvane
