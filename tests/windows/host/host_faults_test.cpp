// Every operation again and again, each time with another one of its host calls failing: over COM, in the ways in which
// such calls fail, and on the portable parts. The host must hear the same calls, and files and page must end up the same.
#include <gtest/gtest.h>

#include <add_in.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "bench/host/bench_host.h"
#include "bench/host/recorded_page.h"
#include "bench/host/tracing.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "bench/windows/play/page_driver.h"
#include "files/file_settings_service.h"
#include "files/sectioned_text.h"
#include "host/forwarding.h"
#include "instrument/links/link_factory.h"
#include "shell/add_in_module.h"
#include "shell/connect.h"
#include "shell/windows/host/late_bound_names.h"
#include "win32/late_bound.h"
#include "win32/text.h"
#include "windows/host/faulty_host.h"
#include "windows/support/dialogue_spectator.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

// ---- What is run

struct Operation {
  std::optional<int> Button;  // nothing: a session without any, which counts from its beginning to its end
  std::string Link = "sim";
  bool OffersDialog = false;
};

struct Failure {
  std::size_t Call = 0;  // counted from 1; 0: none fails
  FailureWay Way = FailureWay::Refusal;
};

struct RunOutcome {
  std::vector<HostCall> Calls;     // that count, whether they reach the host or not
  std::vector<std::string> Trace;  // what reached the host, with its values
  std::vector<HRESULT> Members;    // what the page's members returned
  std::string Page;
  std::string Files;
};

std::string PathOfBackup() {
  return ProgramFolder::OfThisRun().FileText("new.bak");
}
std::string PathOfSource() {
  return ProgramFolder::OfThisRun().FileText("old.bak");
}

// Settings files in memory: thousands of sessions on the disk would take too long. What the add-in does to a file
// without the service still happens on the disk.
class MemorySettings final : public IniFileService {
 public:
  MemorySettings() {
    const std::string text = SmallConfiguration();
    files_.emplace(ProgramFolder::OfThisRun().Configuration().string(), text);
    files_.emplace(PathOfSource(), text);
  }

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return files_[std::string{file}].Find(section, key).value_or(std::string{fallback});
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    auto& text = files_[std::string{file}];
    const auto edit = text.PlanValue(section, key, value);
    if (!edit) {
      return Status::Failure();
    }
    text.Apply(*edit);
    return Status::Success();
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return splitter_.SplitText(delimiter, text);
  }

  std::string Bytes(const std::string& file) { return files_[file].Bytes(); }

 private:
  FileSettingsService splitter_;
  std::map<std::string, SectionedText> files_;
};

// The process of a host, but for its settings files.
class MemoryProcess final : public ForwardingEnvironment {
 public:
  using ForwardingEnvironment::ForwardingEnvironment;

  std::shared_ptr<MemorySettings> Files = std::make_shared<MemorySettings>();

  std::shared_ptr<IniFileService> CreateIniFileService() override { return Files; }
};

void PrepareFiles() {
  Store(ProgramFolder::OfThisRun().Configuration(), "");
  Store(PathOfSource(), "");
  std::filesystem::remove(PathOfBackup());
}

BenchHost::Setup SetupFor(const Operation& operation) {
  return {.Folder = ProgramFolder::OfThisRun().Text(),
          .OffersDialog = operation.OffersDialog,
          .Answers = {.Listed = {}, .AffirmsRest = true}};
}

std::optional<std::string> FileFor(const Operation& operation) {
  if (operation.Button == importButton) {
    return PathOfSource();
  }
  return operation.Button == exportButton ? std::optional{PathOfBackup()} : std::nullopt;
}

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

// What the module does by itself and no host hears of.
bool IsHeard(const std::string& line) {
  return line.find(R"("event":"yield")") == std::string::npos &&
         line.find(R"("event":"append_blank_line")") == std::string::npos;
}

// The host of one run, as far as both sides share it.
class FaultyRun {
 public:
  explicit FaultyRun(const Operation& operation) : Asked{operation} { PrepareFiles(); }

  const Operation& Asked;
  HostFaults Faults;
  std::stringstream Trace;
  TraceLog Log{Trace, false};
  std::ostringstream Unread;
  Console Out{Unread, Unread, {.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = {}}};
  InterruptFlag Interrupt;
  BenchHost Host{SetupFor(Asked), CreateLink(Asked.Link, 5, Interrupt), nullptr, Out};
  MemoryProcess Plain{Host.Environment()};
  std::unique_ptr<Environment> Process = Traced(Plain, Log);

  void BeginSession(const Failure& failure) {
    if (!Asked.Button) {
      Faults.Begin(failure.Call, failure.Way);
    }
  }

  template <class Press>
  void Act(const Failure& failure, Press press) {
    if (Asked.Button) {
      Faults.Begin(failure.Call, failure.Way);
      press(*Asked.Button);
      Faults.End();
    }
  }

