// Every operation again and again, each time with another one of its calls failing: it has to come to its end, and to
// do everything that does not depend on that call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "page/device_setup_page.h"
#include "support/forgiving_host.h"
#include "support/golden.h"
#include "support/operation_fixture.h"
#include "support/recorded_view.h"

namespace zolvane {
namespace {

constexpr auto backupFile = "/backup/a.bak";

// ---- One run of an operation ----

struct Operation {
  std::string Name;
  std::function<void(FakeHost& host)> Prepare;
  std::function<void(DeviceSetupPage& page)> Run;
  std::size_t EndStepCalls = 0;   // how many of its last calls are its end step
  bool ReadsWhatItWrote = false;  // in the file or on the status line
  bool IsOnAFilledPage = false;
};

class OperationRun {
 public:
  OperationRun(const Operation& operation, bool forgives) : operation_{operation}, forgives_{forgives} {
    Fakes.Settings().Load(SmallConfiguration());
    operation.Prepare(Fakes);
    if (forgives) {
      attachment_ = {.ObjectParent = std::make_shared<ForgivingHostObject>(Fakes.Object),
                     .FormParent = std::make_shared<ForgivingWindow>(Fakes.Window),
                     .Panel = std::make_shared<ForgivingPanel>(Fakes.Window->Panel)};
    }
    if (operation.IsOnAFilledPage) {
      Page.LoadDefaults();
      Fakes.Calls.Clear();
    }
  }

  FakeHost Fakes;
  ForgivingEnvironment Forgiving{Fakes.Process};

  void Go() { operation_.Run(Page); }

  // All calls but the splitting of texts.
  Texts Calls() const {
    Texts calls = Fakes.Calls.Events;
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("split "); });
    return calls;
  }

 private:
  Environment& Process() { return forgives_ ? static_cast<Environment&>(Forgiving) : Fakes.Process; }

  const Operation& operation_;
  bool forgives_;
  HostAttachment attachment_ = Fakes.Attached();
  Configuration configuration_{Process()};
  RecordedView view_{Fakes.Calls};

 public:
  DeviceSetupPage Page{Process(), attachment_, configuration_, view_};
};

// ---- The operations ----

void ReplyTo(FakeHost& host, const std::string& command, const std::string& reply) {
  host.Link().Replies[command] = {Answer(reply)};
}

void PrepareQuery(FakeHost& host) {
  ReplyTo(host, "STATUS_STAGE", "ZV300");
  ReplyTo(host, "STATUS_MECH", "96/384");
  ReplyTo(host, "RFID READ_PERSISTENT", "1,2,TAG2,4,5");
  ReplyTo(host, "STATUS PUMPS", "PUMPS OPEN");
}

void PrepareSilentQuery(FakeHost& host) {
  host.Link().DefaultReply = NoAnswer();
  host.Object->OffersDialog = true;
  host.Object->Dialog->Results = {-1, 1};
}

// One record of a kind is enough for what is repeated for each.
void ShortenTables(FakeHost& host) {
  host.Settings().Set("Position_Large", "Item2", "");
  host.Settings().Set("HeadType", "Item3", "");
  host.Settings().Set("NestType", "Item2", "");
  host.Settings().Set("CageType", "Item2", "");
}

void PrepareDownload(FakeHost& host) {
  ShortenTables(host);
  host.Link().DefaultReply = Answer("x=400");
}

void PrepareExport(FakeHost& host) {
  host.Process.FileAnswers = {backupFile};
}

// Brings in what the file holds already.
void PrepareImport(FakeHost& host) {
  host.Settings().Load(backupFile, SmallConfiguration());
  host.Process.FileAnswers = {backupFile};
  host.Process.BoxAnswers = {message_answer::yes};
}

void PrepareNothing(FakeHost&) {}

std::function<void(DeviceSetupPage&)> Press(int button) {
  return [button](DeviceSetupPage& page) { page.PressButton(button); };
}

