#include "bench/program/bench_program.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string_view>
#include <variant>

#include "bench/host/bench_host.h"
#include "bench/host/result_text.h"
#include "bench/host/session.h"
#include "bench/host/trace_output.h"
#include "bench/job/job.h"
#include "bench/program/file_checks.h"
#include "bench/program/options.h"
#include "bench/program/report.h"
#include "instrument/links/link_factory.h"
#include "program/console.h"
#include "program/program_frame.h"
#include "program/terminal.h"
#include "program/version.h"
#include "program/write_failure.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

constexpr std::string_view programName = "zolvane-bench";

// Prints each result at once, or all of them as one document at the end.
class Results {
 public:
  Results(const Options& options, const Job& job, Console& console)
      : options_{options},
        console_{console},
        report_{.Version = std::string{programVersion},
                .Folder = options.Folder,
                .Link = options.Link,
                .Started = std::chrono::system_clock::now(),
                .IsRun = job.IsRun} {}

  void Take(const ActionResult& result) {
    if (options_.PrintsJson) {
      report_.Results.push_back(result);
    } else {
      console_.Print(ResultText(result));
    }
  }

  void LeaveOut(std::span<const Action> actions) {
    std::ranges::transform(actions, std::back_inserter(report_.NotBegun), &Action::Command);
  }

  // Returns the exit status: `status`, or a worse one if the results could not be printed.
  int Finish(int status) {
    if (options_.PrintsJson) {
      report_.ExitStatus = status;
      report_.Duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started_);
      const bool isAlone = options_.Trace != standardOutput;  // else it is the last line of many
      console_.PrintDocument(JsonText(ReportJson(report_), isAlone));
    }
    const auto failure = console_.Flush();
    if (!failure || ReaderHasLeft(failure)) {
      return status;
    }
    console_.Error("the results are lost, as standard output could not be written");
    return std::max(status, exit_status::notDone);
  }

 private:
  using Clock = std::chrono::steady_clock;

  const Options& options_;
  Console& console_;
  RunReport report_;
  Clock::time_point started_ = Clock::now();
};

int PlayJob(const Options& options, const Job& job, const std::shared_ptr<BenchLink>& link,
            TraceOutput& trace, Console& console) {
  const auto terminal = OpenTerminal();
  const BenchHost::Setup setup{
      .Folder = options.Folder,
      .OffersDialog = options.OffersHostDialog,
      .Answers = {.Listed = options.Answers, .AffirmsRest = options.AffirmsRest},
      .WantsToStop = [] { return ProgramInterrupt().IsRaised(); },
  };
  BenchHost host{setup, link, terminal.get(), console};
  Results results{options, job, console};
  Session session{host, console, trace.Log()};
  const int played = session.Play(job.Actions, options.KeepsGoing ? OnFailure::GoOn : OnFailure::Stop,
                                  {.IsInterrupted = [] { return ProgramInterrupt().IsRaised(); },
                                   .Ended = [&](const ActionResult& result) { results.Take(result); },
                                   .NotBegun = [&](auto actions) { results.LeaveOut(actions); }});
  if (const auto loss = trace.Finish()) {
    console.Error(*loss);
    return results.Finish(exit_status::unusable);
  }
  return results.Finish(played);
}

int Run(const Options& options, std::istream& input, std::ostream& output, std::ostream& errors) {
  const Job job = ParseJob(options.Command, options.File, input);
  const auto notes = CheckFiles(options, job);
  const auto link = CreateLink(options.Link, options.TimeoutSeconds, ProgramInterrupt());
  TraceOutput trace{options.Trace, options.TracesReads, output};
  link->Begin();
  Console console{output,
                  errors,
                  {.IsQuiet = options.IsQuiet,
                   .ResultsGoToNotes = options.Trace == standardOutput,
                   .NotesWidth = ErrorTerminalWidth()}};
  std::ranges::for_each(notes, [&](const auto& note) { console.Note(note); });
  // So far only the trace and an instrument's memory have been opened, and an interrupt
  // may simply end the program.
  TakeInterrupts([] { ProgramInterrupt().Raise(); });
  return PlayJob(options, job, link, trace, console);
}

int ParseAndRun(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
                std::ostream& errors) {
  const auto parsed = ParseOptions(arguments);
  if (const auto* information = std::get_if<Information>(&parsed)) {
    return PrintInformation(programName, information->Text, output, errors);
  }
  return Run(std::get<Options>(parsed), input, output, errors);
}

}  // namespace

int RunBench(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
             std::ostream& errors) {
  return RunFramed(programName, errors, [&] { return ParseAndRun(arguments, input, output, errors); });
}

}  // namespace zolvane
