#include "bench/host/watch.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "instrument/links/no_link.h"

namespace zolvane {
namespace {

// What a watch keeps of one command that its link does not send.
ActionTally TallyOfAnUnsentCommand(const InterruptFlag& interrupt) {
  Watch watch{{.Complain = [](std::string_view) {}}};
  std::string command = "STATUS_STAGE";
  std::string reply;
  EXPECT_EQ(watch.Watched(std::make_shared<NoLink>(interrupt))->SendCommand(command, reply, 0), false);
  return watch.Tally();
}

TEST(Watch, ACommandThatAnInterruptKeepsBackCountsAsStopped) {
  InterruptFlag interrupt;
  interrupt.Raise();
  const auto tally = TallyOfAnUnsentCommand(interrupt);
  EXPECT_TRUE(tally.WasStopped);
  EXPECT_EQ(tally.Commands.Undelivered, 0U);
}

TEST(Watch, ACommandThatTheLinkCannotSendCountsAsUndelivered) {
  const auto tally = TallyOfAnUnsentCommand(InterruptFlag{});
  EXPECT_FALSE(tally.WasStopped);
  EXPECT_EQ(tally.Commands.Undelivered, 1U);
}

}  // namespace
}  // namespace zolvane
