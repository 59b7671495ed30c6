#include "bench/host/bench_host.h"

#include <set>
#include <utility>

#include "bench/host/question_dialog.h"
#include "files/file_settings_service.h"
#include "files/paths.h"
#include "host/dialogues.h"
#include "host/forwarding.h"
#include "text/joined.h"

namespace zolvane {

// What the host's objects share.
struct HostState {
  HostState(const BenchHost::Setup& setup, Questioner* terminal, Console& out)
      : Host{setup},
        Out{out},
        Desk{setup.Answers, terminal, [this](const std::string& text) { Misuse(text); }},
        Files{std::make_shared<FileSettingsService>(FileSettingsService::OpenFile,
                                                    Waiting{.IsUnwanted = setup.WantsToStop})} {}

  HostState(const HostState&) = delete;
  HostState& operator=(const HostState&) = delete;
  ~HostState() { ForgetSeenFiles(); }

  void Complain(std::string_view text) { Out.Error(Joined(Place, text)); }

  void Misuse(std::string_view text) {
    Now.WasMisused = true;
    Complain(text);
  }

  BenchHost::Setup Host;
  Console& Out;
  AnswerDesk Desk;
  std::shared_ptr<FileSettingsService> Files;
  Happenings Now;
  std::string Place;  // of the command, in front of a complaint
  std::optional<std::string> DialogueFile;
  std::string StatusText;
  std::optional<bool> Changed;
};

namespace {

constexpr std::int32_t iconMask = 0xF0;

// ---- Boxes ----

bool IsDeclining(const Answer& answer) {
  return answer.Button == message_answer::cancel || answer.Button == message_answer::no;
}

bool IsOfInterestOnly(const Question& question, const Answer& answer) {
  return answer.By == AnsweredBy::OnlyButton ? (question.Style & iconMask) == message_style::informationIcon
                                             : !IsDeclining(answer);
}

// What stands behind the text of a box: who answered it, and how.
std::string AnswerNote(const Answer& answer) {
  const auto button = ButtonName(answer.Button);
  switch (answer.By) {
    case AnsweredBy::List:
      return Joined(" (--answer: ", button, ")");
    case AnsweredBy::Affirmation:
      return Joined(" (--yes: ", button, ")");
    case AnsweredBy::Caution:
      return Joined(" (", button, ", as nobody answered; --yes and --answer answer for you)");
    case AnsweredBy::User:
      return Joined(" (answered ", button, ")");
    case AnsweredBy::OnlyButton:
      break;
  }
  return {};
}

// Whoever was not asked is told. What explains why a command was not carried out is an error.
void TellAnswer(HostState& state, const Question& question, const Answer& answer) {
  const auto box = Joined(Printable(question.Title), ": ", OneLine(question.Text), AnswerNote(answer));
  if (!IsOfInterestOnly(question, answer)) {
    state.Complain(box);
  } else if (answer.By != AnsweredBy::User) {
    state.Out.Note(box);
  }
}

std::int32_t AskUser(HostState& state, const Question& question) {
  state.Out.ClearStatus();
  const Answer answer = state.Desk.AnswerTo(question);
  TellAnswer(state, question, answer);
  state.Now.Messages.push_back({.Title = question.Title, .Text = question.Text, .Answer = answer.Button});
  state.Now.WasCancelled |= IsDeclining(answer);
  state.Now.WasRefused |= (question.Style & iconMask) == message_style::stopIcon;
  return answer.Button;
}

class BenchDialog final : public QuestionDialog {
 public:
  explicit BenchDialog(HostState& state) : state_{state} {}

  Status Show(bool show) override {
    isOpen_ = show;
    return Status::Success();
  }

  // The first look finds the dialogue still open, as it is in a host where a person answers.
  std::optional<std::int16_t> Result() override {
    constexpr std::int16_t stillOpen = -1;
    if (isOpen_ && !std::exchange(wasLookedAt_, true)) {
      return stillOpen;
    }
    if (std::exchange(isOpen_, false)) {
      result_ = static_cast<std::int16_t>(AskUser(state_, Asked()));
    }
    return result_;
  }

