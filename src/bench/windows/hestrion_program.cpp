#include "bench/windows/hestrion_program.h"

#include <hestrion_cmds.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

#include "bench/actions.h"
#include "bench/joined.h"
#include "bench/links/link_factory.h"
#include "bench/paths.h"
#include "bench/settings/file_settings_service.h"
#include "bench/tracing.h"
#include "bench/usage_error.h"
#include "bench/windows/add_in_class.h"
#include "bench/windows/com_session.h"
#include "bench/windows/dialogue_hooks.h"
#include "bench/windows/main_window.h"
#include "bench/windows/offered_host.h"
#include "bench/windows/offered_settings.h"
#include "bench/windows/page_driver.h"
#include "bench/windows/picture.h"
#include "bench/windows/player.h"
#include "bench/windows/windowed_host.h"
#include "shell/windows/text.h"

namespace zolvane {
namespace {

constexpr const char* moduleFile = "HZOCalibrateDevice.dll";

struct WindowOptions {
  std::string Folder;  // empty: the registered add-in, else the program's own folder
  std::string Link = "sim";
  double Timeout = 5;
  bool OffersDialog = false;
  bool AffirmsRest = false;
  std::string Answers;
  std::string Trace;
  bool TracesReads = false;
  std::string Play;
  std::string Screenshot;
  bool Quits = false;

  bool OpensPage() const { return Quits || !Play.empty() || !Screenshot.empty(); }
};

void Describe(CLI::App& app, WindowOptions& options) {
  app.set_help_flag("-h,--help", "print this help");
  app.add_option("--folder", options.Folder, "the program folder, which holds Zolvane.ini")->type_name("DIR");
  app.add_option("--link", options.Link, "the instrument, as zolvane-bench names it")->type_name("LINK");
  app.add_option("--timeout", options.Timeout, "how long a command waits for its reply")
      ->type_name("SECONDS")
      ->check(CLI::PositiveNumber);
  app.add_flag("--host-dialog", options.OffersDialog, "let the host offer its own message dialogue");
  app.add_option("--play", options.Play, "do the commands in FILE on the page, one per line")
      ->type_name("FILE");
  app.add_option("--answer", options.Answers, "with --play: answers to the boxes, in their order")
      ->type_name("A,B,...");
  app.add_flag("--yes", options.AffirmsRest,
               "with --play: answer every box with OK or Yes once they run out");
  app.add_option("--trace", options.Trace, "write every interaction as JSON Lines to FILE")
      ->type_name("FILE");
  app.add_flag("--trace-reads", options.TracesReads, "let the trace hold the reads of settings too");
  app.add_option("--screenshot", options.Screenshot, "save a picture of the window, .png or .bmp")
      ->type_name("FILE");
  app.add_flag("--quit", options.Quits, "end when all that has been done");
}

std::string OwnFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return TextOf(std::filesystem::path{path}.parent_path());
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

// Where settings-file services come from.
class SettingsSource final : public Environment {
 public:
  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return std::make_shared<FileSettingsService>();
  }

  // The module does all else by itself.
  std::string ProgramFolder() override { return {}; }
  Status AppendBlankLine(const std::string&) override { return Status::Failure(); }
  void RunMessageLoopOnce() override {}
  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest&) override { return std::nullopt; }
  std::optional<std::string> ShowFileDialogue(FileDialogueKind, const FileDialogue&) override {
    return std::nullopt;
  }
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

class HestrionBench {
 public:
  HestrionBench(const WindowOptions& options, std::ostream& errors);
  ~HestrionBench() { ClosePage(); }
  HestrionBench(const HestrionBench&) = delete;
  HestrionBench& operator=(const HestrionBench&) = delete;

  int Run();

 private:
  // A user who answers boxes and dialogues on the screen.
  class Spectator final : public DialogueListener {
   public:
    void BoxOpens(const MessageBoxRequest&) override {}
    void BoxClosed(const MessageBoxRequest&, std::optional<std::int32_t>) override {}
    void FileDialogueOpens(FileDialogueKind, const FileDialogue&) override {}
    void FileDialogueClosed(const std::optional<std::string>&) override {}
  };

