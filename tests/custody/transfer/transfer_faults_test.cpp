// Every fault of the simulated instrument at every line of an upload, and what custody says of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "custody/support/transfer_room.h"
#include "custody/transfer/wanted_state.h"
#include "support/file_bytes.h"
#include "support/long_tests.h"
#include "text/joined.h"

namespace zolvane {
namespace {

// The script of the sample. Every second value has got decimals, so that rounding shows.
const Settings& WholeScript() {
  static const Settings script = [] {
    Settings settings;
    const auto face = WireFaceOfFile(BytesOf(ZOLVANE_SAMPLES_PATH "/Zolvane.ini"));
    for (const auto& value : face.Lines.InOrder()) {
      const auto line = settings.size();
      settings.emplace_back(value.Name,
                            *value.Text + (line % 2 == 0 ? "." + std::to_string(1 + line % 9) : ""));
    }
    return settings;
  }();
  return script;
}

// Of all its groups, and short enough to be sent some thousand times.
const Settings& ShortScript() {
  static const Settings script = [] {
    Settings settings;
    for (std::size_t line = 0; line < WholeScript().size(); line += 3) {
      settings.push_back(WholeScript()[line]);
    }
    return settings;
  }();
  return script;
}

Settings OtherValues(Settings settings) {
  std::size_t number = 500'000;
  for (auto& [key, text] : settings) {
    text = std::to_string(++number);
  }
  return settings;
}

struct Trial {
  std::shared_ptr<BenchLink> Instrument;
  std::unique_ptr<ProvingLink> Link;

  bool IsDone() const { return Link->Tally().IsSaved; }
};

Trial UploadWith(const Settings& held, const Settings& script, FaultPlan faults) {
  Trial trial{.Instrument = InstrumentWith(held, std::move(faults)), .Link = {}};
  trial.Link = std::make_unique<ProvingLink>(trial.Instrument, ProvingLink::Setup{.Found = ValuesOf(held)},
                                             noInterrupt);
  Upload(*trial.Link, script);
  return trial;
}

// All of them by the instrument's own account, not by the link's.
bool HoldsAll(BenchLink& instrument, const Settings& settings) {
  return std::ranges::all_of(settings, [&](const auto& setting) {
    return SameText(HeldBy(instrument, setting.first), setting.second);
  });
}

std::string At(std::string_view kind, std::size_t line) {
  return std::string{kind} + "@" + std::to_string(line);
}

class EveryFault : public testing::TestWithParam<FaultRow> {};
INSTANTIATE_TEST_SUITE_P(Kinds, EveryFault, testing::ValuesIn(FaultRows().begin(), FaultRows().end()),
                         [](const auto& fault) {
                           std::string name{fault.param.Name};
                           std::erase(name, '-');
                           return name;
                         });

// What was sent is there if SAVE went on, unless there was a restart between the proof and SAVE; and whenever
// it is called done.
void ExpectNoFalseSuccess(const Trial& trial, const Settings& script, bool mayRestart,
                          const std::string& where) {
  if (trial.IsDone() || (trial.Link->Tally().SaveWasSent && !mayRestart)) {
    ASSERT_TRUE(HoldsAll(*trial.Instrument, script)) << where;
  }
}

// A few of the lines are every third that sets and every third that asks, SAVE, and the question behind it.
TEST_P(EveryFault, AtEveryLineNeverGivesAFalseSuccessNorSavesWhatIsUnproven) {
  const auto& script = ShortScript();
  const auto held = OtherValues(script);
  const auto kind = GetParam().Name;
  for (std::size_t line = 1; line <= 2 * script.size() + 2; ++line) {
    if (!TriesAll() && line % 3 != 1 && line <= 2 * script.size()) {
      continue;
    }
    const auto where = At(kind, line);
    ExpectNoFalseSuccess(UploadWith(held, script, {where}), script, kind == "power", where);
  }
}

// An upload of `Script` that was cut short on an instrument with a fault.
struct CutUpload {
  Settings Held;    // before
  Settings Script;  // that was to be sent
  std::shared_ptr<BenchLink> Instrument;
  std::string Where;