constexpr std::size_t enablingCalls = 19;

const Operation load{"load", PrepareNothing, [](DeviceSetupPage& page) { page.LoadDefaults(); }, 4};
const Operation query{"query", PrepareQuery, Press(queryButton), enablingCalls, true, true};
const Operation silentQuery{
    "query of a silent instrument", PrepareSilentQuery, Press(queryButton), enablingCalls, true, true};
const Operation upload{"upload", ShortenTables, Press(uploadButton), 2 + enablingCalls};
const Operation download{"download", PrepareDownload, Press(downloadButton), 2 + enablingCalls, true};
const Operation importing{"import", PrepareImport, Press(importButton), 1 + enablingCalls, false, true};
const Operation exporting{"export", PrepareExport, Press(exportButton), 1 + enablingCalls};

// ---- A run without failures ----

struct CleanRun {
  Texts Calls;                      // without the splitting of texts
  Texts Failing;                    // the calls that can fail
  std::vector<std::size_t> Places;  // where each of these is, or would be, among the calls
};

CleanRun CleanRunOf(const Operation& operation) {
  OperationRun run{operation, false};
  CleanRun clean;
  std::size_t splits = 0;
  run.Fakes.Calls.FailsIf = [&](std::string_view call) {
    clean.Failing.emplace_back(call);
    clean.Places.push_back(run.Fakes.Calls.Events.size() - splits);
    splits += call.starts_with("split ") ? 1 : 0;
    return false;
  };
  run.Go();
  clean.Calls = run.Calls();
  return clean;
}

bool StartsWithOneOf(std::string_view call, std::initializer_list<std::string_view> starts) {
  return std::ranges::any_of(starts, [call](auto start) { return call.starts_with(start); });
}

// ---- What a failing call takes with it ----

// Calls whose failure nothing depends on.
bool IsWithoutConsequence(const Operation& operation, std::string_view call) {
  return StartsWithOneOf(call, {"changed=", "stop=", "hold=", "log ", "append ", "dialogue style",
                                "dialogue title", "dialogue message", "dialogue show"}) ||
         (!operation.ReadsWhatItWrote && StartsWithOneOf(call, {"write ", "status="}));
}

bool IsOfEnabling(std::string_view call) {
  return call.starts_with("view ") && (call.find(" enabled ") != std::string_view::npos ||
                                       call.find(" colour ") != std::string_view::npos);
}

// The calls without those at [first, last).
Texts Without(Texts calls, std::size_t first, std::size_t last) {
  calls.erase(calls.begin() + static_cast<std::ptrdiff_t>(first),
              calls.begin() + static_cast<std::ptrdiff_t>(last));
  return calls;
}

// Enabling the controls ends at its first failure, that of the buttons at the end of loading does not.
Texts AfterFailedEnabling(const Texts& calls, std::size_t place) {
  const auto isEnabling = [&calls](std::size_t at) { return at < calls.size() && IsOfEnabling(calls[at]); };
  std::size_t first = place;
  while (first > 0 && isEnabling(first - 1)) {
    --first;
  }
  std::size_t last = place + 1;
  while (isEnabling(last)) {
    ++last;
  }
  // Loading ends right before the controls are enabled.
  const bool isLoading = first + 4 > place && !calls[first].starts_with("view cmdButton(2)");
  return isLoading ? calls : Without(calls, place + 1, last);
}

// A selection or a tick that is not shown runs no handler.
Texts AfterFailedChange(const Texts& calls, std::size_t place) {
  std::size_t last = place + 1;
  while (last < calls.size() && StartsWithOneOf(calls[last], {"changed=", "write "})) {
    ++last;
  }
  return Without(calls, place + 1, last);
}

Texts AfterFailedView(const Texts& calls, std::size_t place) {
  const auto& call = calls[place];
  if (IsOfEnabling(call)) {
    return AfterFailedEnabling(calls, place);
  }
  const bool isChange =
      call.find(" selected ") != std::string::npos || call.find(" checked ") != std::string::npos;
  return isChange ? AfterFailedChange(calls, place) : calls;
}

