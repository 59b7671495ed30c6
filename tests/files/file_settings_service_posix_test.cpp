// What the service does with pipes, rights and disks of POSIX systems.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "files/ordinary_user_posix.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using Pieces = std::vector<std::string>;

std::string ValueOf(FileSettingsService& service, const std::string& path, std::string_view key) {
  return service.ReadValue("A", key, path, "none").value();
}

// No file of this process can become larger while it lives: a disk that is full to the byte.
class FullDisk {
 public:
  explicit FullDisk(rlim_t largestFile) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limited{largestFile, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST(FileSettingsService, APipeIsNoFile) {
  const TemporaryFolder folder;
  ::mkfifo(folder.Path("pipe").c_str(), 0600);
  FileSettingsService service;
  EXPECT_EQ(service.ReadValue("A", "x", folder.Path("pipe"), "fallback"), std::nullopt);
  EXPECT_FALSE(service.WriteValue("A", "x", folder.Path("pipe"), "1").Ok());
  EXPECT_FALSE(service.AppendBlankLine(folder.Path("pipe")).Ok());
  EXPECT_EQ(folder.Names(), Pieces{"pipe"});
  EXPECT_EQ(CheckUsable(folder.Path("pipe")), "is not an ordinary file");
}

// A link to one of two files that have long been as they are, and have been read through it.
class LinkedConfiguration : public testing::Test {
 protected:
  LinkedConfiguration() {
    for (const auto* name : {"old.ini", "new.ini"}) {
      const std::string path = folder_.Put(name, std::string{"[A]\nx="} + name + "\n");
      std::filesystem::last_write_time(path,
                                       std::filesystem::file_time_type::clock::now() - std::chrono::hours{1});
    }
    std::filesystem::create_symlink("old.ini", link_);
    const auto start = std::chrono::steady_clock::now();
    const auto file = OpenExchangedFile(link_);
    while ((file->Read().Is != FileContent::State::Present || !file->IsCurrent()) &&
           std::chrono::steady_clock::now() < start + std::chrono::seconds{10}) {
    }
    EXPECT_EQ(ValueOf(service_, link_, "x"), "old.ini");
  }

  void SetAnew() const {
    std::filesystem::create_symlink("new.ini", link_ + "~");
    std::filesystem::rename(link_ + "~", link_);
  }

  TemporaryFolder folder_;
  std::string link_ = folder_.Path("Zolvane.ini");
  FileSettingsService service_;
};

TEST_F(LinkedConfiguration, ALinkThatIsSetAnewIsReadFromItsNewFileSoon) {
  SetAnew();
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{10};
  while (ValueOf(service_, link_, "x") == "old.ini" && std::chrono::steady_clock::now() < end) {
  }
  EXPECT_EQ(ValueOf(service_, link_, "x"), "new.ini");
}

TEST_F(LinkedConfiguration, ALinkThatIsSetAnewIsWrittenInItsNewFile) {
  SetAnew();
  EXPECT_TRUE(service_.WriteValue("A", "y", link_, "1").Ok());
  EXPECT_EQ(folder_.Read("old.ini"), "[A]\nx=old.ini\n");
  EXPECT_EQ(folder_.Read("new.ini"), "[A]\nx=new.ini\ny=1\n");
}

TEST(FileSettingsService, AValueThatIsThereAlreadyDoesNotTouchTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  FileSettingsService service;
  ASSERT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
  struct stat before{};
  ::stat(path.c_str(), &before);
  EXPECT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
  struct stat after{};
  ::stat(path.c_str(), &after);
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_ctim.tv_sec, before.st_ctim.tv_sec);
  EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
}

// Writes a value that makes the file grow on a disk where files may not be larger than `limit`.
bool GrowsOnFullDisk(FileSettingsService& service, const std::string& path, rlim_t limit) {
  const FullDisk disk{limit};
  return service.WriteValue("A", "x", path, std::string(200, 'x')).Ok();
}

TEST(FullDiskHandling, AWriteThatDoesNotFitLeavesTheFileAsItWas) {
  const TemporaryFolder folder;
  const std::string before = "[A]\nx=1\ny=" + std::string(5000, 'y') + "\n";
  for (const rlim_t limit : {0U, 100U, 5010U, 5100U}) {
    const std::string path = folder.Put("Zolvane.ini", before);
    FileSettingsService service;
    EXPECT_FALSE(GrowsOnFullDisk(service, path, limit));
    EXPECT_EQ(BytesOf(path), before);
    EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
    EXPECT_EQ(ValueOf(service, path, "x"), "1");
    EXPECT_TRUE(service.WriteValue("A", "x", path, "22").Ok());
    EXPECT_EQ(BytesOf(path), "[A]\nx=22\ny=" + std::string(5000, 'y') + "\n");
  }
}

TEST(FullDiskHandling, AWriteThatDoesNotFitBesideASecondCopyLeavesTheFileAsItWas) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\ny=" + std::string(5000, 'y') + "\n");
  FileSettingsService service;
  ASSERT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
  ASSERT_TRUE(service.WriteValue("A", "z", path, "3").Ok());
  const std::string before = BytesOf(path);
  EXPECT_FALSE(GrowsOnFullDisk(service, path, 5100));
  EXPECT_EQ(BytesOf(path), before);
  EXPECT_TRUE(service.WriteValue("A", "x", path, "4").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=4\ny=" + std::string(5000, 'y') + "\nz=3\n");
}

TEST(FullDiskHandling, AFileThatCannotBeWrittenIsNotCreated) {
  const TemporaryFolder folder;
  FileSettingsService service;
  EXPECT_FALSE(GrowsOnFullDisk(service, folder.Path("new.ini"), 100));
  EXPECT_TRUE(folder.Names().empty());
  EXPECT_TRUE(service.WriteValue("A", "x", folder.Path("new.ini"), "1").Ok());
  EXPECT_EQ(BytesOf(folder.Path("new.ini")), "[A]\r\nx=1\r\n");
}

TEST(CheckUsable, AFileThatTheUserMayNotUseIsNot) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\n");
  ::chmod(folder.Path("").c_str(), 0777);
  ::chmod(path.c_str(), 0);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return CheckUsable(path) == "cannot be read"; }));
  ::chmod(path.c_str(), 0444);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return CheckUsable(path) == "cannot be written"; }));
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return !CheckUsable(path, FileUse::ReadOnly); }));
  ::chmod(path.c_str(), 0666);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return !CheckUsable(path); }));
  ::chmod(folder.Path("").c_str(), 0555);
  EXPECT_TRUE(
      HoldsForOrdinaryUser([&] { return CheckUsable(path) == "is in a folder that cannot be written"; }));
  ::chmod(folder.Path("").c_str(), 0777);
}