 private:
  HostState& state_;
  bool isOpen_ = false;
  bool wasLookedAt_ = false;
  std::int16_t result_ = 0;
};

// ---- Settings files ----

// The first failure of a command is told, the others are counted.
Status CountWrite(HostState& state, const Status& status, std::string_view what, std::string_view file) {
  if (status.Ok()) {
    ++state.Now.ValuesWritten;
  } else if (++state.Now.WritesFailed == 1) {
    state.Complain(Joined(Printable(what), " could not be written to ", Quoted(file), ": ",
                          state.Files->FailureReason()));
  }
  return status;
}

// The first failure of a command is told, the others are counted.
void CountFailedRead(HostState& state, std::string_view file) {
  if (++state.Now.ReadsFailed == 1) {
    state.Complain(Joined(Quoted(file), " could not be read: ", state.Files->FailureReason()));
  }
}

class WatchedSettings final : public ForwardingSettings {
 public:
  explicit WatchedSettings(HostState& state) : ForwardingSettings{state.Files}, state_{state} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    auto value = ForwardingSettings::ReadValue(section, key, file, fallback);
    if (!value) {
      CountFailedRead(state_, file);
    }
    return value;
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    const auto before = Stored(section, key, file);
    const Status status = ForwardingSettings::WriteValue(section, key, file, value);
    state_.Now.CharactersLost += state_.Files->TakeLostCharacters();
    state_.Now.ValuesChanged += status.Ok() && Stored(section, key, file) != before ? 1 : 0;
    return CountWrite(state_, status, Joined("[", section, "] ", key), file);
  }

 private:
  // As a read gives it; a missing key gives what no value can be.
  std::optional<std::string> Stored(std::string_view section, std::string_view key, std::string_view file) {
    constexpr std::string_view missing = "\n";
    return ForwardingSettings::ReadValue(section, key, file, missing);
  }

  HostState& state_;
};

// ---- The process and its dialogues ----

class BenchEnvironment final : public Environment {
 public:
  explicit BenchEnvironment(HostState& state) : state_{state} {}

  std::string ProgramFolder() override { return state_.Host.Folder; }

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return std::make_shared<WatchedSettings>(state_);
  }

  Status AppendBlankLine(const std::string& file) override {
    const Status status = state_.Files->AppendBlankLine(file);
    if (!status.Ok()) {
      return CountWrite(state_, status, "an empty line", file);
    }
    return status;
  }

  // There are no windows, so no message ever waits.
  void RunMessageLoopOnce() override {}

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return AskUser(state_, {.Title = request.Title, .Text = request.Text, .Style = request.Style});
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    if (!state_.DialogueFile) {
      state_.Now.WasCancelled = true;
      state_.Complain(Joined(Printable(dialogue.Title), ": cancelled, as no FILE was given"));
      return std::nullopt;
    }
    const auto use = kind == FileDialogueKind::Open ? FileUse::ReadOnly : FileUse::ReadAndWrite;
    if (const auto reason = CheckUsable(*state_.DialogueFile, use)) {
      state_.Misuse(Joined(Quoted(*state_.DialogueFile), " ", *reason));
      return std::nullopt;
    }
    state_.Now.ChosenFile = state_.DialogueFile;
    return LedBack(*state_.DialogueFile);
  }

 private:
  // The add-in knows its own file by the name alone. Another name of it, a link, is told by the one it knows.
  std::string LedBack(const std::string& file) const {
    std::string configFile = ConfigFileIn(state_.Host.Folder);
    if (file == configFile || !IsSameFile(file, configFile)) {
      return file;
    }
    state_.Complain(Joined(Quoted(file), " leads to ", Quoted(configFile)));
    return configFile;
  }

  HostState& state_;
};

// ---- The host object ----

class WatchedLink final : public ForwardingLink {
 public:
  WatchedLink(std::shared_ptr<BenchLink> link, HostState& state)
      : ForwardingLink{link}, link_{std::move(link)}, state_{state} {}