  void Take(RunOutcome& outcome) {
    outcome.Calls = Faults.Calls();
    for (std::string line; std::getline(Trace, line);) {
      if (IsHeard(line)) {
        outcome.Trace.push_back(line);
      }
    }
    for (const auto& file : {ProgramFolder::OfThisRun().Configuration().string(), PathOfBackup()}) {
      outcome.Files += Plain.Files->Bytes(file) + "\n---- on the disk:\n" + ContentOf(file) + "\n----\n";
    }
  }
};

RunOutcome PlayOnParts(const Operation& operation, const Failure& failure) {
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
  run.Take(outcome);
  return outcome;
}

// Boxes and dialogues are answered at once: that they appear is looked at elsewhere.
class UnshownDialogues final : public DialogueSpectator {
 public:
  explicit UnshownDialogues(const Operation& operation) : file_{FileFor(operation)} {}

  bool ShowsDialogues() const override { return false; }
  std::optional<std::int32_t> AnswerUnshown(const MessageBoxRequest& request) override {
    return ButtonsOf(request.Style).front();
  }
  std::optional<std::string> ChooseUnshown(FileDialogueKind) override { return file_; }

 private:
  std::optional<std::string> file_;
};

HWND FrameOf(IAddInForm& form) {
  ComPtr<IDispatch> frame;
  form.get_Frame(frame.Put());
  const auto handle = LateBound{frame}.Read(names::frameWindow);
  return handle ? reinterpret_cast<HWND>(static_cast<LONG_PTR>(V_I4(&handle->Get()))) : nullptr;
}

RunOutcome PlayOnModule(const Operation& operation, const Failure& failure) {
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
    const PageDriver page{FrameOf(*form.Get())};
    run.Act(failure, [&](int button) { page.Press(button); });
    outcome.Page = TextOf(page.Shown(), run.Host);
    note(form->SaveChanges());
    note(form->putref_ObjectParent(nullptr));
  }
  run.Take(outcome);
  return outcome;
}

// ---- Which calls fail

using Places = std::map<std::string, std::vector<std::size_t>>;

// Where each kind of call comes, counted from 1.
Places PlacesOfEachKind(const std::vector<HostCall>& calls) {
  Places places;
  for (std::size_t call = 0; call < calls.size(); ++call) {
    places[calls[call].Kind].push_back(call + 1);
  }
  return places;
}

