// Every operation again and again, each time with another one of its host calls failing: over COM, in the
// ways in which such calls fail, and on the portable parts. The host must get the same calls, and files and
// page must end up the same.
#include <gtest/gtest.h>

#include <add_in.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "bench/host/recorded_page.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/play/page_driver.h"
#include "shell/add_in_module.h"
#include "shell/connect.h"
#include "win32/unique_handle.h"
#include "windows/host/faulty_run.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

struct RunOutcome {
  std::vector<HostCall> Calls;     // that count, whether they reach the host or not
  std::vector<std::string> Trace;  // what reached the host, with its values
  std::vector<HRESULT> Members;    // what the page's members returned
  std::string Page;
  std::string Files;
};

std::string TextOf(const PageModel& page, const BenchHost& host) {
  std::ostringstream text;
  for (const auto& list : page.Lists) {
    for (const auto& entry : list.Entries) {
      text << entry.Text << "=" << entry.Data << "|";
    }
    text << list.Selected << (list.Enabled ? " on\n" : " off\n");
  }
  for (const auto& check : page.Checks) {
    text << check.Value << (check.Enabled ? " on\n" : " off\n");
  }
  for (const bool enabled : page.ButtonsEnabled) {
    text << enabled;
  }
  text << "\n" << page.PumpText << "\n" << host.StatusText();
  text << "\nchanged " << (host.Changed() ? std::to_string(*host.Changed()) : "never");
  return text.str();
}

void Take(FaultyRun& run, RunOutcome& outcome) {
  outcome.Calls = run.Faults.Calls();
  outcome.Trace = run.TakeTrace();
  outcome.Files = run.FileTexts();
}

RunOutcome PlayOnParts(const PlayedOperation& operation, const FailingCall& failure) {
  RunOutcome outcome;
  FaultyRun run{operation};
  {
    const auto process = Failing(*run.Process, run.Faults);
    RecordedPageFactory pages;
    AddInModule module{*process, pages};
    run.BeginSession(failure);
    Connect connect{module};
    PassOver(connect.Class_Initialize());
    connect.IAddIn_Caption();
    const auto form = connect.IAddIn_Form();
    form->IAddInForm_FormParent(Failing(Traced(run.Host.Window(), run.Log), run.Faults));
    form->IAddInForm_ObjectParent(Failing(Traced(run.Host.Object(), run.Log), run.Faults));
    form->IAddInForm_LoadDefaults();
    run.Act(failure, [&](int button) {
      run.Host.Begin(FileFor(operation));
      form->PressButton(button);
    });
    outcome.Page = TextOf(pages.Shown(), run.Host);
    form->IAddInForm_SaveChanges();
    form->IAddInForm_ObjectParent(nullptr);
  }
  Take(run, outcome);
  return outcome;
}

RunOutcome PlayOnModule(const PlayedOperation& operation, const FailingCall& failure) {
  RunOutcome outcome;
  FaultyRun run{operation};
  const auto& module = ProgramFolder::OfThisRun().Module();
  UnshownDialogues dialogues{operation};
  const DialogueHooks hooks{module.Module(), &run.Log, dialogues};
  const FailingSettings settings{[&] { return run.Process->CreateIniFileService(); }, run.Faults};
  const auto note = [&](HRESULT member) { outcome.Members.push_back(member); };
  {
    run.BeginSession(failure);
    const auto addIn = module.Create();
    UniqueBstr caption;
    note(addIn->get_Caption(caption.Put()));
    ComPtr<IAddInForm> form;
    note(addIn->get_Form(form.Put()));
    const auto window = OfferHostWindow(Traced(run.Host.Window(), run.Log), PanelsShape::IndexedProperty);
    note(form->putref_FormParent(Failing(window, run.Faults).Get()));
    note(form->putref_ObjectParent(
        Failing(OfferHostObject(Traced(run.Host.Object(), run.Log)), run.Faults).Get()));
    note(form->LoadDefaults());
    const PageDriver page{FrameOf(form)};
    run.Act(failure, [&](int button) { page.Press(button); });
    outcome.Page = TextOf(page.Shown(), run.Host);
    note(form->SaveChanges());
    note(form->putref_ObjectParent(nullptr));
  }
  Take(run, outcome);
  return outcome;
}

