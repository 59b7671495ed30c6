#include "custody/values/play.h"

#include <cstddef>
#include <ostream>
#include <span>
#include <utility>

#include "bench/host/session.h"
#include "host/forwarding.h"
#include "instrument/links/no_link.h"
#include "page/page_controls.h"

namespace zolvane {
namespace {

class ObservedWrites final : public ForwardingSettings {
 public:
  ObservedWrites(std::shared_ptr<IniFileService> inner, std::vector<SettingWrite>& writes)
      : ForwardingSettings{std::move(inner)}, writes_{writes} {}

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    const Status status = ForwardingSettings::WriteValue(section, key, file, value);
    writes_.push_back({.Section = std::string{section},
                       .Key = std::string{key},
                       .File = std::string{file},
                       .Text = std::string{value},
                       .IsDone = status.Ok()});
    return status;
  }

 private:
  std::vector<SettingWrite>& writes_;
};

// A stream without a buffer loses what is written to it.
struct SilentConsole {
  std::ostream Nowhere{nullptr};
  Console Out{Nowhere, Nowhere, {.IsQuiet = true, .NotesWidth = {}}};
};

// No instrument behind it, and no interrupt reaches it.
std::shared_ptr<BenchLink> NothingLinked() {
  static constinit InterruptFlag neverRaised;
  return std::make_shared<NoLink>(neverRaised);
}

}  // namespace

SessionEnds EndsOn(Disk& disk, const std::string& folder) {
  return {.Host = {.Folder = folder,
                   .Answers = {.Listed = {}, .AffirmsRest = true},
                   .WantsToStop = [] { return true; },  // nobody else uses a copy, so nothing is waited for
                   .OpenFile = [&disk](const std::string& path) { return disk.OpenSettings(path); },
                   .ReasonUnusable = [](const std::string&, FileUse) { return std::nullopt; }},
          .Link = NothingLinked()};
}

PlayedAction Play(const SessionEnds& ends, const Action& action) {
  PlayedAction played;
  auto setup = ends.Host;
  setup.Wrapped = [&, wrapped = ends.Host.Wrapped](auto settings) -> std::shared_ptr<IniFileService> {
    return std::make_shared<ObservedWrites>(wrapped(std::move(settings)), played.Writes);
  };
  SilentConsole silence;
  Console& console = ends.Out != nullptr ? *ends.Out : silence.Out;
  BenchHost host{setup, ends.Link, ends.Terminal, console};
  Session session{host, console, ends.Trace};
  played.ExitStatus =
      session.Play(std::span{&action, 1}, OnFailure::Stop,
                   {.IsInterrupted = [] { return false; },
                    .Ended = [&played](const ActionResult& result) { played.Result = result; },
                    .NotBegun = [](auto) {}});
  return played;
}

Action PressOf(int button, std::optional<std::string> file) {
  return {.Kind = ActionKind::PressButton,
          .Command = std::string{buttonRows.at(static_cast<std::size_t>(button)).Caption},
          .Button = button,
          .File = std::move(file)};
}

}  // namespace zolvane
