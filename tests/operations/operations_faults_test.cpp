// Every operation again and again, each time with another one of its calls failing. Whichever it is, the end step runs
// and the failure costs no more than what depends on that call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "page/device_setup_page.h"
#include "support/golden.h"
#include "support/long_tests.h"
#include "support/operation_fixture.h"
#include "support/recorded_view.h"

namespace zolvane {
namespace {

constexpr auto backupFile = "/backup/a.bak";
const std::string smallConfiguration = SmallConfiguration();

// ---- One run of an operation ----

struct Operation {
  std::string Name;
  std::function<void(FakeHost& host)> Prepare;
  std::function<void(DeviceSetupPage& page)> Run;
  std::size_t EndStepCalls = 0;   // how many of its last calls are its end step
  bool ReadsWhatItWrote = false;  // in the file or on the status line
  bool IsOnAFilledPage = false;
};

void PrintTo(const Operation& operation, std::ostream* to) {
  *to << operation.Name;
}

// The values of the settings files by place: `[Section] Key`, for the backup behind its name.
using Values = std::map<std::string, std::string>;

void AddValues(Values& values, const std::string& file, const std::string& text) {
  std::istringstream lines{text};
  std::string section;
  for (std::string line; std::getline(lines, line);) {
    const auto equals = line.find('=');
    if (equals == std::string::npos) {
      section = line;
    } else {
      values[file + section + " " + line.substr(0, equals)] = line.substr(equals + 1);
    }
  }
}

class OperationRun {
 public:
  explicit OperationRun(const Operation& operation) : operation_{operation} {
    Fakes.Settings().Load(smallConfiguration);
    operation.Prepare(Fakes);
    if (operation.IsOnAFilledPage) {
      Page.LoadDefaults();
      Fakes.Calls.Clear();
    }
  }

  FakeHost Fakes;

  void Go() { operation_.Run(Page); }

  // All calls but the splitting of texts.
  Texts Calls() const {
    Texts calls = Fakes.Calls.Events;
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("split "); });
    return calls;
  }

  Values Files() {
    Values values;
    AddValues(values, "", Fakes.Settings().Text());
    AddValues(values, backupFile, Fakes.Settings().Text(backupFile));
    return values;
  }

 private:
  const Operation& operation_;
  HostAttachment attachment_ = Fakes.Attached();
  Configuration configuration_{Fakes.Process};
  RecordedView view_{Fakes.Calls};

 public:
  DeviceSetupPage Page{Fakes.Process, attachment_, configuration_, view_};
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
  host.Settings().Load(backupFile, smallConfiguration);
  host.Process.FileAnswers = {backupFile};
  host.Process.BoxAnswers = {message_answer::yes};
}

void PrepareNothing(FakeHost&) {}

std::function<void(DeviceSetupPage&)> Press(int button) {
  return [button](DeviceSetupPage& page) { page.PressButton(button); };
}

constexpr std::size_t enablingCalls = 19;

const Operation load{"Load", PrepareNothing, [](DeviceSetupPage& page) { page.LoadDefaults(); }, 4};
const Operation query{"Query", PrepareQuery, Press(queryButton), enablingCalls, true, true};
const Operation silentQuery{
    "QueryOfASilentInstrument", PrepareSilentQuery, Press(queryButton), enablingCalls, true, true};
const Operation upload{"Upload", ShortenTables, Press(uploadButton), 2 + enablingCalls};
const Operation download{"Download", PrepareDownload, Press(downloadButton), 2 + enablingCalls, true};
const Operation importing{"Import", PrepareImport, Press(importButton), 1 + enablingCalls, false, true};
const Operation exporting{"Export", PrepareExport, Press(exportButton), 1 + enablingCalls};

// ---- A run without failures ----

struct CleanRun {
  Values Before;
  Values After;
  Texts Calls;                      // without the splitting of texts
  Texts Failing;                    // the calls that can fail
  std::vector<std::size_t> Places;  // where each of these is, or would be, among the calls
};