TEST(AccessRights, AFileThatMayNotBeReadIsNeitherReadNorReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ::chmod(folder.Path("").c_str(), 0777);
  for (const mode_t mode : {0U, 0444U}) {
    ::chmod(path.c_str(), mode);
    EXPECT_TRUE(HoldsForOrdinaryUser([&] {
      FileSettingsService service;
      const auto expected = mode == 0 ? std::nullopt : std::optional<std::string>{"1"};
      return service.ReadValue("A", "x", path, "none") == expected &&
             !service.WriteValue("A", "x", path, "2").Ok();
    }));
    EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
  }
  ::chmod(path.c_str(), 0600);
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
}

// Somebody who belongs to none of the file's groups, and may write it all the same.
TEST(AccessRights, AGroupThatCannotBeKeptIsNotReplacedByOneThatGetsItsRights) {
  const TemporaryFolder folder;
  ::chmod(folder.Path("").c_str(), 0777);
  for (const auto& [mode, isWritten] : {std::pair{0676U, false}, std::pair{0646U, true}}) {
    const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
    ::chmod(path.c_str(), mode);
    EXPECT_TRUE(HoldsForOrdinaryUser([&, expected = isWritten] {
      FileSettingsService service;
      return !CheckUsable(path) == expected && service.WriteValue("A", "x", path, "2").Ok() == expected;
    })) << mode;
    EXPECT_EQ(BytesOf(path), isWritten ? "[A]\nx=2\n" : "[A]\nx=1\n");
    EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
  }
}

TEST(AccessRights, AFileOfSomebodyElseInAFolderThatKeepsItIsToldAboutBefore) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ::chmod(path.c_str(), 0666);
  ::chmod(folder.Path("").c_str(), 01777);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    FileSettingsService service;
    return CheckUsable(path) == "belongs to somebody else, in a folder where only the owner may replace it" &&
           !CheckUsable(path, FileUse::ReadOnly) && !service.WriteValue("A", "x", path, "2").Ok();
  }));
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

TEST(AccessRights, AnOrdinaryUserWritesAFileOfSomebodyElseThatIsOpenToAll) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ::chmod(folder.Path("").c_str(), 0777);
  ::chmod(path.c_str(), 0666);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    FileSettingsService service;
    return service.WriteValue("A", "x", path, "2").Ok() && service.WriteValue("A", "x", path, "3").Ok() &&
           service.WriteValue("A", "x", path, "4").Ok();
  }));
  EXPECT_EQ(BytesOf(path), "[A]\nx=4\n");
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

}  // namespace
}  // namespace zolvane
