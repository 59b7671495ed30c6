#include "bench/windows/hestrion_program.h"

#include <hestrion_cmds.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>

#include "bench/host/outcome.h"
#include "bench/host/result_text.h"
#include "bench/host/session_options.h"
#include "bench/host/trace_output.h"
#include "bench/host/watch.h"
#include "bench/job/job.h"
#include "bench/program/file_checks.h"
#include "bench/windows/com/add_in_class.h"
#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "bench/windows/findings.h"
#include "bench/windows/operation.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/page_driver.h"
#include "bench/windows/play/player.h"
#include "bench/windows/waiting_link.h"
#include "bench/windows/window/announcement.h"
#include "bench/windows/window/main_window.h"
#include "bench/windows/window/picture.h"
#include "bench/windows/window/windowed_host.h"
#include "files/paths.h"
#include "instrument/links/link_factory.h"
#include "program/command_line.h"
#include "program/version.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "win32/text.h"

namespace zolvane {
namespace {

constexpr const char* moduleFile = "HZOCalibrateDevice.dll";

struct WindowOptions {
  std::string Folder;  // empty: the registered add-in, else the program's own folder
  std::string Link = "sim";
  std::string Timeout = "5";
  bool OffersDialog = false;
  bool AffirmsRest = false;
  std::string Answers;
  std::optional<std::string> Trace;
  bool TracesReads = false;
  std::string Play;
  std::string Screenshot;
  bool KeepsGoing = false;
  bool Replaces = false;
  bool ShowsPage = false;
  bool Quits = false;

  bool OpensPage() const { return ShowsPage || Quits || !Play.empty() || !Screenshot.empty(); }
};

void Describe(CommandLine& line, WindowOptions& options) {
  line.AddOption("--folder", "DIR", options.Folder,
                 "the program folder, which holds Zolvane.ini (default: that of the registered add-in)");
  line.AddOption("--link", "LINK", options.Link, LinkHelp());
  line.AddOption("--timeout", "SECONDS", options.Timeout,
                 "how long a command waits for its reply (default: 5; a fraction is allowed)");
  line.AddFlag("--host-dialog", options.OffersDialog, "let the host offer its own message dialogue");
  line.AddOption("--play", "FILE", options.Play, "do the commands in FILE on the page, one per line");
  line.AddOption("--answer", "A,B,...", options.Answers,
                 "with --play: answers to the boxes, in their order: ok, cancel, yes, no");
  line.AddFlag("--yes", options.AffirmsRest,
               "with --play: answer every box with OK or Yes once --answer has run out");
  line.AddFlag("--keep-going", options.KeepsGoing, "with --play: go on behind a command that failed");
  line.AddFlag("--replace", options.Replaces,
               "with --play: let export write into a file that exists; the add-in merges");
  line.AddOption("--trace", "FILE", options.Trace,
                 "write every interaction as JSON Lines to FILE (- is standard output)");
  line.AddFlag("--trace-reads", options.TracesReads, "let the trace hold the reads of settings too");
  line.AddOption("--screenshot", "FILE", options.Screenshot, "save a picture of the window, .png or .bmp");
  line.AddFlag("--page", options.ShowsPage, "open the page at once, as --play, --screenshot and --quit do");
  line.AddFlag("--quit", options.Quits, "end when all that has been done");
}

// Of a loaded module; null is the program.
std::string FolderOf(HMODULE module) {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  return TextOf(std::filesystem::path{path}.parent_path());
}

std::string OwnFolder() {
  return FolderOf(nullptr);
}

// A program folder has the module in it. One without gets the bench's own for as long as this lives.
class InstalledModule {
 public:
  explicit InstalledModule(const std::string& folder) : path_{PathOf(folder) / moduleFile} {
    std::error_code failure;
    if (!std::filesystem::exists(path_, failure)) {
      isOurs_ = std::filesystem::copy_file(PathOf(OwnFolder()) / moduleFile, path_, failure);
      if (!isOurs_) {
        throw UsageError{Joined(moduleFile, " cannot be put into ", folder, ": ", failure.message())};
      }
    }
  }
  ~InstalledModule() {
    std::error_code ignored;
    if (isOurs_) {
      std::filesystem::remove(path_, ignored);
    }
  }
  InstalledModule(const InstalledModule&) = delete;
  InstalledModule& operator=(const InstalledModule&) = delete;

  std::wstring Path() const { return path_.wstring(); }

