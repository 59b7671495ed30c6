#include "config/configuration.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "config/config_fixture.h"

namespace zolvane {
namespace {

std::string InFolder(const std::string& folder) {
  return folder + static_cast<char>(std::filesystem::path::preferred_separator) + "Zolvane.ini";
}

TEST(ConfigFilePath, IsTheSettingsFileInTheProgramFolder) {
  ConfigFixture fixture;
  fixture.Process.Folder = "/opt/host";
  EXPECT_EQ(fixture.Config.Settings.ConfigFilePath(), InFolder("/opt/host"));
}

TEST(ConfigFilePath, IsComputedAfreshAtEachUse) {
  ConfigFixture fixture;
  fixture.Process.Folder = "/first";
  EXPECT_EQ(fixture.Config.Settings.ConfigFilePath(), InFolder("/first"));
  fixture.Process.Folder = "/second";
  EXPECT_EQ(fixture.Config.Settings.ConfigFilePath(), InFolder("/second"));
  EXPECT_EQ(fixture.Config.Settings.Resolved(""), InFolder("/second"));
}

TEST(ConfigFilePath, DoesNotDoubleTheSeparatorOfARootFolder) {
  ConfigFixture fixture;
  fixture.Process.Folder = std::string(1, static_cast<char>(std::filesystem::path::preferred_separator));
  EXPECT_EQ(fixture.Config.Settings.ConfigFilePath(), InFolder(""));
}

TEST(SettingsFiles, TakeAnEmptyFileForTheConfigurationFileAndAnyOtherAsItStands) {
  ConfigFixture fixture;
  EXPECT_EQ(fixture.Config.Settings.Resolved(""), fixture.Config.Settings.ConfigFilePath());
  EXPECT_EQ(fixture.Config.Settings.Resolved("backup.bak"), "backup.bak");
  EXPECT_EQ(fixture.Config.Settings.Resolved(" "), " ");
}

TEST(SettingsFiles, CreateOneServiceOnFirstUseAndKeepIt) {
  ConfigFixture fixture{"[A]\nk=1\n"};
  const auto& settings = fixture.Config.Settings;
  EXPECT_EQ(fixture.Calls.Events, Texts{});
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile()), "1");
  EXPECT_TRUE(settings.WriteValue("A", "k", fixture.ConfigFile(), "2").Ok());
  EXPECT_EQ(settings.SplitText(",", "a,b"), (Texts{"a", "b"}));
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile()), "2");
  EXPECT_EQ(fixture.Calls.Events, (Texts{"create settings service", "read [A] k", "write [A] k=2",
                                         "split \",\" of \"a,b\"", "read [A] k"}));
}

TEST(SettingsFiles, AskAgainAfterTheServiceCouldNotBeCreated) {
  ConfigFixture fixture{"[A]\nk=1\n"};
  const auto& settings = fixture.Config.Settings;
  fixture.Calls.FailEverythingThatStartsWith("create");
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile()), std::nullopt);
  EXPECT_FALSE(settings.WriteValue("A", "k", fixture.ConfigFile(), "2").Ok());
  EXPECT_EQ(settings.SplitText(",", "a,b"), Texts{});
  EXPECT_EQ(fixture.Settings.Text(), "[A]\nk=1\n");
  EXPECT_EQ(fixture.Calls.Count("create settings service"), 3U);

  fixture.Calls.FailsIf = nullptr;
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile()), "1");
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile()), "1");
  EXPECT_EQ(fixture.Calls.Count("create settings service"), 4U);
}

TEST(SettingsFiles, PassTheDefaultOfAMissingKeyOn) {
  ConfigFixture fixture{"[A]\nempty=\n"};
  const auto& settings = fixture.Config.Settings;
  EXPECT_EQ(settings.ReadValue("A", "none", fixture.ConfigFile(), "12.5"), "12.5");
  EXPECT_EQ(settings.ReadValue("B", "none", fixture.ConfigFile(), "12.5"), "12.5");
  EXPECT_EQ(settings.ReadValue("A", "none", "/none.ini", "12.5"), "12.5");
  EXPECT_EQ(settings.ReadValue("A", "empty", fixture.ConfigFile(), "12.5"), "");
  EXPECT_EQ(settings.ReadValue("A", "none", fixture.ConfigFile()), "");
}

TEST(SettingsFiles, HandTheServicesFailureOn) {
  ConfigFixture fixture{"[A]\nk=1\n"};
  const auto& settings = fixture.Config.Settings;
  fixture.Calls.FailsIf = [](std::string_view event) { return !event.starts_with("create"); };
  EXPECT_EQ(settings.ReadValue("A", "k", fixture.ConfigFile(), "7"), std::nullopt);
  EXPECT_EQ(settings.WriteValue("A", "k", fixture.ConfigFile(), "2").Code(), Journal::failureCode);
  EXPECT_EQ(settings.SplitText(",", "a,b"), Texts{});
  EXPECT_EQ(fixture.Settings.Text(), "[A]\nk=1\n");
}

TEST(CurrentRecords, AreEmptyBeforeTheFirstLoad) {
  ConfigFixture fixture;
  const Configuration configuration{fixture.Process};
  EXPECT_EQ(configuration.Current.Device.Name, "");
  EXPECT_FALSE(configuration.Current.Device.UploadCalibrationData);
  EXPECT_EQ(configuration.Current.Heights.DeltaZTolerance, 0.0);
  EXPECT_FALSE(configuration.Current.Axes.Z.Defined);
  EXPECT_EQ(configuration.Current.Axes.Z.UnitsPerStep, 0.0F);
  EXPECT_EQ(configuration.Current.Head.ID, "");
  EXPECT_EQ(configuration.Current.Nest.Nests[2].Z, 0);
}

}  // namespace
}  // namespace zolvane
