// The add-in's own operations through the link that proves.
#include <gtest/gtest.h>

#include <sstream>

#include "custody/disk/disk.h"
#include "custody/support/transfer_room.h"
#include "custody/values/play.h"
#include "files/paths.h"
#include "page/page_controls.h"
#include "support/file_bytes.h"

namespace zolvane {
namespace {

struct TracedSession {
  std::string Trace;
  int ExitStatus = 0;
};

TracedSession PlaySample(int button, const std::shared_ptr<BenchLink>& link) {
  const std::string folder = "/sample";
  MemoryDisk disk;
  disk.Put(ConfigFileIn(folder), BytesOf(ZOLVANE_SAMPLES_PATH "/Zolvane.ini"));
  std::ostringstream lines;
  TraceLog trace{lines, true};
  auto ends = EndsOn(disk, folder);
  ends.Link = link;
  ends.Trace = &trace;
  const auto played = Play(ends, PressOf(button));
  return {.Trace = lines.str(), .ExitStatus = played.ExitStatus};
}

std::shared_ptr<ProvingLink> Proving(const std::shared_ptr<BenchLink>& link) {
  return std::make_shared<ProvingLink>(link, ProvingLink::Setup{}, noInterrupt);
}

TEST(ProvingSession, WithoutFaultsTheAddInsTraceIsTheSameWithAndWithoutProof) {
  for (const int button : {uploadButton, downloadButton, queryButton}) {
    const auto bare = PlaySample(button, InstrumentWith({{"STAGE1_X", "7"}, {"Delta_Z", "2.5"}}));
    const auto proven = PlaySample(button, Proving(InstrumentWith({{"STAGE1_X", "7"}, {"Delta_Z", "2.5"}})));
    EXPECT_EQ(proven.Trace, bare.Trace) << button;
    EXPECT_EQ(proven.ExitStatus, bare.ExitStatus) << button;
    EXPECT_NE(bare.Trace.find("\"send\""), std::string::npos) << button;
  }
}

TEST(ProvingSession, AnUploadThatDidNotArriveFailsAtItsSave) {
  const auto bare = PlaySample(uploadButton, InstrumentWith({}, {"drop@STAGE6_Y"}));
  EXPECT_EQ(bare.ExitStatus, 0) << "the add-in alone never looks back";
  const auto link = Proving(InstrumentWith({}, {"drop@STAGE6_Y"}));
  const auto proven = PlaySample(uploadButton, link);
  EXPECT_EQ(proven.ExitStatus, 1);
  EXPECT_NE(proven.Trace.find(R"("command":"SET_CALIBRATION SAVE","ok":false)"), std::string::npos);
  EXPECT_FALSE(link->Tally().SaveWasSent);
}

}  // namespace
}  // namespace zolvane
