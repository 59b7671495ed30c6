// A host whose settings-file service cannot be created, or fails.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/windows/com/offered_settings.h"
#include "shell/windows/page/page_layout.h"
#include "windows/host/noted_session.h"
#include "windows/host/small_host.h"

namespace zolvane {
namespace {

using small_host::OneRecordEach;

class RefusingSettings final : public IniFileService {
 public:
  explicit RefusingSettings(int& calls) : calls_{calls} {}

  std::optional<std::string> ReadValue(std::string_view, std::string_view, std::string_view,
                                       std::string_view) override {
    return ++calls_, std::nullopt;
  }
  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return ++calls_, Status::Failure(E_ACCESSDENIED);
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view, std::string_view) override {
    return ++calls_, std::nullopt;
  }

 private:
  int& calls_;
};

TEST(SettingsService, AServiceThatRefusesEveryCallIsCreatedOnceAndLeavesAnEmptyPage) {
  const auto& folder = ProgramFolder::OfThisRun();
  int created = 0;
  int calls = 0;
  const OfferedSettings settings{[&] { return ++created, std::make_shared<RefusingSettings>(calls); }};
  const auto addIn = folder.Module().Create();
  const auto form = FormOf(addIn);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  const HWND devices = GetDlgItem(FrameOf(form), IdOf(ListControl::DeviceType));
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 0);
  EXPECT_EQ(created, 1);
  EXPECT_GT(calls, 100);
}

TEST(SettingsService, AServiceThatCannotBeCreatedIsAskedForAgain) {
  const auto& folder = ProgramFolder::OfThisRun();
  bool mayCreate = false;
  const OfferedSettings settings{[&] { return mayCreate ? std::make_shared<OneRecordEach>() : nullptr; }};
  const auto addIn = folder.Module().Create();
  const auto form = FormOf(addIn);
  const HWND devices = GetDlgItem(FrameOf(form), IdOf(ListControl::DeviceType));
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 0);
  mayCreate = true;
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 1);
}

// ---- In the middle of a session ----

using FailingSettingsService = NotedSession;

constexpr std::array operations{uploadButton, downloadButton, queryButton, importButton, exportButton};

TEST_F(FailingSettingsService, AServiceThatFailsFromTheStartGivesAnEmptyPage) {
  SettingsAreBroken = true;
  Open();
  Press(queryButton);
  const auto page = Page().Shown();
  for (const auto& list : page.Lists) {
    EXPECT_LE(list.Entries.size(), 1U);  // "Not installed" at most
  }
  EXPECT_TRUE(IsEnabled(queryButton));
  for (const int button : {uploadButton, downloadButton, importButton, exportButton}) {
    EXPECT_FALSE(IsEnabled(button));
  }
  EXPECT_EQ(ContentOf(ProgramFolder::OfThisRun().Configuration()), SampleFileText());
}

TEST_F(FailingSettingsService, AServiceThatFailsDuringAnOperationLeavesTheConfigurationAlone) {
  Open();
  const auto before = ContentOf(ProgramFolder::OfThisRun().Configuration());
  for (const int button : operations) {
    SettingsAreBroken = false;
    EXPECT_EQ(Form->LoadDefaults(), S_OK);
    ASSERT_TRUE(IsEnabled(button));
    SettingsAreBroken = true;
    Press(button);
    EXPECT_TRUE(IsEnabled(queryButton)) << button;
    EXPECT_EQ(Window->Panel->Shown, "") << button;
    SettingsAreBroken = false;
    const std::string blankLine = button == importButton ? "\r\n" : "";  // not by way of the service
    const auto after = ContentOf(ProgramFolder::OfThisRun().Configuration());
    EXPECT_EQ(after, before + blankLine) << button;
    Store(ProgramFolder::OfThisRun().Configuration(), before);
  }
}

}  // namespace
}  // namespace zolvane