CleanRun CleanRunOf(const Operation& operation) {
  OperationRun run{operation};
  CleanRun clean;
  clean.Before = run.Files();
  std::size_t splits = 0;
  run.Fakes.Calls.FailsIf = [&](std::string_view call) {
    clean.Failing.emplace_back(call);
    clean.Places.push_back(run.Fakes.Calls.Events.size() - splits);
    splits += call.starts_with("split ") ? 1 : 0;
    return false;
  };
  run.Go();
  clean.Calls = run.Calls();
  clean.After = run.Files();
  return clean;
}

bool StartsWithOneOf(std::string_view call, std::initializer_list<std::string_view> starts) {
  return std::ranges::any_of(starts, [call](auto start) { return call.starts_with(start); });
}

Texts StartingWith(const Texts& calls, std::string_view start) {
  Texts chosen;
  std::ranges::copy_if(calls, std::back_inserter(chosen),
                       [start](const auto& call) { return call.starts_with(start); });
  return chosen;
}

// One text, so that a failure prints the difference.
std::string InLines(const Texts& calls) {
  std::string lines;
  for (const auto& call : calls) {
    lines += call + "\n";
  }
  return lines;
}

// ---- What must hold whichever call fails ----

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

void ExpectEndStep(const Operation& operation, const CleanRun& clean, const Texts& calls) {
  EXPECT_EQ(EndStepOf(operation, calls), EndStepOf(operation, clean.Calls));
}

// The place that a call writes to.
std::string PlaceWritten(const std::string& call) {
  const std::string suffix = std::string{" in "} + backupFile;
  constexpr std::size_t verb = std::string_view{"write "}.size();
  return (call.ends_with(suffix) ? backupFile : "") + call.substr(verb, call.find('=') - verb);
}

// A place, or for a record its table: `[CageType] Item`.
std::string TableOf(const std::string& place) {
  const auto end = place.find_last_not_of("0123456789") + 1;
  return place.substr(0, end).ends_with(" Item") ? place.substr(0, end) : place;
}

// What the operation has nothing to write to stays as it was.
void ExpectNothingOfOthersTouched(const CleanRun& clean, const Values& after) {
  std::set<std::string> own;
  for (const auto& call : StartingWith(clean.Calls, "write ")) {
    own.insert(TableOf(PlaceWritten(call)));
  }
  for (const auto& [place, value] : clean.Before) {
    if (!own.contains(TableOf(place))) {
      EXPECT_EQ(after.at(place), value) << place;
    }
  }
}

// No record is overwritten by one without a name, which is what a record is that could not be read. Where the first of
// a table cannot be read, the table counts as empty.
void ExpectNoRecordLost(const CleanRun& clean, const Values& after, const std::string& failing) {
  const auto hasName = [](const std::string& value) {
    return !value.empty() && !StartsWithOneOf(value, {",", "\"\","});
  };
  for (const auto& [place, value] : clean.Before) {
    const bool isFirst = place.ends_with(" Item1") && failing.starts_with("read " + place);
    EXPECT_TRUE(!hasName(value) || hasName(after.at(place)) || isFirst) << place << "=" << after.at(place);
  }
}

// The commands without their values.
Texts CommandsIn(const Texts& calls) {
  Texts commands = StartingWith(calls, "send ");
  for (auto& command : commands) {
    command.erase(command.starts_with("send SET_CALIBRATION ") ? command.rfind(' ') : command.size());
  }
  return commands;
}

// A question without an answer ends an upload before it is saved, and the user is told.
void ExpectNoClaimOfSuccess(const CleanRun& clean, const Texts& calls, const std::string& failing) {
  const std::string save = "send SET_CALIBRATION SAVE";
  EXPECT_TRUE(failing == save || std::ranges::find(calls, save) == calls.end());
  const auto isTold = [](const std::string& call) {
    return StartsWithOneOf(call, {"box ", "dialogue message "}) &&
           call.find("Please ensure that the Zolvane is switched on") != std::string::npos;
  };
  const auto before = std::ranges::count_if(clean.Calls, isTold);
  EXPECT_GT(std::ranges::count_if(calls, isTold), std::min(before, std::ptrdiff_t{3}));
}

// ---- What a call may cost that asks for nothing that is needed ----

