#include "bench/program/bench_program.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <system_error>
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
#include "program/terminal.h"
#include "program/version.h"
#include "program/write_failure.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// Outlives everything, so that a signal finds it at any time.
InterruptFlag& Interrupt() {
  static constinit InterruptFlag flag;
  return flag;
}

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
      .WantsToStop = [] { return Interrupt().IsRaised(); },
  };
  BenchHost host{setup, link, terminal.get(), console};
  Results results{options, job, console};
  Session session{host, console, trace.Log()};
  const int played = session.Play(job.Actions, options.KeepsGoing ? OnFailure::GoOn : OnFailure::Stop,
                                  {.IsInterrupted = [] { return Interrupt().IsRaised(); },
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
  const auto link = CreateLink(options.Link, options.TimeoutSeconds, Interrupt());
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
  TakeInterrupts([] { Interrupt().Raise(); });
  return PlayJob(options, job, link, trace, console);
}

void Complain(std::ostream& errors, const std::string& text) {
  errors << Joined("zolvane-bench: ", OneLine(text), "\n") << std::flush;
}

int ParseAndRun(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
                std::ostream& errors) {
  const auto parsed = ParseOptions(arguments);
  if (const auto* information = std::get_if<Information>(&parsed)) {
    errno = 0;
    if (output << information->Text << std::flush || ReaderHasLeft(LastWriteFailure())) {
      return exit_status::done;
    }
    Complain(errors, "standard output could not be written");
    return exit_status::notDone;
  }
  return Run(std::get<Options>(parsed), input, output, errors);
}

}  // namespace

int RunBench(const std::vector<std::string>& arguments, std::istream& input, std::ostream& output,
             std::ostream& errors) {
  try {
    return ParseAndRun(arguments, input, output, errors);
  } catch (const UsageError& error) {
    Complain(errors, error.what());
    return exit_status::unusable;
  } catch (const std::exception& error) {
    Complain(errors, std::string{"the run broke off: "} + error.what());
  } catch (...) {
    Complain(errors, "the run broke off");
  }
  return exit_status::notDone;
}

}  // namespace zolvane
