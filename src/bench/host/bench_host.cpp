#include "bench/host/bench_host.h"

#include <utility>

#include "bench/host/dry_run.h"
#include "bench/host/question_dialog.h"
#include "bench/host/watch.h"
#include "files/file_settings_service.h"
#include "files/paths.h"
#include "host/dialogues.h"
#include "text/joined.h"

namespace zolvane {

// What the host's objects share.
struct HostState {
  HostState(const BenchHost::Setup& setup, Questioner* terminal, Console& out)
      : Host{setup},
        Out{out},
        Answers{setup.Answers, terminal, [this](const std::string& text) { Misuse(text); }},
        Seen{{.Complain = [this](std::string_view text) { Complain(text); },
              .CommandEnded = [this] { Out.CountCommand(); },
              .WantsToStop = setup.WantsToStop},
             setup.OpenFile} {}

  HostState(const HostState&) = delete;
  HostState& operator=(const HostState&) = delete;
  ~HostState() = default;

  void Complain(std::string_view text) { Out.Error(Joined(Place, text)); }

  void Misuse(std::string_view text) {
    Seen.Tally().WasMisused = true;
    Complain(text);
  }

  BenchHost::Setup Host;
  Console& Out;
  BoxAnswers Answers;
  Watch Seen;
  std::string Place;  // of the command, in front of a complaint
  std::optional<std::string> DialogueFile;
  std::string StatusText;
  std::optional<bool> Changed;
};

namespace {

// ---- Boxes ----

// An answer that keeps something from being done is an error; any other that the user did not type is a note.
void ReportAnswer(HostState& state, const Question& question, const BoxAnswer& answer) {
  if (!IsHarmless(question, answer)) {
    state.Complain(AnswerText(question, answer));
  } else if (answer.By != AnsweredBy::User) {
    state.Out.Note(AnswerText(question, answer));
  }
}

std::int32_t AskUser(HostState& state, const Question& question) {
  state.Out.ClearStatus();
  const BoxAnswer answer = state.Answers.AnswerTo(question);
  ReportAnswer(state, question, answer);
  auto& tally = state.Seen.Tally();
  tally.Messages.push_back({.Title = question.Title, .Text = question.Text, .Answer = answer.Button});
  tally.TakeAnswer(question.Style, answer.Button);
  return answer.Button;
}

class BenchDialog final : public QuestionDialog {
 public:
  explicit BenchDialog(HostState& state) : state_{state} {}

  Status Show(bool show) override {
    isOpen_ = show;
    return Status::Success();
  }

  // The first poll finds the dialogue still open, as in a host where a person answers.
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

// ---- The process and its dialogues ----

class BenchEnvironment final : public Environment {
 public:
  explicit BenchEnvironment(HostState& state) : state_{state} {}

  std::string ProgramFolder() override { return state_.Host.Folder; }

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return state_.Host.Wrapped(state_.Seen.Settings());
  }

  Status AppendBlankLine(const std::string& file) override { return state_.Seen.AppendBlankLine(file); }

  // Without windows no message ever waits.
  void RunMessageLoopOnce() override {}

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return AskUser(state_, {.Title = request.Title, .Text = request.Text, .Style = request.Style});
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    if (!state_.DialogueFile) {
      state_.Seen.Tally().WasCancelled = true;
      state_.Complain(Joined(Printable(dialogue.Title), ": cancelled, as no FILE was given"));
      return std::nullopt;
    }
    const auto use = kind == FileDialogueKind::Open ? FileUse::ReadOnly : FileUse::ReadAndWrite;
    if (const auto reason = state_.Host.ReasonUnusable(*state_.DialogueFile, use)) {
      state_.Misuse(Joined(Quoted(*state_.DialogueFile), " ", *reason));
      return std::nullopt;
    }
    state_.Seen.Tally().ChosenFile = state_.DialogueFile;
    return LedBack(*state_.DialogueFile);
  }

 private:
  // The add-in recognises its own file by name only, so a link to it is replaced by that name.
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

class BenchObject final : public HostObject {
 public:
  BenchObject(std::shared_ptr<BenchLink> link, HostState& state)
      : link_{state.Seen.Watched(std::move(link))}, state_{state} {}

  std::shared_ptr<InstrumentLink> Link() override { return link_; }

  // The log repeats what the user is shown anyway; its lines are in the trace.
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
  state_->Seen.Begin();
  state_->Place = std::move(place);
  state_->DialogueFile = std::move(file);
}

ActionTally& BenchHost::Tally() {
  return state_->Seen.Tally();
}

std::size_t BenchHost::CountCommands(int button) const {
  return zolvane::CountCommands(state_->Host.Folder, button, state_->Host.OpenFile);
}

void BenchHost::FlushSettings() {
  state_->Seen.FlushSettings();
}

const std::string& BenchHost::StatusText() const {
  return state_->StatusText;
}

std::optional<bool> BenchHost::Changed() const {
  return state_->Changed;
}

}  // namespace zolvane