// Most calls of an operation differ in nothing but the number of their record or in their values, and what they come to in
// the module is the same few lines. So each kind of call fails where it comes first and where it comes last, and beside
// these every so-many-th call, to meet other states of the operation. Calls by name fail in each of the ways, from the
// first to the last of their kind; those of the settings-file service take turns.
std::vector<Failure> FailuresOf(const std::vector<HostCall>& calls) {
  const std::size_t stride = calls.size() / 16;
  std::vector<Failure> failures;
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

// ---- What is expected

std::vector<std::string> NamesOf(const std::vector<HostCall>& calls) {
  std::vector<std::string> names;
  std::transform(calls.begin(), calls.end(), std::back_inserter(names),
                 [](const auto& call) { return call.Name; });
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

void ExpectEachFailureToBeTheSame(const Operation& operation) {
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

TEST(HostFaults, AreTheSameInASessionWithoutOperations) {
  ExpectEachFailureToBeTheSame({.Button = std::nullopt});
}

TEST(HostFaults, AreTheSameInTheQuery) {
  ExpectEachFailureToBeTheSame({.Button = queryButton});
}

TEST(HostFaults, AreTheSameInTheQueryOfASilentInstrument) {
  ExpectEachFailureToBeTheSame({.Button = queryButton, .Link = "none"});
}

TEST(HostFaults, AreTheSameInTheHostsOwnDialogue) {
  ExpectEachFailureToBeTheSame({.Button = queryButton, .Link = "none", .OffersDialog = true});
}

TEST(HostFaults, AreTheSameInTheUpload) {
  ExpectEachFailureToBeTheSame({.Button = uploadButton});
}

TEST(HostFaults, AreTheSameInTheDownload) {
  ExpectEachFailureToBeTheSame({.Button = downloadButton});
}

TEST(HostFaults, AreTheSameInTheImport) {
  ExpectEachFailureToBeTheSame({.Button = importButton});
}

TEST(HostFaults, AreTheSameInTheExport) {
  ExpectEachFailureToBeTheSame({.Button = exportButton});
}

// ---- Hosts that do something else first, in the middle of a call

enum class Reentry : std::uint8_t {
  Detaches,
  Releases,
  LoadsAgain,
  TakesWindowBack,
  GivesItsObjectsAgain,
  Sends
};
constexpr std::array reentries{Reentry::Detaches,
                               Reentry::Releases,
                               Reentry::LoadsAgain,
                               Reentry::TakesWindowBack,
                               Reentry::GivesItsObjectsAgain,
                               Reentry::Sends};

// A session whose host calls back into the page, or lets go of it, at one of its calls.
class ReenteringSession {
 public:
  ReenteringSession(const Operation& operation, std::size_t call, Reentry reentry)
      : run_{operation}, reentry_{reentry}, failure_{.Call = call} {}

  void Play() {
    run_.Faults.ActInsteadOfFailing([this] { Reenter(); });
    run_.BeginSession(failure_);
    addIn_ = ProgramFolder::OfThisRun().Module().Create();
    addIn_->get_Form(form_.Put());
    frame_ = FrameOf(*form_.Get());
    Give();
    Use([](IAddInForm& form) { return form.LoadDefaults(); });
    run_.Act(failure_, [this](int button) { PageDriver{frame_}.Press(button); });
    Use([](IAddInForm& form) { return form.SaveChanges(); });
    Use([](IAddInForm& form) { return form.putref_ObjectParent(nullptr); });
    run_.Faults.End();
    EXPECT_EQ(OfferedObjectsAlive(), 0) << "although the host still holds the page";
  }

  const std::vector<HostCall>& Calls() const { return run_.Faults.Calls(); }

 private:
  template <class Member>
  void Use(Member member) {
    if (form_) {
      EXPECT_EQ(member(*form_.Get()), S_OK);
    }
  }

  void Give() {
    Use([this](IAddInForm& form) {
      const auto window = OfferHostWindow(Traced(run_.Host.Window(), run_.Log), PanelsShape::IndexedProperty);
      return form.putref_FormParent(Failing(window, run_.Faults).Get());
    });
    Use([this](IAddInForm& form) {
      const auto object = OfferHostObject(Traced(run_.Host.Object(), run_.Log));
      return form.putref_ObjectParent(Failing(object, run_.Faults).Get());
    });
  }

  void Reenter() {
    switch (reentry_) {
      case Reentry::Detaches:
        return Use([](IAddInForm& form) { return form.putref_ObjectParent(nullptr); });
      case Reentry::Releases:
        addIn_.Reset();
        form_.Reset();
        return;
      case Reentry::LoadsAgain:
        return Use([](IAddInForm& form) { return form.LoadDefaults(); });
      case Reentry::TakesWindowBack:
        return Use([](IAddInForm& form) { return form.putref_FormParent(nullptr); });
      case Reentry::GivesItsObjectsAgain:
        return Give();
      case Reentry::Sends:
        return PageDriver{frame_}.Press(queryButton);
    }
  }

  FaultyRun run_;
  UnshownDialogues dialogues_{run_.Asked};
  DialogueHooks hooks_{ProgramFolder::OfThisRun().Module().Module(), &run_.Log, dialogues_};
  FailingSettings settings_{[this] { return run_.Process->CreateIniFileService(); }, run_.Faults};
  Reentry reentry_;
  Failure failure_;
  ComPtr<IAddIn> addIn_;
  ComPtr<IAddInForm> form_;
  HWND frame_ = nullptr;
};

// Where each kind of call comes first and last.
std::set<std::size_t> EndsIn(const std::vector<HostCall>& calls) {
  std::set<std::size_t> ends;
  for (const auto& [kind, at] : PlacesOfEachKind(calls)) {
    ends.insert({at.front(), at.back()});
  }
  return ends;
}

void ExpectNothingLeftByReentering(const Operation& operation) {
  std::vector<HostCall> calls;
  {
    ReenteringSession clean{operation, 0, Reentry::Detaches};
    clean.Play();
    calls = clean.Calls();
  }
  ASSERT_GT(calls.size(), 10U);
  std::size_t turn = 0;
  for (const auto place : EndsIn(calls)) {
    const Reentry reentry = reentries[turn++ % reentries.size()];
    SCOPED_TRACE("call " + std::to_string(place) + ", " + calls[place - 1].Kind + ", in way " +
                 std::to_string(static_cast<int>(reentry)));
    {
      ReenteringSession session{operation, place, reentry};
      session.Play();
      EXPECT_GE(session.Calls().size(), place);
    }
    EXPECT_EQ(OfferedObjectsAlive(), 0);
    EXPECT_EQ(OfferedServicesAlive(), 0);
    EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
    if (testing::Test::HasFailure()) {
      return;
    }
  }
}

TEST(Reentering, LeavesNothingBehindInASessionWithoutOperations) {
  ExpectNothingLeftByReentering({.Button = std::nullopt});
}

TEST(Reentering, LeavesNothingBehindInTheHostsOwnDialogue) {
  ExpectNothingLeftByReentering({.Button = queryButton, .Link = "none", .OffersDialog = true});
}

TEST(Reentering, LeavesNothingBehindInTheUpload) {
  ExpectNothingLeftByReentering({.Button = uploadButton});
}

}  // namespace
}  // namespace zolvane
