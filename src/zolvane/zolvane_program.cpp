#include "zolvane/zolvane_program.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <variant>

#include "bench/host/trace_output.h"
#include "files/paths.h"
#include "instrument/links/link_factory.h"
#include "program/console.h"
#include "program/program_frame.h"
#include "program/terminal.h"
#include "program/write_failure.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/usage_error.h"
#include "zolvane/command_line.h"
#include "zolvane/commands.h"
#include "zolvane/work/objections.h"

namespace zolvane {
namespace {

std::shared_ptr<BenchLink> LinkOf(const CustodyOptions& options) {
  if (options.Link.empty() && !options.Faults.empty()) {
    throw UsageError{"--fault goes with a simulated link, and --link names none"};
  }
  FaultPlan faults;
  for (const auto& fault : options.Faults) {
    faults.Add(fault);
  }
  return options.Link.empty() ? nullptr
                              : CreateLink(options.Link, options.TimeoutSeconds, ProgramInterrupt(), faults);
}

// A trace is written before anything is looked at, so nothing that the command may read or write can be its file.
void DemandTrace(const CustodyOptions& options) {
  if (!options.Trace || *options.Trace == standardOutput) {
    return;
  }
  std::vector<std::string> needed{ConfigFileIn(options.Folder)};
  for (const auto* const words : {&options.Command, &options.Against}) {
    std::ranges::transform(*words, std::back_inserter(needed),
                           [](const auto& word) { return AbsolutePath(word); });
  }
  if (const auto file = FileOfLink(options.Link)) {
    needed.push_back(*file);
  }
  DemandTraceFile(*options.Trace, needed);
  DemandOutsideHistory(options.Folder, AbsolutePath(*options.Trace));
}

int Finish(Workplace& work, TraceOutput& trace) {
  auto& report = work.Result;
  if (const auto loss = trace.Finish()) {
    work.Out.Error(*loss);
    report.Worsen(exit_status::notDone);
  }
  if (work.Options.PrintsJson) {
    const bool isAlone = work.Options.Trace != standardOutput;  // else it is the last line of many
    work.Out.PrintDocument(JsonText(ReportJson(report), isAlone));
  }
  const auto failure = work.Out.Flush();
  if (failure && !ReaderHasLeft(failure)) {
    work.Out.Error("the results are lost, as standard output could not be written");
    report.Worsen(exit_status::notDone);
  }
  return report.ExitStatus;
}

// Whatever else is wrong with the arguments.
bool AsksForDocument(const std::vector<std::string>& arguments) {
  const auto end = std::ranges::find(arguments, "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

int Run(const CustodyOptions& options, std::ostream& output, std::ostream& errors, Questioner* terminal) {
  const auto link = LinkOf(options);
  DemandTrace(options);
  TraceOutput trace{options.Trace, false, output};
  if (link != nullptr) {
    link->Begin();
  }
  Console console{output,
                  errors,
                  {.Program = programName,
                   .IsQuiet = options.IsQuiet,
                   .ResultsGoToNotes = options.PrintsJson || options.Trace == standardOutput,
                   .NotesWidth = ErrorTerminalWidth()}};
  TakeInterrupts([] { ProgramInterrupt().Raise(); });
  SystemDisk files;
  SystemWitness who;
  Report report{.Command = options.Command.front()};
  Workplace work{.Options = options,
                 .Files = files,
                 .Who = who,
                 .Link = link,
                 .Terminal = terminal,
                 .Out = console,
                 .Trace = trace.Log(),
                 .Result = report};
  RunReported(work, errors);
  return Finish(work, trace);
}

}  // namespace

void RunReported(Workplace& work, std::ostream& errors) {
  auto& report = work.Result;
  const auto nothingWasChanged = [&](int status, std::string_view outcome) {
    report.ExitStatus = status;
    report.Outcome = outcome;
  };
  try {
    RunCommand(work);
  } catch (const Refusal&) {
    work.Out.Error("nothing was changed");
    nothingWasChanged(exit_status::objection, outcome::refused);
  } catch (const UsageError& error) {
    const bool isStopped = ProgramInterrupt().IsRaised();  // no link answers any more, whatever is asked
    report.Problem = isStopped ? "stopped by the user; nothing was changed" : error.what();
    Complain(programName, errors, report.Problem);
    nothingWasChanged(isStopped ? exit_status::notDone : exit_status::unusable,
                      isStopped ? outcome::cancelled : outcome::failed);
  }
}

int RunZolvane(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors,
               Questioner* terminal) {
  Report refusal{.Command = {}, .ExitStatus = exit_status::unusable, .Outcome = std::string{outcome::failed}};
  return RunFramed(programName, errors, [&] {
    try {
      const auto parsed = ParseCustodyOptions(arguments);
      if (const auto* information = std::get_if<Information>(&parsed)) {
        return PrintInformation(programName, information->Text, output, errors);
      }
      const auto& options = std::get<CustodyOptions>(parsed);
      refusal.Command = options.Command.front();
      return Run(options, output, errors, terminal);
    } catch (const UsageError& error) {
      refusal.Problem = error.what();
      if (AsksForDocument(arguments)) {
        output << JsonText(ReportJson(refusal), true) << std::flush;
      }
      throw;
    }
  });
}

}  // namespace zolvane
