// A backup of the configuration in the folder is imported without any objection that the configuration itself would not
// raise.
#include <gtest/gtest.h>

#include <string>

#include "custody/findings/findings.h"
#include "custody/support/custody_room.h"
#include "support/generated_sessions.h"
#include "support/golden.h"
#include "support/long_tests.h"
#include "zolvane/work/objections.h"

namespace zolvane {
namespace {

class OwnBackup : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seed, OwnBackup, Seeds(10, 1000));

TEST_P(OwnBackup, RaisesNoObjection) {
  SessionGenerator random{GetParam()};
  const auto configuration = random.Taught(random.Configuration(SampleConfiguration(), SmallConfiguration()));
  CustodyRoom room{Replaced(configuration, "ExportCalibrationData=0", "ExportCalibrationData=1")};
  const auto backup = CustodyRoom::PathTo("own.bak");
  const auto exported = room.Run({"export", backup});
  if (exported.Status() == exit_status::unusable) {
    EXPECT_NE(exported.Printed.find("the page does not offer it"), std::string::npos) << exported.Printed;
    return;
  }
  ASSERT_EQ(exported.Status(), 0) << exported.Printed;
  const auto ran = room.Run({"--yes", "--rehearse", "import", backup});
  for (const auto& objection : ran.Result.Objections) {
    EXPECT_EQ(objection.Code, "findings") << ran.Printed;
    EXPECT_TRUE(HasError(CheckConfiguration(room.Configuration(), "Zolvane.ini")))
        << ObjectionText(objection);
  }
}

}  // namespace
}  // namespace zolvane
