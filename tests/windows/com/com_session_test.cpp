// Whole sessions through COM, against the same sessions on the bench: the host must get the same calls in the
// same order, and files and page must end up the same.
#include <gtest/gtest.h>

#include "bench/windows/com/offered_settings.h"
#include "instrument/links/running_instrument.h"
#include "support/generated_sessions.h"
#include "support/long_tests.h"
#include "windows/support/played_session.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

void ExpectSameCalls(const std::vector<std::string>& module, const std::vector<std::string>& bench) {
  for (std::size_t call = 0; call < std::min(module.size(), bench.size()); ++call) {
    ASSERT_EQ(module[call], bench[call]) << "call " << call;
  }
  EXPECT_EQ(module.size(), bench.size());
}

PlayedSession ExpectSameSession(const SessionPlan& plan) {
  const auto bench = PlayOnBench(plan);
  auto module = PlayOnModule(plan);
  ExpectSameCalls(module.Calls, bench.Calls);
  EXPECT_EQ(module.Configuration, bench.Configuration);
  EXPECT_EQ(module.Backup, bench.Backup);
  EXPECT_EQ(module.Page, bench.Page);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(OfferedServicesAlive(), 0);
  EXPECT_EQ(ProgramFolder::OfThisRun().Module().CanUnloadNow(), S_OK);
  return module;
}

bool Contains(const std::vector<std::string>& calls, const std::string& part) {
  return std::ranges::any_of(calls, [&](const auto& call) { return call.find(part) != std::string::npos; });
}

std::string Old() {
  return ProgramFolder::OfThisRun().FileText("old.bak");
}
std::string New() {
  return ProgramFolder::OfThisRun().FileText("new.bak");
}

TEST(ComSession, TheMainJobOfADayIsTheSameForTheHost) {
  const auto played =
      ExpectSameSession({.Configuration = SampleFileText(),
                         .Commands = {"query", "upload", "download", "export " + New(), "import " + Old()},
                         .AffirmsRest = true});
  EXPECT_TRUE(Contains(played.Calls, R"("event":"send","command":"SET_CALIBRATION SAVE","ok":true)"));
  EXPECT_TRUE(Contains(played.Calls, R"("event":"file_dialog","kind":"save")"));
  EXPECT_FALSE(played.Backup.empty());
}

TEST(ComSession, AnInstrumentThatDoesNotAnswerShowsTheErrorBox) {
  const auto played = ExpectSameSession({.Configuration = SampleFileText(),
                                         .Commands = {"query", "upload"},
                                         .Link = "none",
                                         .AffirmsRest = true});
  EXPECT_TRUE(Contains(played.Calls, R"("event":"message_box","title":"Communication Error","style":65584)"));
}

TEST(ComSession, AHostWithADialogueOfItsOwnIsAskedToShowTheError) {
  const auto played = ExpectSameSession(
      {.Configuration = SampleFileText(), .Commands = {"query"}, .Link = "none", .OffersDialog = true});
  EXPECT_TRUE(Contains(played.Calls, R"("event":"host_dialog","title":"Communication Error")"));
}

TEST(ComSession, ACancelledUploadLeavesTheControlsDisabled) {
  const auto played = ExpectSameSession({.Configuration = SampleFileText(),
                                         .Commands = {"upload", "press 2", "tick chkRFID 0"},
                                         .Answers = {"cancel"}});
  EXPECT_FALSE(played.Page["checks"]["chkRFID"]["enabled"].get<bool>());
}

TEST(ComSession, ACancelledFileDialogueChangesNothing) {
  ExpectSameSession(
      {.Configuration = SampleFileText(), .Commands = {"export", "import"}, .AffirmsRest = true});
}

TEST(ComSession, ThePanelIsFoundInBothShapesOfAStatusBar) {
  for (const auto shape : {PanelsShape::IndexedProperty, PanelsShape::DefaultMember}) {
    const auto played =
        ExpectSameSession({.Configuration = SampleFileText(), .Commands = {"query"}, .Panels = shape});
    EXPECT_TRUE(Contains(played.Calls, R"({"event":"status","text":"Getting Zolvane Type"})"));
  }
}

