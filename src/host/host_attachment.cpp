#include "host/host_attachment.h"

namespace zolvane {

// A host may detach the page in answer to a call. Each call therefore holds on to the
// object that it is made to.

std::shared_ptr<InstrumentLink> HostAttachment::Link() const {
  const auto object = ObjectParent;
  return object ? object->Link() : nullptr;
}

bool HostAttachment::MayGoOn() const {
  const auto link = Link();
  const bool isRaised = link && MetOnlyIf(link->Stop());
  return !isRaised;
}

std::string HostAttachment::StatusText() const {
  const auto panel = Panel;
  return panel ? panel->Text().value_or(std::string{}) : std::string{};
}

Status HostAttachment::SetStatusText(std::string_view text) const {
  const auto panel = Panel;
  return panel ? panel->SetText(std::string{text}) : Status::Failure();
}

Status HostAttachment::SetChanged(bool changed) const {
  const auto window = FormParent;
  return window ? window->SetChanged(changed) : Status::Failure();
}

}  // namespace zolvane