// Walks over numbered values leave out one that cannot be read and go on; where the first cannot be read they end.
bool IsLaterValueOfAWalk(const Texts& calls, std::size_t place, std::string_view key) {
  const bool isAxis = key.starts_with("Axis") && key != "Axis1";
  const bool isCorrection = key.ends_with("Item") && key != "1Item";
  const bool isSearch = calls[place] == "read [DeviceType] Item2" && calls[place - 2] == "send STATUS_STAGE";
  return isAxis || isCorrection || isSearch;
}

std::string KeyOf(std::string_view call) {
  const auto key = call.substr(call.find("] ") + 2);
  return std::string{key.substr(0, key.find(' '))};
}

// The operation with that call failing, on a host that gives the empty answer instead.
Texts ForgivenCalls(const Operation& operation, const CleanRun& clean, std::size_t failing) {
  OperationRun run{operation, true};
  const auto place = clean.Places[failing - 1];
  const auto& call = clean.Calls[place];
  const bool isLeftOut = call.starts_with("read ") && IsLaterValueOfAWalk(clean.Calls, place, KeyOf(call));
  run.Forgiving.ReadingAnswer = isLeftOut ? "?" : "";
  run.Fakes.Calls.FailingCall = failing;
  run.Go();
  return run.Calls();
}

// A link that is missing for one of its flags leaves that flag alone.
bool IsLinkForAFlag(const Texts& calls, std::size_t place) {
  return calls[place] == "get link" && StartsWithOneOf(calls[place + 1], {"stop=", "hold="});
}

Texts ExpectedCalls(const Operation& operation, const CleanRun& clean, std::size_t failing) {
  const auto& call = clean.Failing[failing - 1];
  const auto place = clean.Places[failing - 1];
  if (call.starts_with("view ")) {
    return AfterFailedView(clean.Calls, place);
  }
  if (IsLinkForAFlag(clean.Calls, place)) {
    return Without(clean.Calls, place + 1, place + 2);
  }
  return IsWithoutConsequence(operation, call) ? clean.Calls : ForgivenCalls(operation, clean, failing);
}

Texts CallsWithFailing(const Operation& operation, std::size_t failing) {
  OperationRun run{operation, false};
  run.Fakes.Calls.FailingCall = failing;
  run.Go();
  return run.Calls();
}

// The first difference of two lists, for a message that can be read.
std::string DifferenceOf(const Texts& actual, const Texts& expected) {
  const auto [at, other] = std::ranges::mismatch(actual, expected);
  const auto place = std::to_string(at - actual.begin());
  return "at " + place + ": " + (at == actual.end() ? "(end)" : *at) + " instead of " +
         (other == expected.end() ? "(end)" : *other);
}

// The last calls, without the state of the buttons that a device permits: a lost device permits none.
Texts EndStepOf(const Operation& operation, const Texts& calls) {
  EXPECT_GE(calls.size(), operation.EndStepCalls);
  Texts last(calls.end() - static_cast<std::ptrdiff_t>(operation.EndStepCalls), calls.end());
  for (auto& call : last) {
    const bool isPermission = call.starts_with("view cmdButton(") && !call.starts_with("view cmdButton(2)");
    call = isPermission ? call.substr(0, call.rfind(' ')) : call;
  }
  return last;
}

void ExpectEndStep(const Operation& operation, const CleanRun& clean, const Texts& calls,
                   std::string_view failing) {
  EXPECT_EQ(EndStepOf(operation, calls), EndStepOf(operation, clean.Calls))
      << operation.Name << " failing " << failing;
}

// A record behind the first that cannot be read is left out of its walk.
bool ReadsALaterRecord(const Operation& operation, std::string_view call) {
  const bool isOfAWalk =
      operation.Name == "query" ? call.starts_with("read [HeadType] ") : operation.Name != "load";
  return isOfAWalk && call.starts_with("read ") && KeyOf(call).starts_with("Item") && KeyOf(call) != "Item1";
}

