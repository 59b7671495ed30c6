// Hosts that call back into the page, or release it, at each of their calls in turn.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "bench/windows/com/offered_host.h"
#include "bench/windows/play/page_driver.h"
#include "windows/host/faulty_run.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

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

// A session whose host calls back into the page, or releases it, at one of its calls.
class ReenteringSession {
 public:
  ReenteringSession(const PlayedOperation& operation, std::size_t call, Reentry reentry)
      : run_{operation}, reentry_{reentry}, failure_{.Call = call} {}

  void Play() {
    run_.Faults.ActInsteadOfFailing([this] { Reenter(); });
    run_.BeginSession(failure_);
    addIn_ = ProgramFolder::OfThisRun().Module().Create();
    addIn_->get_Form(form_.Put());
    frame_ = FrameOf(form_);
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
        Use([](IAddInForm& form) { return form.putref_ObjectParent(nullptr); });
        return;
      case Reentry::Releases:
        addIn_.Reset();
        form_.Reset();
        return;
      case Reentry::LoadsAgain:
        Use([](IAddInForm& form) { return form.LoadDefaults(); });
        return;
      case Reentry::TakesWindowBack:
        Use([](IAddInForm& form) { return form.putref_FormParent(nullptr); });
        return;
      case Reentry::GivesItsObjectsAgain:
        Give();
        return;
      case Reentry::Sends:
        PageDriver{frame_}.Press(queryButton);
        return;
    }
  }

  FaultyRun run_;
  UnshownDialogues dialogues_{run_.Asked};
  DialogueHooks hooks_{ProgramFolder::OfThisRun().Module().Module(), &run_.Log, dialogues_};
  FailingSettings settings_{[this] { return run_.Process->CreateIniFileService(); }, run_.Faults};
  Reentry reentry_;
  FailingCall failure_;
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

void ExpectNothingLeftByReentering(const PlayedOperation& operation) {
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

TEST(ReenteringCalls, ASessionWithoutOperationsLeavesNothingBehind) {
  ExpectNothingLeftByReentering({.Button = std::nullopt});
}

TEST(ReenteringCalls, TheHostsOwnDialogueLeavesNothingBehind) {
  ExpectNothingLeftByReentering({.Button = queryButton, .Link = "none", .OffersDialog = true});
}

TEST(ReenteringCalls, AnUploadLeavesNothingBehind) {
  ExpectNothingLeftByReentering({.Button = uploadButton});
}

}  // namespace
}  // namespace zolvane