  ComPtr<IAddIn> CreateAddIn();
  void OpenTrace();
  void OpenPage();
  void ClosePage();
  void ShowHelp();
  void Quit();
  void PlayActions();
  void Complain(const std::string& text);
  DialogueListener& Listener() { return player_ ? static_cast<DialogueListener&>(*player_) : spectator_; }

  const WindowOptions& options_;
  std::ostream& errors_;
  int status_ = exit_status::done;
  Job job_;
  std::ofstream traceFile_;
  std::optional<TraceLog> trace_;
  Apartment apartment_;
  MainWindow window_;
  Spectator spectator_;
  std::optional<Player> player_;
  InterruptFlag interrupt_;
  std::shared_ptr<BenchLink> link_;
  SettingsSource source_;
  std::unique_ptr<Environment> tracedSource_;
  std::optional<OfferedSettings> settings_;
  std::optional<InstalledModule> installed_;
  std::optional<AddInFile> file_;
  std::optional<DialogueHooks> hooks_;
  std::unique_ptr<ComSession> session_;
  bool isBusy_ = false;
};

HestrionBench::HestrionBench(const WindowOptions& options, std::ostream& errors)
    : options_{options},
      errors_{errors},
      job_{options.Play.empty() ? Job{} : ParseJob({"run", options.Play}, std::nullopt, std::cin)},
      window_{{.OpenPage = [this] { OpenPage(); },
               .ClosePage = [this] { ClosePage(); },
               .Save = [this] { session_ ? session_->SaveChanges() : void(); },
               .Help = [this] { ShowHelp(); },
               .Quit = [this] { Quit(); }}},
      link_{CreateLink(options.Link, options.Timeout, interrupt_)} {
  OpenTrace();
  if (!options_.Play.empty()) {
    player_.emplace(AnswerDesk::Setup{.Listed = options_.Answers.empty() ? std::vector<std::int32_t>{}
                                                                         : ParseAnswers(options_.Answers),
                                      .AffirmsRest = options_.AffirmsRest},
                    [this](const std::string& text) { Complain(text); });
  }
  if (trace_) {
    tracedSource_ = Traced(source_, *trace_);
  }
  settings_.emplace([this] {
    return (tracedSource_ ? *tracedSource_ : static_cast<Environment&>(source_)).CreateIniFileService();
  });
  const auto addIn = CreateAddIn();
  UniqueBstr caption;
  addIn->get_Caption(caption.Put());
  window_.AddMenuEntry(Utf8FromBstr(caption.Get()));
}

void HestrionBench::OpenTrace() {
  if (options_.Trace.empty()) {
    return;
  }
  traceFile_.open(PathOf(options_.Trace), std::ios::binary | std::ios::trunc);
  if (!traceFile_) {
    throw UsageError{Joined("the trace file ", options_.Trace, " cannot be written")};
  }
  trace_.emplace(traceFile_, options_.TracesReads);
}

// With a folder, the module that lies there; otherwise the registered class, or the module beside this program.
ComPtr<IAddIn> HestrionBench::CreateAddIn() {
  ComPtr<IAddIn> addIn;
  if (options_.Folder.empty() && !file_) {
    addIn = CreateRegisteredAddIn();
  }
  if (!addIn) {
    if (!file_) {
      const auto folder = options_.Folder.empty() ? OwnFolder() : AbsolutePath(options_.Folder);
      if (!std::filesystem::exists(PathOf(folder) / "Zolvane.ini")) {
        throw UsageError{Joined("there is no Zolvane.ini in ", folder)};
      }
      installed_.emplace(folder);
      file_.emplace(installed_->Path());
    }
    addIn = file_->Create();
  }
  if (!hooks_) {
    hooks_.emplace(GetModuleHandleW(addInModuleName), trace_ ? &*trace_ : nullptr, Listener());
  }
  return addIn;
}

void HestrionBench::OpenPage() {
  if (session_) {
    return;
  }
  auto object = MakeWindowedObject({.Window = &window_,
                                    .Link = link_,
                                    .OffersDialog = options_.OffersDialog,
                                    .MessageOpened = [this](const Question& question) {
                                      if (player_) {
                                        player_->Answer(question);
                                      }
                                    }});
  auto window = MakeWindowedWindow(window_);
  session_ = std::make_unique<ComSession>(
      CreateAddIn(), OfferHostObject(trace_ ? Traced(std::move(object), *trace_) : std::move(object)),
      OfferHostWindow(trace_ ? Traced(std::move(window), *trace_) : std::move(window)));
  window_.Embed(session_->Frame(), session_->WantsButtons(), session_->WantsStatusBar());
  window_.AppendLog(Joined("Opened: ", session_->Caption()));
}

// What the page shows a message for goes on behind it.
void HestrionBench::ClosePage() {
  if (session_ && !isBusy_) {
    window_.Embed(nullptr, false, true);
    session_ = nullptr;
    window_.ShowStatus("");
    window_.AppendLog("Closed");
  }
}

void HestrionBench::ShowHelp() {
  const auto text = session_ ? Joined("Help on \"", session_->Caption(), "\" is topic ",
                                      std::to_string(session_->HelpTopic()), " of the host's help file.")
                             : std::string{"Open an add-in's page from the menu Add-ins."};
  MessageBoxW(window_.Handle(), Wide(text).c_str(), L"Help", MB_OK | MB_ICONINFORMATION);
}

void HestrionBench::Quit() {
  if (!isBusy_) {
    ClosePage();
    DestroyWindow(window_.Handle());
  }
}

void HestrionBench::Complain(const std::string& text) {
  status_ = std::max(status_, exit_status::notDone);
  window_.AppendLog(text);
  errors_ << "HestrionBench: " + text + "\n" << std::flush;
}

void HestrionBench::PlayActions() {
  for (const auto& action : job_.Actions) {
    isBusy_ = true;
    player_->Play(action, PageDriver{session_->Frame()});
    isBusy_ = false;
    if (!window_.PumpMessages()) {
      return;
    }
  }
  if (player_ && player_->WasCancelled()) {
    status_ = std::max(status_, exit_status::notDone);
  }
}

int HestrionBench::Run() {
  if (options_.OpensPage()) {
    OpenPage();
    window_.PumpMessages();
    PlayActions();
  }
  if (!options_.Screenshot.empty()) {
    RedrawWindow(window_.Handle(), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    window_.PumpMessages();
    SavePicture(window_.Handle(), options_.Screenshot);
  }
  if (options_.Quits) {
    Quit();
  }
  window_.Run();
  if (trace_ && !trace_->Flush()) {
    Complain("the trace is not complete");
  }
  return status_;
}

}  // namespace

int RunHestrionBench(std::vector<std::string> arguments, std::ostream& output, std::ostream& errors) {
  CLI::App app{"Hosts the add-in's real module in a window."};
  WindowOptions options;
  Describe(app, options);
  std::ranges::reverse(arguments);
  try {
    app.parse(std::move(arguments));
    return HestrionBench{options, errors}.Run();
  } catch (const CLI::CallForHelp&) {
    output << app.help() << std::flush;
    return exit_status::done;
  } catch (const CLI::ParseError& error) {
    errors << "HestrionBench: " << error.what() << "\n" << std::flush;
    return exit_status::unusable;
  } catch (const UsageError& error) {
    errors << "HestrionBench: " << error.what() << "\n" << std::flush;
    return exit_status::unusable;
  } catch (const std::exception& error) {
    errors << "HestrionBench: " << error.what() << "\n" << std::flush;
  }
  return exit_status::notDone;
}

}  // namespace zolvane