// Calls that tell, and the question for the stop flag: one that cannot be read is not raised.
bool CostsItselfAlone(std::string_view call) {
  return StartsWithOneOf(call, {"write ", "status=", "changed=", "stop?", "stop=", "hold=", "log ", "append ",
                                "dialogue style", "dialogue title", "dialogue message", "dialogue show"});
}

// Another value is the clean run's; its own section is where a value stands that was to be written.
void ExpectOtherSectionsAsInTheCleanRun(const CleanRun& clean, const Values& after,
                                        const std::string& place) {
  const auto section = place.substr(0, place.find(']'));
  for (const auto& [other, value] : clean.After) {
    if (!other.starts_with(section)) {
      EXPECT_EQ(after.at(other), value) << other;
    }
  }
}

// `view cboHeadType` of a call that shows something.
std::string ControlOf(const std::string& call) {
  return call.substr(0, call.find(' ', std::string_view{"view "}.size()));
}

bool Enables(const std::string& call) {
  return call.starts_with("view ") &&
         (call.find(" enabled ") != std::string::npos || call.find(" colour ") != std::string::npos);
}

// The calls that have nothing to do with what could not be shown: enabling ends at its first failure, and a control
// that does not change runs no handler.
Texts CallsBeside(const Texts& calls, const std::string& failing) {
  Texts beside;
  for (const auto& call : calls) {
    const bool isOfEnabling = Enables(failing) && Enables(call);
    const bool isOfTheControl = !Enables(failing) && call.starts_with(ControlOf(failing));
    const bool isOfTheHandler = !Enables(failing) && StartsWithOneOf(call, {"changed=", "write "});
    if (!isOfEnabling && !isOfTheControl && !isOfTheHandler) {
      beside.push_back(call);
    }
  }
  return beside;
}

// ---- Each call failing once ----

class OneFailure : public testing::TestWithParam<Operation> {};

INSTANTIATE_TEST_SUITE_P(Operations, OneFailure,
                         testing::Values(load, query, silentQuery, upload, download, importing, exporting),
                         [](const auto& operation) { return operation.param.Name; });

// Which calls fail, one in each run. An operation asks for the same value dozens of times: a few of these failures are
// the first, the last, and every seventh between.
std::vector<std::size_t> FailuresTried(const Texts& failing) {
  std::map<std::string_view, std::size_t> times;
  for (const auto& call : failing) {
    ++times[call];
  }
  std::vector<std::size_t> tried;
  std::map<std::string_view, std::size_t> before;
  for (std::size_t number = 1; number <= failing.size(); ++number) {
    const auto& call = failing[number - 1];
    const auto time = ++before[call];
    if (TriesAll() || time % 7 == 1 || time == times[call]) {
      tried.push_back(number);
    }
  }
  return tried;
}

TEST_P(OneFailure, LeavesTheEndStepAndCostsNoMoreThanWhatDependsOnIt) {
  const auto clean = CleanRunOf(GetParam());
  const auto commands = CommandsIn(clean.Calls);
  ASSERT_GT(clean.Failing.size(), 20U);
  for (const auto number : FailuresTried(clean.Failing)) {
    const auto& failing = clean.Failing[number - 1];
    SCOPED_TRACE("failing call " + std::to_string(number) + ": " + failing);
    OperationRun run{GetParam()};
    run.Fakes.Calls.FailingCall = number;
    run.Go();
    const auto calls = run.Calls();
    const auto files = run.Files();
    if (clean.Places[number - 1] < clean.Calls.size() - GetParam().EndStepCalls) {
      ExpectEndStep(GetParam(), clean, calls);
    }
    ExpectNothingOfOthersTouched(clean, files);
    if (failing.starts_with("read ")) {
      ExpectNoRecordLost(clean, files, failing);
    }
    if (failing.starts_with("send ")) {
      ExpectNoClaimOfSuccess(clean, calls, failing);
    }
    if (failing.starts_with("view ")) {
      EXPECT_EQ(InLines(CallsBeside(calls, failing)), InLines(CallsBeside(clean.Calls, failing)));
      const bool isSelection = failing.find(" selected ") != std::string::npos;
      const auto stored = StartingWith(calls, "write ").size() + (isSelection ? 1 : 0);
      EXPECT_LE(stored, StartingWith(clean.Calls, "write ").size()) << "what is not shown is not stored";
    } else if (CostsItselfAlone(failing)) {
      EXPECT_EQ(CommandsIn(calls), commands);
      if (failing.starts_with("write ")) {
        ExpectOtherSectionsAsInTheCleanRun(clean, files, PlaceWritten(failing));
      }
      if (!GetParam().ReadsWhatItWrote || !StartsWithOneOf(failing, {"write ", "status="})) {
        EXPECT_EQ(InLines(calls), InLines(clean.Calls));
      }
    }
    if (HasFailure()) {
      return;  // the first one tells enough
    }
  }
}

