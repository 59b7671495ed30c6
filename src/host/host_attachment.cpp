#include "host/host_attachment.h"

namespace zolvane {

std::shared_ptr<InstrumentLink> HostAttachment::Link() const {
  return ObjectParent ? ObjectParent->Link() : nullptr;
}

bool HostAttachment::StopIsFalse() const {
  const auto link = Link();
  const auto stop = link ? link->Stop() : std::nullopt;
  return stop == false;
}

std::string HostAttachment::StatusText() const {
  return Panel ? Panel->Text().value_or(std::string{}) : std::string{};
}

Status HostAttachment::SetStatusText(std::string_view text) const {
  return Panel ? Panel->SetText(std::string{text}) : Status::Failure();
}

Status HostAttachment::SetChanged(bool changed) const {
  return FormParent ? FormParent->SetChanged(changed) : Status::Failure();
}

}  // namespace zolvane