// A record without a name, written where the record is that could not be read.
bool OverwritesWithNothing(std::string_view made, std::string_view failedRead) {
  constexpr std::string_view read = "read ";
  const auto end = failedRead.find("] ") + 2 + KeyOf(failedRead).size();
  const auto start = "write " + std::string{failedRead.substr(read.size(), end - read.size())} + "=";
  return made.starts_with(start + ",") || made.starts_with(start + "\"\",");
}

// What must hold whatever else that failure costs.
void ExpectNothingOverwritten(const Operation& operation, const CleanRun& clean, std::size_t failing) {
  const auto& call = clean.Failing[failing - 1];
  const auto calls = CallsWithFailing(operation, failing);
  ExpectEndStep(operation, clean, calls, call);
  for (const auto& made : calls) {
    const bool isMadeAnyway = std::ranges::find(clean.Calls, made) != clean.Calls.end();
    EXPECT_TRUE(isMadeAnyway || !OverwritesWithNothing(made, call))
        << operation.Name << " failing " << call << ": " << made;
  }
}

// Runs the operation once for each of its calls with that call failing. `isKnown` names calls that are looked at
// elsewhere.
void ExpectEveryFailureToBePassedOver(const Operation& operation,
                                      const std::function<bool(std::string_view)>& isKnown = {}) {
  const auto clean = CleanRunOf(operation);
  const auto count = clean.Failing.size();
  ASSERT_GT(count, 20U);
  for (std::size_t failing = 1; failing <= count; ++failing) {
    const auto& call = clean.Failing[failing - 1];
    if (call.starts_with("split ") || (isKnown && isKnown(call))) {
      continue;
    }
    if (ReadsALaterRecord(operation, call)) {
      ExpectNothingOverwritten(operation, clean, failing);
      continue;
    }
    const auto calls = CallsWithFailing(operation, failing);
    const auto expected = ExpectedCalls(operation, clean, failing);
    ASSERT_EQ(calls.size(), expected.size())
        << operation.Name << " failing " << call << ": " << DifferenceOf(calls, expected);
    ASSERT_TRUE(calls == expected) << operation.Name << " failing " << call << ": "
                                   << DifferenceOf(calls, expected);
    if (clean.Places[failing - 1] < clean.Calls.size() - operation.EndStepCalls) {
      ExpectEndStep(operation, clean, calls, call);
    }
  }
}

// ---- Each call failing once ----

bool FillsAList(std::string_view call) {
  return call.find(" entries ") != std::string_view::npos;
}

bool CreatesTheService(std::string_view call) {
  return call == "create settings service";
}

TEST(OneFailure, IsPassedOverByLoading) {
  ExpectEveryFailureToBePassedOver(load,
                                   [](auto call) { return FillsAList(call) || CreatesTheService(call); });
}

TEST(OneFailure, IsPassedOverByTheQuery) {
  ExpectEveryFailureToBePassedOver(query);
}

TEST(OneFailure, IsPassedOverByTheQueryOfASilentInstrument) {
  ExpectEveryFailureToBePassedOver(silentQuery);
}

TEST(OneFailure, IsPassedOverByTheUpload) {
  ExpectEveryFailureToBePassedOver(upload, CreatesTheService);
}

TEST(OneFailure, IsPassedOverByTheDownload) {
  ExpectEveryFailureToBePassedOver(download, CreatesTheService);
}

TEST(OneFailure, IsPassedOverByTheImport) {
  ExpectEveryFailureToBePassedOver(importing, CreatesTheService);
}

TEST(OneFailure, IsPassedOverByTheExport) {
  ExpectEveryFailureToBePassedOver(exporting, CreatesTheService);
}