// The calls without those at [first, last).
Texts Without(Texts calls, std::size_t first, std::size_t last) {
  calls.erase(calls.begin() + static_cast<std::ptrdiff_t>(first),
              calls.begin() + static_cast<std::ptrdiff_t>(last));
  return calls;
}

TEST(OneFailureOfLoading, FailingToCreateTheSettingsServiceCostsOneCall) {
  const auto clean = CleanRunOf(load);
  ASSERT_EQ(clean.Calls[0], "create settings service");
  ASSERT_EQ(clean.Calls[1], "read [Z_Calibration] MountHeight");
  auto expected = clean.Calls;
  expected[1] = "create settings service";
  OperationRun run{load};
  run.Fakes.Calls.FailingCall = 1;
  run.Go();
  EXPECT_EQ(run.Calls(), expected);
}

TEST(OneFailureOfLoading, AListThatCannotBeFilledHasTheAddedEntryAlone) {
  const auto clean = CleanRunOf(load);
  const auto call = std::ranges::find(clean.Calls, "view cboNestType entries Short Nest=1|Long Nest=2");
  ASSERT_NE(call, clean.Calls.end());
  auto expected = clean.Calls;
  const auto place = static_cast<std::size_t>(call - clean.Calls.begin());
  ASSERT_EQ(expected[place + 1], "view cboNestType selected 1");
  ASSERT_EQ(expected[place + 5], "write [NestType] Installed=1");
  expected[place + 5] = "write [NestType] Installed=0";
  expected = Without(expected, place + 1, place + 3);
  OperationRun run{load};
  run.Fakes.Calls.FailsIf = [&](auto event) { return event == *call; };
  run.Go();
  EXPECT_EQ(run.Calls(), expected);
}

TEST(OneFailureOfLoading, ADeviceListThatCannotBeFilledHasNothingSelected) {
  const auto clean = CleanRunOf(load);
  const auto call = std::ranges::find(clean.Calls, "view cboDeviceType entries Small=1|Large=2");
  ASSERT_NE(call, clean.Calls.end());
  const auto place = static_cast<std::size_t>(call - clean.Calls.begin());
  OperationRun run{load};
  run.Fakes.Calls.FailsIf = [&](auto event) { return event == *call; };
  run.Go();
  EXPECT_EQ(run.Calls(), Without(clean.Calls, place + 1, place + 3));
}

// ---- All calls of a kind failing ----

TEST(ManyFailures, LeaveEveryOperationItsEndStep) {
  for (const auto& operation : {query, silentQuery, upload, download, importing, exporting}) {
    const auto clean = CleanRunOf(operation);
    for (const auto* kind : {"read", "write", "split", "get link", "stop?", "stop=", "hold=", "send",
                             "status", "changed", "log", "box", "dialogue", "append", "open", "save"}) {
      OperationRun run{operation};
      run.Fakes.Calls.FailEverythingThatStartsWith(kind);
      run.Go();
      SCOPED_TRACE(testing::Message{} << operation.Name << " failing " << kind);
      ExpectEndStep(operation, clean, run.Calls());
    }
  }
}

TEST(ManyFailures, LeaveEveryOperationItsEndWhenNothingWorksAtAll) {
  for (const auto& operation : {load, query, silentQuery, upload, download, importing, exporting}) {
    OperationRun run{operation};
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