// ---- Which calls fail ----

// Most calls of an operation differ only in the number of their record or in their values, and run the same
// few lines of the module. So each kind of call fails where it comes first and where it comes last, and so
// does every n-th call, to meet other states of the operation. Calls by name fail in each of the ways, spread
// from the first to the last of their kind; for those of the settings-file service the ways take turns.
std::vector<FailingCall> FailuresOf(const std::vector<HostCall>& calls) {
  const std::size_t stride = calls.size() / 16;
  std::vector<FailingCall> failures;
  const auto add = [&](std::size_t call) {
    failures.push_back({.Call = call, .Way = static_cast<FailureWay>(failures.size() % failureWays)});
  };
  for (const auto& [kind, at] : PlacesOfEachKind(calls)) {
    if (!calls[at.front() - 1].IsByName) {
      add(at.front());
      if (at.size() > 1) {
        add(at.back());
      }
      continue;
    }
    for (std::size_t way = 0; way < failureWays; ++way) {
      failures.push_back(
          {.Call = at[way * (at.size() - 1) / (failureWays - 1)], .Way = static_cast<FailureWay>(way)});
    }
  }
  for (std::size_t call = stride; call <= calls.size(); call += stride) {
    add(call);
  }
  return failures;
}

// ---- What is expected ----

std::vector<std::string> NamesOf(const std::vector<HostCall>& calls) {
  std::vector<std::string> names;
  std::ranges::transform(calls, std::back_inserter(names), &HostCall::Name);
  return names;
}

// Only the first difference: the lists are long.
void ExpectSameLines(const std::vector<std::string>& module, const std::vector<std::string>& parts) {
  for (std::size_t line = 0; line < std::min(module.size(), parts.size()); ++line) {
    ASSERT_EQ(module[line], parts[line]) << "at " << line;
  }
  EXPECT_EQ(module.size(), parts.size());
}

void ExpectSame(const RunOutcome& module, const RunOutcome& parts) {
  ExpectSameLines(NamesOf(module.Calls), NamesOf(parts.Calls));
  ExpectSameLines(module.Trace, parts.Trace);
  EXPECT_EQ(module.Page, parts.Page);
  EXPECT_EQ(module.Files, parts.Files);
  EXPECT_EQ(module.Members, std::vector<HRESULT>(7, S_OK));
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(OfferedServicesAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
}

void ExpectEachFailureToBeTheSame(const PlayedOperation& operation) {
  const auto clean = PlayOnParts(operation, {});
  ASSERT_GT(clean.Calls.size(), 10U);
  ExpectSame(PlayOnModule(operation, {}), clean);
  const auto failures = FailuresOf(clean.Calls);
  for (const auto& failure : failures) {
    const auto& call = clean.Calls[failure.Call - 1];
    SCOPED_TRACE("call " + std::to_string(failure.Call) + ", " + call.Kind + ", fails in way " +
                 std::to_string(static_cast<int>(failure.Way)));
    const auto parts = PlayOnParts(operation, failure);
    ASSERT_GE(parts.Calls.size(), failure.Call);
    ExpectSame(PlayOnModule(operation, failure), parts);
    if (testing::Test::HasFailure()) {
      return;
    }
  }
}

TEST(FailingCalls, ASessionWithoutOperationsIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = std::nullopt});
}

TEST(FailingCalls, AQueryIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = queryButton});
}

TEST(FailingCalls, AQueryOfASilentInstrumentIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = queryButton, .Link = "none"});
}

TEST(FailingCalls, TheHostsOwnDialogueIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = queryButton, .Link = "none", .OffersDialog = true});
}

TEST(FailingCalls, AnUploadIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = uploadButton});
}

TEST(FailingCalls, ADownloadIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = downloadButton});
}

TEST(FailingCalls, AnImportIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = importButton});
}

TEST(FailingCalls, AnExportIsTheSame) {
  ExpectEachFailureToBeTheSame({.Button = exportButton});
}

}  // namespace
}  // namespace zolvane