TEST(OneFailure, ToCreateTheSettingsServiceCostsOneCall) {
  const auto clean = CleanRunOf(load);
  ASSERT_EQ(clean.Calls[0], "create settings service");
  ASSERT_EQ(clean.Calls[1], "read [Z_Calibration] MountHeight");
  auto expected = clean.Calls;
  expected[1] = "create settings service";
  EXPECT_EQ(CallsWithFailing(load, 1), expected);
}

TEST(OneFailure, ToFillAListLeavesItEmptyButForTheAddedEntry) {
  const auto clean = CleanRunOf(load);
  const auto call = std::ranges::find(clean.Calls, "view cboNestType entries Short Nest=1|Long Nest=2");
  ASSERT_NE(call, clean.Calls.end());
  auto expected = clean.Calls;
  const auto place = static_cast<std::size_t>(call - clean.Calls.begin());
  ASSERT_EQ(expected[place + 1], "view cboNestType selected 1");
  ASSERT_EQ(expected[place + 5], "write [NestType] Installed=1");
  expected[place + 5] = "write [NestType] Installed=0";
  expected = Without(expected, place + 1, place + 3);
  OperationRun run{load, false};
  run.Fakes.Calls.FailsIf = [&](auto event) { return event == *call; };
  run.Go();
  EXPECT_EQ(run.Calls(), expected);
}

TEST(OneFailure, ToFillTheDeviceListSelectsNothing) {
  const auto clean = CleanRunOf(load);
  const auto call = std::ranges::find(clean.Calls, "view cboDeviceType entries Small=1|Large=2");
  ASSERT_NE(call, clean.Calls.end());
  const auto place = static_cast<std::size_t>(call - clean.Calls.begin());
  OperationRun run{load, false};
  run.Fakes.Calls.FailsIf = [&](auto event) { return event == *call; };
  run.Go();
  EXPECT_EQ(run.Calls(), Without(clean.Calls, place + 1, place + 3));
}

// A line that cannot be split is one without fields.
TEST(OneFailure, ToSplitATextLeavesTheEndStep) {
  for (const auto& operation : {load, query, upload, download, importing, exporting}) {
    const auto clean = CleanRunOf(operation);
    for (std::size_t failing = 1; failing <= clean.Failing.size(); ++failing) {
      const auto& call = clean.Failing[failing - 1];
      if (call.starts_with("split ")) {
        ExpectEndStep(operation, clean, CallsWithFailing(operation, failing), call);
      }
    }
  }
}

// ---- All calls of a kind failing ----

TEST(ManyFailures, LeaveEveryOperationItsEndStep) {
  for (const auto& operation : {query, silentQuery, upload, download, importing, exporting}) {
    const auto clean = CleanRunOf(operation);
    for (const auto* kind : {"read", "write", "split", "get link", "stop?", "stop=", "hold=", "send",
                             "status", "changed", "log", "box", "dialogue", "append", "open", "save"}) {
      OperationRun run{operation, false};
      run.Fakes.Calls.FailEverythingThatStartsWith(kind);
      run.Go();
      ExpectEndStep(operation, clean, run.Calls(), kind);
    }
  }
}

TEST(ManyFailures, LeaveEveryOperationItsEndWhenNothingWorksAtAll) {
  for (const auto& operation : {load, query, silentQuery, upload, download, importing, exporting}) {
    OperationRun run{operation, false};
    const auto before = run.Fakes.Settings().Text();
    const auto backupBefore = run.Fakes.Settings().Text(backupFile);
    run.Fakes.Calls.FailsIf = [](auto) { return true; };
    run.Go();
    const auto calls = run.Calls();
    EXPECT_TRUE(
        StartsWithOneOf(calls.back(), {"view cmdButton(2) enabled true", "status=", "view cmdButton(4)"}))
        << operation.Name << " ends with " << calls.back();
    EXPECT_EQ(run.Fakes.Settings().Text(), before) << operation.Name;
    EXPECT_EQ(run.Fakes.Settings().Text(backupFile), backupBefore) << operation.Name;
  }
}

}  // namespace
}  // namespace zolvane
