#include "windows/support/played_session.h"

#include <hestrion_cmds.h>

#include <array>
#include <set>
#include <sstream>

#include "bench/host/bench_host.h"
#include "bench/host/tracing.h"
#include "bench/job/job.h"
#include "bench/program/bench_program.h"
#include "bench/program/report.h"
#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_settings.h"
#include "bench/windows/play/player.h"
#include "instrument/links/link_factory.h"
#include "windows/support/dialogue_spectator.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

constexpr const char* runFile = "commands.txt";
constexpr const char* traceFile = "trace.jsonl";
constexpr const char* backupFile = "new.bak";

// What the module does on its own, which no host sees.
bool IsHeardByHost(const std::string& line) {
  static const std::set<std::string> unheard{"control", "yield", "append_blank_line"};
  return !unheard.contains(nlohmann::json::parse(line).at("event").get<std::string>());
}

// The parts of a printed page that a window can be asked for.
nlohmann::json Visible(const nlohmann::json& printed) {
  nlohmann::json page;
  for (const auto* part : {"caption", "lists", "checks", "labels", "buttons", "status", "changed"}) {
    page[part] = printed.at(part);
  }
  for (auto& list : page["lists"]) {
    list.erase("back_color");
  }
  return page;
}

void Prepare(const SessionPlan& plan) {
  const auto& folder = ProgramFolder::OfThisRun();
  Store(folder.Configuration(), plan.Configuration);
  Store(folder.Path() / "old.bak", plan.Source);
  std::filesystem::remove(folder.Path() / backupFile);
  std::string commands;
  for (const auto& command : plan.Commands) {
    commands += command + "\n";
  }
  Store(folder.Path() / runFile, commands + "page\n");
}

void TakeFiles(PlayedSession& played) {
  const auto& folder = ProgramFolder::OfThisRun();
  played.Configuration = ContentOf(folder.Configuration());
  played.Backup = ContentOf(folder.Path() / backupFile);
}

std::vector<std::string> BenchArguments(const SessionPlan& plan) {
  const auto& folder = ProgramFolder::OfThisRun();
  std::vector<std::string> arguments{
      "--folder",     folder.Text(), "--link",        plan.Link, "--json",
      "--keep-going", "--replace",   "--trace-reads", "--trace", folder.FileText(traceFile)};
  for (const auto& answer : plan.Answers) {
    arguments.insert(arguments.end(), {"--answer", answer});
  }
  if (plan.AffirmsRest) {
    arguments.emplace_back("--yes");
  }
  if (plan.OffersDialog) {
    arguments.emplace_back("--host-dialog");
  }
  arguments.insert(arguments.end(), {"run", folder.FileText(runFile)});
  return arguments;
}

BenchHost::Setup HostSetup(const SessionPlan& plan) {
  BenchHost::Setup setup{.Folder = ProgramFolder::OfThisRun().Text(), .OffersDialog = plan.OffersDialog};
  for (const auto& answer : plan.Answers) {
    setup.Answers.Listed.push_back(ParseAnswers(answer).front());
  }
  setup.Answers.AffirmsRest = plan.AffirmsRest;
  return setup;
}

// Answers boxes and dialogues as a player does, but at once.
class UnshownDialogues final : public DialogueSpectator {
 public:
  explicit UnshownDialogues(const BoxAnswers::Setup& answers)
      : answers_{answers, nullptr, [](const std::string&) {}} {}

  std::optional<std::string> File;  // what the next file dialogue is answered

  bool ShowsDialogues() const override { return false; }
  std::optional<std::int32_t> AnswerUnshown(const MessageBoxRequest& request) override {
    return answers_.AnswerTo({.Title = request.Title, .Text = request.Text, .Style = request.Style}).Button;
  }
  std::optional<std::string> ChooseUnshown(FileDialogueKind) override { return File; }

 private:
  BoxAnswers answers_;
};

}  // namespace

std::vector<std::string> HostCalls(std::istream& trace) {
  std::vector<std::string> calls;
  for (std::string line; std::getline(trace, line);) {
    if (IsHeardByHost(line)) {
      calls.push_back(line);
    }
  }
  return calls;
}

PlayedSession PlayOnBench(const SessionPlan& plan) {
  Prepare(plan);
  std::istringstream noInput;
  std::ostringstream output;
  std::ostringstream errors;
  RunBench(BenchArguments(plan), noInput, output, errors);
  PlayedSession played;
  std::istringstream trace{ContentOf(ProgramFolder::OfThisRun().Path() / traceFile)};
  played.Calls = HostCalls(trace);
  played.Page = Visible(nlohmann::json::parse(output.str())["actions"].back());
  TakeFiles(played);
  return played;
}

PlayedSession PlayOnModule(const SessionPlan& plan) {
  Prepare(plan);
  auto& folder = ProgramFolder::OfThisRun();
  std::stringstream trace;
  std::ostringstream unread;
  TraceLog log{trace, true};
  const auto setup = HostSetup(plan);
  InterruptFlag interrupt;
  Console console{unread, unread, {.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = {}}};
  BenchHost host{setup, CreateLink(plan.Link, 5, interrupt), nullptr, console};
  const auto process = Traced(host.Environment(), log);
  const OfferedSettings settings{[&] { return process->CreateIniFileService(); }};
  Player player{setup.Answers, [](const std::string&) {}};
  UnshownDialogues unshown{setup.Answers};
  const DialogueHooks hooks{folder.Module().Module(), &log,
                            plan.ShowsDialogues ? static_cast<DialogueListener&>(player) : unshown};
  PlayedSession played;
  std::istringstream noInput;
  {
    const ComSession session{folder.Module().Create(), OfferHostObject(Traced(host.Object(), log)),
                             OfferHostWindow(Traced(host.Window(), log), plan.Panels)};
    const PageDriver page{session.Frame()};
    for (const auto& action : ParseJob({"run", folder.FileText(runFile)}, std::nullopt, noInput).Actions) {
      unshown.File = action.File;
      player.Play(action, page);
    }
    played.Page = Visible(nlohmann::json::parse(PageJson({.Caption = session.Caption(),
                                                          .Page = page.Shown(),
                                                          .Status = host.StatusText(),
                                                          .Changed = host.Changed()})
                                                    .dump()));
  }
  played.Calls = HostCalls(trace);
  TakeFiles(played);
  return played;
}

}  // namespace zolvane
