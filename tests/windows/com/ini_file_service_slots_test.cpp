// Which slots of the host's settings-file service the add-in calls, and with what.
#include <gtest/gtest.h>

#include <add_in.h>

#include <set>
#include <string>

#include "windows/com/bare_ini_file_service.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

TEST(IniFileServiceSlots, ReadWriteAndSplitAreTheOnlyOnesCalled) {
  const auto& folder = ProgramFolder::OfThisRun();
  const BareIniFileService service;
  {
    const auto addIn = folder.Module().Create();
    ComPtr<IAddInForm> form;
    ASSERT_EQ(addIn->get_Form(form.Put()), S_OK);
    ASSERT_EQ(form->LoadDefaults(), S_OK);
    EXPECT_EQ(service.Created(), 1);
  }
  const auto& heard = service.Log();
  EXPECT_EQ(heard.References, 0);
  EXPECT_GT(heard.Calls.at(7), 20);
  EXPECT_GT(heard.Calls.at(8), 0);
  EXPECT_GT(heard.Calls.at(10), 0);
  EXPECT_TRUE(heard.Keys.contains(L"DeviceType/Installed"));
  EXPECT_EQ(heard.Files, std::set{folder.Configuration().wstring()});
  EXPECT_TRUE(heard.Written.contains(L"DeviceType/Installed=1"));
  EXPECT_TRUE(heard.Split.contains(L"\"Z\u00fcrich, 200\",0,\"X\""));
}

}  // namespace
}  // namespace zolvane