  Values Present() const { return WireFaceOfInstrument(*Instrument, NamesOf(ValuesOf(Script))); }

  std::vector<Step> PlanTo(const Values& wanted, Spelling spelling) const {
    const auto before = ValuesOf(Held);
    const auto sent = ValuesOf(Script);
    return PlanFor(WishesFor(wanted, {.Found = &before, .Intended = &sent}), Present(), spelling);
  }

  void ExpectBrought(const std::vector<Step>& plan, Ending ending) const {
    ProvingLink link{Instrument, {.Found = ValuesOf(Held), .Arrived = ArrivedOf(plan)}, noInterrupt};
    ASSERT_TRUE(Bring(link, plan, ending)) << Where << " " << link.Problem();
  }
};

void ExpectAllCanGo(const std::vector<Step>& plan, const std::string& where) {
  for (const auto& step : plan) {
    ASSERT_TRUE(step.Is == Standing::AsWanted || step.Is == Standing::ToDo) << where << " " << step.Of.Name;
  }
}

void ExpectUndoAndRedo(const CutUpload& upload) {
  const auto before = ValuesOf(upload.Held);
  const auto present = upload.Present();
  const auto plan = upload.PlanTo(before, Spelling::GoesBack);
  ASSERT_NO_FATAL_FAILURE(ExpectAllCanGo(plan, upload.Where));
  ASSERT_NO_FATAL_FAILURE(upload.ExpectBrought(plan, Ending::Prove));
  for (const auto& [key, text] : upload.Held) {
    ASSERT_EQ(HeldBy(*upload.Instrument, key), text) << upload.Where << " " << key;
  }
  const auto back = PlanFor(WishesFor(present, {.Left = &before}), before, Spelling::GoesBack);
  ASSERT_NO_FATAL_FAILURE(upload.ExpectBrought(back, Ending::Prove));
  for (const auto& value : present.InOrder()) {
    ASSERT_EQ(HeldBy(*upload.Instrument, value.Name), value.Text) << upload.Where;
  }
}

void ExpectResume(const CutUpload& upload) {
  const auto plan = upload.PlanTo(ValuesOf(upload.Script), Spelling::Stays);
  ASSERT_NO_FATAL_FAILURE(ExpectAllCanGo(plan, upload.Where));
  ASSERT_NO_FATAL_FAILURE(upload.ExpectBrought(plan, Ending::Save));
  for (const auto& [key, text] : upload.Script) {
    const auto holds = HeldBy(*upload.Instrument, key);
    ASSERT_TRUE(SameText(holds, text)) << upload.Where << " " << key << " " << holds;
  }
}

// A cut leaves any number of lines sent. From there undo leads back to what was found, byte for byte, and
// undo of that to what was there; resume leads to what was intended.
TEST_P(EveryFault, FromEveryCutUndoAndResumeReachTheirEnd) {
  const Settings script{ShortScript().begin(), ShortScript().begin() + 8};
  const auto held = OtherValues(script);
  for (std::size_t cut = 0; cut <= script.size(); ++cut) {
    for (std::size_t line = 1; line <= cut; ++line) {
      const auto where = At(GetParam().Name, line) + ", cut after " + std::to_string(cut);
      for (const auto expectation : {ExpectUndoAndRedo, ExpectResume}) {
        const auto instrument = InstrumentWith(held, {At(GetParam().Name, line)});
        Upload(*instrument, script, cut);
        ASSERT_NO_FATAL_FAILURE(expectation({held, script, instrument, where}));
      }
    }
  }
}

TEST(Transfer, WithoutFaultsThereIsNoAlarmHoweverTheInstrumentSpellsNumbers) {
  const auto& script = WholeScript();
  for (const auto& held : {OtherValues(script), script, Settings{}}) {
    const auto trial = UploadWith(held, script, {});
    EXPECT_TRUE(trial.IsDone());
    EXPECT_EQ(trial.Link->Problem(), "");
  }
  FaultPlan respelled;
  for (const auto& [key, text] : script) {
    respelled.Add("respell@" + key);
  }
  const auto held = OtherValues(script);
  const auto instrument = InstrumentWith(held, std::move(respelled));
  ProvingLink link{instrument, {.Found = ValuesOf(held)}, noInterrupt};
  EXPECT_TRUE(Upload(link, script));
  EXPECT_TRUE(link.Tally().IsSaved);
}

TEST(Transfer, FaultsThatComeTogetherGiveNoFalseSuccessEither) {
  const auto& script = WholeScript();
  const auto held = OtherValues(script);
  constexpr unsigned seed = 20'260'314;
  std::mt19937 random{seed};
  for (int round = 0; round < 100; ++round) {
    FaultPlan faults;
    std::string where = Joined("seed ", std::to_string(seed), ":");
    for (auto count = 1 + random() % 3; count > 0; --count) {
      const auto fault =
          At(FaultRows()[random() % FaultRows().size()].Name, 1 + random() % (2 * script.size() + 2));
      where.append(" ").append(fault);
      faults.Add(fault);
    }
    const bool mayRestart = where.find("power") != std::string::npos;
    ExpectNoFalseSuccess(UploadWith(held, script, std::move(faults)), script, mayRestart, where);
  }
}

TEST(Transfer, APlantedFaultIsCalledByItsNameInAtLeastNineteenOfTwentyCases) {
  const std::map<std::string, Cause> planted{
      {"refuse", Cause::Refused},      {"drop", Cause::Kept},       {"limit", Cause::Limited},
      {"neighbour", Cause::Neighbour}, {"cut", Cause::Cut},         {"round", Cause::Rounded},
      {"negate", Cause::Sign},         {"times100", Cause::Factor},
  };
  const auto& script = ShortScript();
  const auto held = OtherValues(script);
  for (const auto& [kind, cause] : planted) {
    std::size_t cases = 0;
    std::size_t named = 0;
    for (std::size_t line = 1; line <= script.size(); ++line) {
      const auto verdict = UploadWith(held, script, {At(kind, line)}).Link->Verdicts().at(line - 1);
      const bool isDamaged = verdict.Is != Proof::Verified;
      cases += isDamaged ? 1 : 0;
      named += isDamaged && verdict.Why == cause ? 1 : 0;
    }
    EXPECT_GT(cases, script.size() / 3) << kind;
    EXPECT_GE(named * 100, cases * 95) << kind << ": " << named << " of " << cases;
    RecordProperty(kind, Joined(std::to_string(named), " of ", std::to_string(cases)));
  }
}

TEST(Transfer, AfterACutResumeSendsAtMostOneLineTwiceAndLeavesWhatSomebodyElseChanged) {
  const auto& script = ShortScript();
  const auto held = OtherValues(script);
  const auto before = ValuesOf(held);
  const auto sent = ValuesOf(script);
  for (std::size_t cut = 1; cut < script.size(); ++cut) {
    const auto instrument = InstrumentWith(held, {At("silent", cut)});
    Upload(*instrument, script);  // the line of the cut arrived, but nobody knows
    const auto& [changedKey, ignored] = script[cut / 2];
    SendLine(*instrument, "SET_CALIBRATION " + changedKey + " 777");
    const auto plan = PlanFor(WishesFor(sent, {.Found = &before, .Intended = &sent}),
                              WireFaceOfInstrument(*instrument, NamesOf(sent)), Spelling::Stays);
    for (std::size_t line = 0; line < plan.size(); ++line) {
      ASSERT_EQ(plan[line].Is, line == cut / 2 ? Standing::Changed
                               : line < cut    ? Standing::AsWanted
                                               : Standing::ToDo)
          << cut << " " << plan[line].Of.Name;
    }
    ProvingLink link{instrument, {.Found = before, .Arrived = ArrivedOf(plan)}, noInterrupt};
    ASSERT_TRUE(Bring(link, plan, Ending::Save));
    ASSERT_EQ(HeldBy(*instrument, changedKey), "777");
  }
}

}  // namespace
}  // namespace zolvane