  std::optional<bool> Stop() override {
    const auto stop = ForwardingLink::Stop();
    state_.Now.WasStopped |= stop.value_or(false);
    return stop;
  }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    const auto ok = ForwardingLink::SendCommand(command, reply, number);
    const auto& delivery = link_->LastDelivery();
    const bool isCutShort = !delivery.HasLeft && MetOnlyIf(ForwardingLink::Stop());
    if (delivery.HasLeft) {
      state_.Now.Commands.Count(command, MetOnlyIf(ok), reply);
    } else if (isCutShort) {
      state_.Now.WasStopped = true;  // the user has interrupted, and nothing leaves any more
    } else {
      ++state_.Now.Commands.Undelivered;
    }
    if (!isCutShort) {
      state_.Out.CountCommand();
    }
    Keep(delivery);
    TellProblem(delivery.Problem);
    return ok;
  }

 private:
  void Keep(const Delivery& delivery) {
    auto& commands = state_.Now.Commands;
    if (!delivery.Problem.empty() && !commands.FirstProblem) {
      commands.FirstProblem = delivery.Problem;
    }
    if (!commands.FirstSkippedLine) {
      commands.FirstSkippedLine = delivery.SkippedLine;
    }
  }

  // Once, and not for each command that it keeps from the instrument.
  void TellProblem(const std::string& problem) {
    if (!problem.empty() && told_.insert(problem).second) {
      state_.Complain(Printable(problem));
    }
  }

  std::shared_ptr<BenchLink> link_;
  HostState& state_;
  std::set<std::string> told_;
};

class BenchObject final : public HostObject {
 public:
  BenchObject(std::shared_ptr<BenchLink> link, HostState& state)
      : link_{std::make_shared<WatchedLink>(std::move(link), state)}, state_{state} {}

  std::shared_ptr<InstrumentLink> Link() override { return link_; }

  // The log repeats what the user is shown; whoever wants its lines finds them in the trace.
  Status WriteLogLine(const std::string&) override { return Status::Success(); }

  std::optional<bool> HostDialogAvailable() override { return state_.Host.OffersDialog; }
  std::shared_ptr<HostDialog> MessageDialog() override { return std::make_shared<BenchDialog>(state_); }

 private:
  std::shared_ptr<InstrumentLink> link_;
  HostState& state_;
};

// ---- The window ----

class BenchPanel final : public StatusPanel {
 public:
  explicit BenchPanel(HostState& state) : state_{state} {}

  std::optional<std::string> Text() override { return state_.StatusText; }

  Status SetText(const std::string& text) override {
    state_.StatusText = text;
    state_.Out.ShowStatus(text);
    return Status::Success();
  }

 private:
  HostState& state_;
};

class BenchWindow final : public HostWindow {
 public:
  explicit BenchWindow(HostState& state) : state_{state} {}

  Status SetChanged(bool changed) override {
    state_.Changed = changed;
    return Status::Success();
  }

  std::shared_ptr<StatusPanel> FindStatusPanel() override { return std::make_shared<BenchPanel>(state_); }
  Status TakeFocus() override { return Status::Success(); }

 private:
  HostState& state_;
};

}  // namespace

BenchHost::BenchHost(const Setup& setup, std::shared_ptr<BenchLink> link, Questioner* terminal,
                     Console& console)
    : state_{std::make_unique<HostState>(setup, terminal, console)},
      environment_{std::make_unique<BenchEnvironment>(*state_)},
      object_{std::make_shared<BenchObject>(std::move(link), *state_)},
      window_{std::make_shared<BenchWindow>(*state_)} {}

BenchHost::~BenchHost() = default;

void BenchHost::Begin(std::optional<std::string> file, std::string place) {
  state_->Now = {};
  state_->Place = std::move(place);
  state_->DialogueFile = std::move(file);
}

Happenings& BenchHost::Now() {
  return state_->Now;
}

void BenchHost::FlushSettings() {
  if (!state_->Files->Flush().Ok()) {
    ++state_->Now.WritesFailed;
    state_->Complain("what was written may not survive a power cut: a settings file could not be flushed");
  }
  if (state_->Now.CharactersLost > 0) {
    state_->Complain(Joined("characters that the encoding of a settings file lacks were written as \"?\": ",
                            std::to_string(state_->Now.CharactersLost)));
  }
  for (const auto& file : state_->Files->TakeRescued()) {
    ++state_->Now.WritesFailed;
    state_->Complain(
        Joined("another program wrote into a settings file while it was replaced; what it wrote is in ",
               Quoted(file)));
  }
}

const std::string& BenchHost::StatusText() const {
  return state_->StatusText;
}

std::optional<bool> BenchHost::Changed() const {
  return state_->Changed;
}

}  // namespace zolvane
