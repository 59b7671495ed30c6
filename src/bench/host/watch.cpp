#include "bench/host/watch.h"

#include <set>
#include <utility>

#include "host/forwarding.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {

class Watch::WatchedSettings final : public ForwardingSettings {
 public:
  explicit WatchedSettings(Watch& watch) : ForwardingSettings{watch.files_}, watch_{watch} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    auto value = ForwardingSettings::ReadValue(section, key, file, fallback);
    if (!value) {
      watch_.CountFailedRead(file);
    }
    return value;
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    const auto before = Stored(section, key, file);
    const Status status = ForwardingSettings::WriteValue(section, key, file, value);
    auto& tally = watch_.tally_;
    tally.CharactersLost += watch_.files_->TakeLostCharacters();
    tally.ValuesChanged += status.Ok() && Stored(section, key, file) != before ? 1 : 0;
    return watch_.CountWrite(status, Joined("[", section, "] ", key), file);
  }

 private:
  // As a read gives it; for a missing key, a text that no value can be.
  std::optional<std::string> Stored(std::string_view section, std::string_view key, std::string_view file) {
    constexpr std::string_view missing = "\n";
    return ForwardingSettings::ReadValue(section, key, file, missing);
  }

  Watch& watch_;
};

class Watch::WatchedLink final : public ForwardingLink {
 public:
  WatchedLink(std::shared_ptr<BenchLink> link, Watch& watch)
      : ForwardingLink{link}, link_{std::move(link)}, watch_{watch} {}

  std::optional<bool> Stop() override {
    const auto stop = ForwardingLink::Stop();
    watch_.tally_.WasStopped |= stop.value_or(false);
    return stop;
  }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    const auto ok = ForwardingLink::SendCommand(command, reply, number);
    auto& tally = watch_.tally_;
    const auto& delivery = link_->LastDelivery();
    const bool isCutShort = !delivery.HasLeft && MetOnlyIf(ForwardingLink::Stop());
    if (delivery.HasLeft) {
      tally.Commands.Count(command, MetOnlyIf(ok), reply);
    } else if (isCutShort) {
      tally.WasStopped = true;  // the user has interrupted, so nothing leaves any more
    } else {
      ++tally.Commands.Undelivered;
    }
    if (!isCutShort) {
      watch_.events_.CommandEnded();
    }
    Keep(delivery);
    TellProblem(delivery.Problem);
    return ok;
  }

 private:
  void Keep(const Delivery& delivery) {
    auto& commands = watch_.tally_.Commands;
    if (!delivery.Problem.empty() && !commands.FirstProblem) {
      commands.FirstProblem = delivery.Problem;
    }
    if (!commands.FirstSkippedLine) {
      commands.FirstSkippedLine = delivery.SkippedLine;
    }
  }

  // Once, not for each command that it keeps from the instrument.
  void TellProblem(const std::string& problem) {
    if (!problem.empty() && told_.insert(problem).second) {
      watch_.events_.Complain(Printable(problem));
    }
  }

  std::shared_ptr<BenchLink> link_;
  Watch& watch_;
  std::set<std::string> told_;
};

Watch::Watch(Events events, const FileSettingsService::FileOpener& openFile)
    : events_{std::move(events)},
      files_{std::make_shared<FileSettingsService>(openFile, Waiting{.IsUnwanted = events_.WantsToStop})} {}

Watch::~Watch() {
  ForgetSeenFiles();
}

std::shared_ptr<IniFileService> Watch::Settings() {
  return std::make_shared<WatchedSettings>(*this);
}

std::shared_ptr<InstrumentLink> Watch::Watched(std::shared_ptr<BenchLink> link) {
  return std::make_shared<WatchedLink>(std::move(link), *this);
}

Status Watch::AppendBlankLine(const std::string& file) {
  const Status status = files_->AppendBlankLine(file);
  return status.Ok() ? status : CountWrite(status, "an empty line", file);
}

// The first failure of a command is reported, the others are counted.
Status Watch::CountWrite(const Status& status, std::string_view what, std::string_view file) {
  if (status.Ok()) {
    ++tally_.ValuesWritten;
  } else if (++tally_.WritesFailed == 1) {
    events_.Complain(
        Joined(Printable(what), " could not be written to ", Quoted(file), ": ", files_->FailureReason()));
  }
  return status;
}

void Watch::CountFailedRead(std::string_view file) {
  if (++tally_.ReadsFailed == 1) {
    events_.Complain(Joined(Quoted(file), " could not be read: ", files_->FailureReason()));
  }
}

void Watch::FlushSettings() {
  if (!files_->Flush().Ok()) {
    ++tally_.WritesFailed;
    events_.Complain("what was written may not survive a power cut: a settings file could not be flushed");
  }
  if (tally_.CharactersLost > 0) {
    events_.Complain(Joined("characters that the encoding of a settings file lacks were written as \"?\": ",
                            std::to_string(tally_.CharactersLost)));
  }
  for (const auto& file : files_->TakeRescued()) {
    ++tally_.WritesFailed;
    events_.Complain(
        Joined("another program wrote into a settings file while it was replaced; what it wrote is in ",
               Quoted(file)));
  }
}

}  // namespace zolvane
