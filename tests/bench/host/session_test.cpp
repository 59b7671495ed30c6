#include "bench/host/session.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "config/text.h"
#include "instrument/links/no_link.h"
#include "support/temporary_folder.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// A session of the bench without an instrument.
class BenchSession : public testing::Test {
 protected:
  int Play(const std::vector<std::vector<std::string>>& commands) {
    std::vector<Action> actions;
    for (const auto& words : commands) {
      actions.push_back(MakeAction(words, std::nullopt));
    }
    BenchHost host{{.Folder = Folder.Path(), .Answers = {.Listed = {}, .AffirmsRest = true}},
                   std::make_shared<NoLink>(interrupt_),
                   nullptr,
                   console_};
    return Session{host, console_, nullptr}.Play(actions, OnFailure::GoOn, Events);
  }

  TemporaryFolder Folder;
  std::ostringstream Notes;
  std::vector<ActionResult> Results;
  Session::Events Events{.IsInterrupted = [] { return false; },
                         .Ended = [this](const ActionResult& result) { Results.push_back(result); },
                         .NotBegun = [](auto) { ADD_FAILURE() << "all commands are begun"; }};

 private:
  InterruptFlag interrupt_;
  std::ostringstream output_;
  Console console_{output_, Notes, {}};
};

TEST_F(BenchSession, AnInterruptBehindTheLastCommandIsNoSuccess) {
  Events.IsInterrupted = [this] { return !Results.empty(); };
  EXPECT_EQ(Play({{"page"}}), exit_status::notDone);
  EXPECT_EQ(Notes.str(), "zolvane-bench: interrupted, when all commands had been done\n");
}

// The query ends by enabling what the records in force permit. Without an instrument it loads none of them.
TEST_F(BenchSession, AScriptLeavesTheRecordsInForceAsTheyAre) {
  const std::string permitted = "[DeviceType]\nInstalled=1\nItem1=\"A\",0,\"A1\"\nUploadCalibrationData=1\n";
  Folder.Put("Zolvane.ini", permitted);
  const auto note = Events.Ended;
  Events.Ended = [&](const ActionResult& result) {
    note(result);
    Folder.Put("Zolvane.ini", Replaced(permitted, "Data=1", "Data=0"));
  };
  Play({{"page"}, {"script"}, {"query"}, {"page"}});
  ASSERT_EQ(Results.size(), 4U);
  EXPECT_TRUE(Results[3].Page->Page.ButtonsEnabled[uploadButton]);
}

}  // namespace
}  // namespace zolvane
