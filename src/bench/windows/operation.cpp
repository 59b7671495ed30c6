#include "bench/windows/operation.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>

#include "bench/host/dry_run.h"
#include "bench/host/result_text.h"
#include "host/instrument_link.h"
#include "page/page_controls.h"
#include "text/joined.h"

namespace zolvane {
namespace {

struct FirstCommand {
  std::string_view Beginning;
  int Button;
};
constexpr std::array<FirstCommand, 3> firstCommands{
    {{settingStart, uploadButton}, {questionStart, downloadButton}, {"STATUS_STAGE", queryButton}}};

std::string Seconds(Operation::Clock::duration duration) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << std::chrono::duration<double>{duration}.count() << " s";
  return text.str();
}

}  // namespace

void Operation::IsThatOf(int button) {
  button_ = button;
  name_ = buttonRows[static_cast<std::size_t>(button)].Caption;
}

void Operation::Sends(std::string_view command, const std::string& folder) {
  const auto* const known = std::ranges::find_if(
      firstCommands, [&](const auto& row) { return command.starts_with(row.Beginning); });
  if (sent_++ == 0 && known != firstCommands.end()) {
    IsThatOf(known->Button);
    expected_ = CountCommands(folder, known->Button);
  }
}

void Operation::AsksForFile(FileDialogueKind kind) {
  IsThatOf(kind == FileDialogueKind::Open ? importButton : exportButton);
}

std::string Operation::Progress() const {
  if (sent_ == 0) {
    return {};
  }
  const auto sent = std::to_string(sent_);
  return expected_ >= sent_ ? Joined(sent, " of ", std::to_string(expected_)) : sent;
}

std::string Operation::Result(const ActionTally& tally, Clock::time_point now) const {
  const auto command = tally.ChosenFile ? Joined(name_, " ", *tally.ChosenFile) : name_;
  auto text = ResultText({.Request = {.Kind = ActionKind::PressButton, .Command = command}, .Tally = tally});
  text.resize(text.find_last_not_of('\n') + 1);
  return Joined(text, ", ", Seconds(now - begin_));
}

}  // namespace zolvane