 private:
  std::filesystem::path path_;
  bool isOurs_ = false;
};

// COM for the thread.
class Apartment {
 public:
  Apartment() {
    if (FAILED(OleInitialize(nullptr))) {
      throw std::runtime_error{"COM is not available"};
    }
  }
  ~Apartment() { OleUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

class HestrionBench final : private DialogueListener, private HostProcess {
 public:
  HestrionBench(const WindowOptions& options, Job job, std::ostream& output, std::ostream& errors);
  ~HestrionBench() override { ClosePage(); }
  HestrionBench(const HestrionBench&) = delete;
  HestrionBench& operator=(const HestrionBench&) = delete;

  int Run(const std::vector<std::string>& notes);

 private:
  // ---- What is said while the user or the player has the page

  void BoxOpens(const MessageBoxRequest& request) override;
  void BoxClosed(const MessageBoxRequest& request, std::optional<std::int32_t> answer) override;
  void FileDialogueOpens(FileDialogueKind kind, const FileDialogue& dialogue) override;
  void FileDialogueClosed(const std::optional<std::string>& chosen) override;

  // ---- The process that the add-in runs in

  std::string ProgramFolder() override;
  std::shared_ptr<IniFileService> CreateIniFileService() override { return watch_.Settings(); }
  Status AppendBlankLine(const std::string& file) override { return watch_.AppendBlankLine(file); }
  void RunMessageLoopOnce() override { window_.PumpMessages(); }

  // ---- Operations. One begins with the first sign of it, and ends when the user's action that began it has
  // been handled.

  Operation& BeginOperation(const std::string& name);
  void EndOperation();
  void Rest();
  void StopOperation();
  bool MayBeEnded();
  void ReopenWhenDisabled();

  ComPtr<IAddIn> CreateAddIn();
  std::shared_ptr<BenchLink> MakeWaitingLink();
  // As it is without a trace.
  template <class Interface>
  std::shared_ptr<Interface> Traced(std::shared_ptr<Interface> given) {
    return trace_.Log() != nullptr ? zolvane::Traced(std::move(given), *trace_.Log()) : given;
  }

  void OpenPage();
  void ClosePage();
  void ShowHelp();
  void ShowBox(const std::string& text, const wchar_t* title) const;
  void Quit();
  void PlayActions();
  int PlayAction(Player& player, const Action& action);
  void TakePicture();
  int ExitStatus();
  void Complain(const std::string& text);
  void TellUnheard();
  std::string FoundText();

  const WindowOptions& options_;
  std::ostream& errors_;
  Job job_;
  Apartment apartment_;
  MainWindow window_;
  std::optional<Player> player_;  // without one the user answers boxes and dialogues on the screen
  InterruptFlag interrupt_;
  Watch watch_{{.Complain = [this](std::string_view text) { Complain(Printable(text)); }}};
  std::shared_ptr<BenchLink> link_;
  std::shared_ptr<InstrumentLink> watchedLink_;
  TraceOutput trace_;
  std::optional<OfferedSettings> settings_;
  std::optional<InstalledModule> installed_;
  std::optional<AddInFile> file_;
  std::optional<DialogueHooks> hooks_;
  std::unique_ptr<ComSession> session_;
  std::optional<Operation> operation_;
  Findings findings_;
  std::string unheard_;  // complaints that only the log has
  bool isPlaying_ = false;
  bool isLast_ = false;            // the user ends page or window when it has ended
  int worst_ = exit_status::done;  // of all that has ended
};

// Checks before anything is changed; not where a registered add-in lies. Returns what is to be logged.
std::vector<std::string> CheckFilesOf(const WindowOptions& options, const Job& job) {
  if (options.Folder.empty()) {
    return {};
  }
  Options bench;
  bench.Folder = AbsolutePath(options.Folder);
  bench.Link = options.Link;
  bench.Replaces = options.Replaces;
  bench.Trace = options.Trace;
  return CheckFiles(bench, job);
}

HestrionBench::HestrionBench(const WindowOptions& options, Job job, std::ostream& output,
                             std::ostream& errors)
    : options_{options},
      errors_{errors},
      job_{std::move(job)},
      window_{{.OpenPage = [this] { OpenPage(); },
               .ClosePage = [this] { ClosePage(); },
               .Save = [this] { session_ ? session_->SaveChanges() : void(); },
               .Help = [this] { ShowHelp(); },
               .Quit = [this] { Quit(); },
               .Stop = [this] { StopOperation(); },
               .MayBeEnded = [this] { return MayBeEnded(); },
               .Rest = [this] { Rest(); }}},
      link_{CreateLink(options.Link, ParseTimeout(options.Timeout), interrupt_)},
      watchedLink_{watch_.Watched(MakeWaitingLink())},
      trace_{options.Trace, options.TracesReads, output} {
  link_->Begin();
  if (!options_.Play.empty()) {
    player_.emplace(BoxAnswers::Setup{.Listed = options_.Answers.empty() ? std::vector<std::int32_t>{}
                                                                         : ParseAnswers(options_.Answers),
                                      .AffirmsRest = options_.AffirmsRest},
                    [this](const std::string& text) { Complain(text); });
  }
  settings_.emplace([this] { return Traced(CreateIniFileService()); });
  const auto addIn = CreateAddIn();
  UniqueBstr caption;
  addIn->get_Caption(caption.Put());
  window_.AddMenuEntry(Utf8FromBstr(caption.Get()));
  window_.ShowPlace(ProgramFolder(), options_.Link);
}

std::shared_ptr<BenchLink> HestrionBench::MakeWaitingLink() {
  return std::make_shared<WaitingLink>(
      link_, interrupt_,
      WaitingLink::Events{.Sending =
                              [this](const std::string& command) {
                                auto& operation = BeginOperation(command);
                                operation.Sends(command, ProgramFolder());
                                watch_.Tally().Commands.Expected = operation.Expected();
                                watch_.Tally().Commands.ExpectsSave = operation.Button() == uploadButton;
                                window_.ShowProgress(operation.Progress());
                              },
                          .Answered = [this](const std::string& command,
                                             const std::string& reply) { findings_.Hear(command, reply); },
                          .Wait = [this](HANDLE event) { window_.PumpUntil(event); }});
}

// Where the add-in lies, and so its configuration.
std::string HestrionBench::ProgramFolder() {
  return FolderOf(GetModuleHandleW(addInModuleName));
}

// With a folder, the module that lies there; otherwise the registered class, or the
// module beside this program.
ComPtr<IAddIn> HestrionBench::CreateAddIn() {
  ComPtr<IAddIn> addIn;
  if (options_.Folder.empty() && !file_) {
    addIn = CreateRegisteredAddIn();
  }
  if (!addIn) {
    if (!file_) {
      const auto folder = options_.Folder.empty() ? OwnFolder() : AbsolutePath(options_.Folder);
      if (!std::filesystem::exists(PathOf(ConfigFileIn(folder)))) {
        throw UsageError{Joined("there is no Zolvane.ini in ", folder)};
      }
      installed_.emplace(folder);
      file_.emplace(installed_->Path());
    }
    addIn = file_->Create();
  }
  if (!hooks_) {
    DialogueListener& listener = *this;
    hooks_.emplace(GetModuleHandleW(addInModuleName), trace_.Log(), listener);
  }
  return addIn;
}

void HestrionBench::OpenPage() {
  if (session_) {
    return;
  }
  auto object = MakeWindowedObject({.Window = &window_,
                                    .Link = watchedLink_,
                                    .OffersDialog = options_.OffersDialog,
                                    .MessageOpened = [this](const Question& question) {
                                      if (player_) {
                                        player_->Answer(question);
                                      }
                                    }});
  auto window = MakeWindowedWindow(window_, [this](const std::string& status) {
    if (!status.empty()) {
      BeginOperation(status);
    }
  });
  session_ = std::make_unique<ComSession>(CreateAddIn(), OfferHostObject(Traced(std::move(object))),
                                          OfferHostWindow(Traced(std::move(window))));
  window_.Embed(session_->Frame(), session_->WantsButtons(), session_->WantsStatusBar());
  window_.AppendLog(Joined("Opened: ", session_->Caption()));
  window_.ShowTitle(session_->Caption());
}

void HestrionBench::ClosePage() {
  if (session_) {
    window_.Embed(nullptr, false, true);
    session_ = nullptr;
    watch_.FlushSettings();
    window_.ShowStatus("");
    window_.AppendLog("Closed");
    window_.ShowTitle("");
  }
}

void HestrionBench::ShowHelp() {
  const auto text = session_ ? Joined("Help on \"", session_->Caption(), "\" is topic ",
                                      std::to_string(session_->HelpTopic()), " of the host's help file.")
                             : std::string{"Open an add-in's page from the Add-ins menu."};
  ShowBox(text, L"Help");
}

void HestrionBench::ShowBox(const std::string& text, const wchar_t* title) const {
  MessageBoxW(window_.Handle(), Wide(text).c_str(), title, MB_OK | MB_ICONINFORMATION);
}

// Whoever ends the program by hand has had the log before their eyes.
void HestrionBench::Quit() {
  if (!options_.Quits) {
    unheard_.clear();
  }
  ClosePage();
  DestroyWindow(window_.Handle());
}

void HestrionBench::Complain(const std::string& text) {
  window_.AppendLog(text);
  const auto line = Joined("HestrionBench: ", Printable(text), "\n");
  if (!SayOnTerminal(Announcement::Error, line, errors_)) {
    unheard_ += line;
  }
}

// When the window is gone, and the log with it.
void HestrionBench::TellUnheard() {
  if (!unheard_.empty()) {
    Announce(Announcement::Error, unheard_, errors_);
  }
}

// ---- What is said while the user or the player has the page

void HestrionBench::BoxOpens(const MessageBoxRequest& request) {
  if (player_) {
    player_->BoxOpens(request);
  }
}

void HestrionBench::BoxClosed(const MessageBoxRequest& request, std::optional<std::int32_t> answer) {
  watch_.Tally().TakeAnswer(request.Style, answer);
  if (player_) {
    player_->BoxClosed(request, answer);
  }
}

void HestrionBench::FileDialogueOpens(FileDialogueKind kind, const FileDialogue& dialogue) {
  BeginOperation(dialogue.Title).AsksForFile(kind);
  if (player_) {
    player_->FileDialogueOpens(kind, dialogue);
  }
}

void HestrionBench::FileDialogueClosed(const std::optional<std::string>& chosen) {
  watch_.Tally().WasCancelled |= !chosen;
  watch_.Tally().ChosenFile = chosen;
  if (player_) {
    player_->FileDialogueClosed(chosen);
  }
}

// ---- Operations

// `name` is what it is called if this begins it.
Operation& HestrionBench::BeginOperation(const std::string& name) {
  if (!operation_) {
    worst_ = std::max(worst_, ExitStatusOf(watch_.Tally()));
    watch_.Begin();
    findings_ = {};
    operation_.emplace(name, Operation::Clock::now());
    window_.ShowOperation(true);
  }
  return *operation_;
}

// Does nothing when none runs.
void HestrionBench::EndOperation() {
  if (!operation_) {
    return;
  }
  const auto result = operation_->Result(watch_.Tally(), Operation::Clock::now());
  const bool isTold = isPlaying_ || OutcomeOf(watch_.Tally()) == Outcome::Done;
  const auto found = operation_->Button() == queryButton ? FoundText() : std::string{};
  operation_ = std::nullopt;
  interrupt_.Lower();
  window_.ShowOperation(false);
  window_.ShowProgress("");
  isTold ? window_.AppendLog(result) : Complain(result);
  if (!found.empty()) {
    window_.AppendLog(found);
  }
  if (std::exchange(isLast_, false)) {
    ShowBox(result, L"Ended");
  } else if (!isPlaying_) {
    ReopenWhenDisabled();
  }
}

// What is done next is another matter, with complaints of its own.
void HestrionBench::Rest() {
  watch_.FlushSettings();
  EndOperation();
  worst_ = std::max(worst_, ExitStatusOf(watch_.Tally()));
  watch_.Begin();
}

std::string HestrionBench::FoundText() {
  HostProcess& process = *this;
  const Configuration configuration{process};
  return findings_.Text(configuration, ConfigFileIn(ProgramFolder()),
                        session_ ? PageDriver{session_->Frame()}.Shown().PumpText : std::string{});
}

void HestrionBench::StopOperation() {
  interrupt_.Raise();
  window_.AppendLog(interrupt_.IsUrgent() ? "Stop: no longer waiting for the reply"
                                          : "Stop: no further command is sent");
}

bool HestrionBench::MayBeEnded() {
  if (!operation_) {
    return true;
  }
  const auto progress = operation_->Progress();
  const auto text =
      Joined(operation_->Name(), " is not finished", progress.empty() ? "" : " (command " + progress + ")",
             ".\r\n\r\nStop it and close?");
  const int answer = MessageBoxW(window_.Handle(), Wide(text).c_str(), L"An operation is running",
                                 MB_YESNO | MB_DEFBUTTON2 | MB_ICONWARNING);
  if (answer == IDYES) {
    StopOperation();
    isLast_ = true;
  }
  return answer == IDYES;
}

// An add-in may leave its controls disabled when the user cancels: its page then comes
// back by being opened again.
void HestrionBench::ReopenWhenDisabled() {
  const auto isEnabled = [this] {
    return std::ranges::any_of(PageDriver{session_->Frame()}.Shown().ButtonsEnabled, std::identity{});
  };
  if (session_ && !isEnabled()) {
    ClosePage();
    OpenPage();
  }
}

// The user may close the page or the window between two commands.
void HestrionBench::PlayActions() {
  if (!player_) {
    return;
  }
  const std::span<const Action> actions{job_.Actions};
  for (std::size_t done = 0; done < actions.size(); ++done) {
    const bool hasFailed = PlayAction(*player_, actions[done]) != exit_status::done;
    const bool isClosed = !window_.PumpMessages() || !session_;
    const auto notBegun = actions.subspan(done + 1);
    if (!notBegun.empty() && (isClosed || (hasFailed && !options_.KeepsGoing))) {
      worst_ = std::max(worst_, exit_status::notDone);
      const auto* const why = isClosed ? "closed after " : "stopped after ";
      Complain(NotBegunText(Joined(why, Quoted(actions[done].Command)), notBegun, actions.size()));
      return;
    }
  }
}

// The exit status as far as this command goes.
int HestrionBench::PlayAction(Player& player, const Action& action) {
  watch_.Begin();
  player.Play(action, PageDriver{session_->Frame()});
  for (const auto& reason : ReasonsOf(watch_.Tally())) {
    Complain(Joined(Printable(action.Command), ": ", reason));
  }
  const int status = std::max(ExitStatusOf(watch_.Tally()), ExitStatusOf(player.Tally()));
  worst_ = std::max(worst_, status);
  return status;
}

void HestrionBench::TakePicture() {
  if (window_.Handle() == nullptr) {
    throw std::runtime_error{"the window was closed before its picture was taken"};
  }
  RedrawWindow(window_.Handle(), nullptr, nullptr,
               RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
  window_.PumpMessages();
  SavePicture(window_.Handle(), options_.Screenshot);
}

// A trace that is not complete is no trace.
int HestrionBench::ExitStatus() {
  const int status = std::max(worst_, ExitStatusOf(watch_.Tally()));
  if (const auto loss = trace_.Finish()) {
    Complain(*loss);
    return exit_status::unusable;
  }
  return status;
}

int HestrionBench::Run(const std::vector<std::string>& notes) {
  std::ranges::for_each(notes, [this](const auto& note) { window_.AppendLog(note); });
  if (options_.OpensPage()) {
    OpenPage();
    window_.PumpMessages();
    isPlaying_ = true;
    PlayActions();
    isPlaying_ = false;
  }
  if (!options_.Screenshot.empty()) {
    TakePicture();
  }
  if (options_.Quits) {
    Quit();
  } else {
    ReopenWhenDisabled();
  }
  window_.Run();
  const int status = ExitStatus();
  TellUnheard();
  return status;
}

}  // namespace

int RunHestrionBench(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors) {
  const auto complain = [&errors](const std::exception& error) {
    Announce(Announcement::Error, Joined("HestrionBench: ", OneLine(error.what()), "\n"), errors);
  };
  try {
    CommandLine line{{.Program = "HestrionBench",
                      .Usage = "[OPTIONS]",
                      .Purpose = "Hosts the add-in's real module in a window.\n"}};
    WindowOptions options;
    Describe(line, options);
    if (const auto asked = line.Parse(arguments); asked != CommandLine::Asked::Nothing) {
      Announce(Announcement::Information,
               asked == CommandLine::Asked::Help ? line.HelpText() : line.VersionText(), output);
      return exit_status::done;
    }
    if (!line.Words().empty()) {
      throw UsageError{Joined(Quoted(line.Words().front()), " is not an option; see HestrionBench --help")};
    }
    Job job = options.Play.empty() ? Job{} : ParseJob({"run", options.Play}, std::nullopt, std::cin);
    const auto notes = CheckFilesOf(options, job);
    return HestrionBench{options, std::move(job), output, errors}.Run(notes);
  } catch (const UsageError& error) {
    complain(error);
    return exit_status::unusable;
  } catch (const std::exception& error) {
    complain(error);
  }
  return exit_status::notDone;
}

}  // namespace zolvane