TEST(ComSession, AnEmptyConfigurationGivesThePageOfTheBench) {
  ExpectSameSession({.Configuration = "",
                     .Commands = {"tick chkRFID 2", "query", "upload", "download"},
                     .AffirmsRest = true});
}

TEST(ComSession, TextsOutsideOfTheCodePageArriveUnchanged) {
  auto configuration = SampleFileText();
  configuration += "\r\n[DeviceType]\r\nItem90=\"Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\xA7\xAA\",0,\"X\"\r\n";
  ExpectSameSession({.Configuration = configuration, .Commands = {"select cboDeviceType #0"}});
}

TEST(ComSession, AnInstrumentOnTheNetworkIsTheSameForTheHost) {
  const RunningInstrument instrument;
  const auto played = ExpectSameSession({.Configuration = SmallFileText(),
                                         .Commands = {"query", "upload", "download"},
                                         .Link = instrument.Link(),
                                         .AffirmsRest = true});
  EXPECT_TRUE(Contains(played.Calls, R"("event":"send","command":"SET_CALIBRATION SAVE","ok":true)"));
  EXPECT_TRUE(Contains(played.Calls, R"("event":"send","command":"GET_CALIBRATION )"));
  EXPECT_FALSE(Contains(played.Calls, R"("event":"message_box","title":"Communication Error")"));
}

// ---- Generated sessions

class Generator {
 public:
  explicit Generator(unsigned seed) : random_{seed} {}

  SessionPlan Plan() {
    const auto whole = random_.Configuration(SampleFileText(), SmallFileText());
    SessionPlan plan{
        .Configuration = random_.Damaged(whole), .Commands = {}, .Source = random_.Damaged(whole)};
    const int count = random_.Below(7) + 3;
    for (int command = 0; command < count; ++command) {
      plan.Commands.push_back(random_.Command(Old(), New()));
    }
    plan.Link = Link();
    for (int answer = random_.Below(4); answer > 0; --answer) {
      plan.Answers.push_back(random_.Pick({"ok", "cancel", "yes", "no"}));
    }
    plan.AffirmsRest = random_.Below(3) != 0;
    plan.OffersDialog = random_.Below(4) == 0;
    plan.ShowsDialogues = random_.Below(5) == 0;
    plan.Panels = random_.Below(2) == 0 ? PanelsShape::IndexedProperty : PanelsShape::DefaultMember;
    return plan;
  }

 private:
  std::string Link() {
    if (random_.Below(3) != 0) {
      return random_.Pick({"sim", "sim", "none"});
    }
    const std::string file = ProgramFolder::OfThisRun().FileText("script.json");
    nlohmann::json script{
        {"default", random_.Below(4) == 0 ? nlohmann::json{}
                                          : nlohmann::json("OK=" + random_.Pick({"1", "x", "-2.5", ""}))},
        {"replies",
         {{"STATUS_STAGE", random_.Pick({"ZV400", "ZV200", "\r\n", "?"})},
          {"STATUS_MECH", {random_.Pick({"SD", "96"}), nullptr}},
          {"STATUS PUMPS", random_.Pick({"PUMPS CLOSED", "PUMPS OPEN", "ERROR"})}}}};
    if (random_.Below(2) == 0) {
      script["stop_after"] = {random_.Pick({"STATUS_STAGE", "RFID ON", "SET_CALIBRATION SAVE"})};
    }
    Store(file, script.dump());
    return "script:" + file;
  }

  SessionGenerator random_;
};

class GeneratedSession : public testing::TestWithParam<unsigned> {};

TEST_P(GeneratedSession, TheHostHearsWhatTheBenchHears) {
  const auto plan = Generator{GetParam()}.Plan();
  std::string commands;
  for (const auto& command : plan.Commands) {
    commands += command + "; ";
  }
  SCOPED_TRACE("link " + plan.Link + ": " + commands);
  ExpectSameSession(plan);
}

INSTANTIATE_TEST_SUITE_P(Seed, GeneratedSession, Seeds(35, 105));

}  // namespace
}  // namespace zolvane
