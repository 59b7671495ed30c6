#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "custody/disk/disk.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

TEST(SystemDisk, NeverWritesThroughALink) {
  const TemporaryFolder folder;
  SystemDisk disk;
  folder.Put("theirs", "kept");
  std::filesystem::create_symlink(folder.Path("theirs"), folder.Path("link"));
  EXPECT_FALSE(disk.Append(folder.Path("link"), "x").Ok());
  EXPECT_FALSE(disk.Create(folder.Path("link"), "x").Ok());
  EXPECT_EQ(folder.Read("theirs"), "kept");
}

TEST(SystemDisk, NeverCreatesThroughALinkThatLeadsNowhere) {
  const TemporaryFolder folder;
  SystemDisk disk;
  std::filesystem::create_symlink(folder.Path("elsewhere"), folder.Path("link"));
  EXPECT_FALSE(disk.Create(folder.Path("link"), "x").Ok());
  EXPECT_FALSE(folder.Has("elsewhere"));
}

TEST(SystemDisk, RemovesALinkAndNotWhatItLeadsTo) {
  const TemporaryFolder folder;
  SystemDisk disk;
  folder.Put("theirs", "kept");
  std::filesystem::create_symlink(folder.Path("theirs"), folder.Path("link"));
  EXPECT_TRUE(disk.Remove(folder.Path("link")).Ok());
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"theirs"}));
}

TEST(SystemDisk, TakesALinkToAFolderForNone) {
  const TemporaryFolder folder;
  SystemDisk disk;
  std::filesystem::create_directory(folder.Path("theirs"));
  std::filesystem::create_directory_symlink(folder.Path("theirs"), folder.Path("link"));
  EXPECT_FALSE(disk.MakeFolder(folder.Path("link")).Ok());
}

TEST(SystemDisk, AppendsToOrdinaryFilesOnly) {
  const TemporaryFolder folder;
  SystemDisk disk;
  const auto pipe = folder.Path("pipe");
  ASSERT_EQ(std::system(("mkfifo " + pipe).c_str()), 0);
  EXPECT_FALSE(disk.Append(pipe, "x").Ok());
  EXPECT_FALSE(disk.Append("/dev/null", "x").Ok());
  EXPECT_EQ(disk.FailureReason(), "\"/dev/null\" is not an ordinary file");
}

TEST(SystemDisk, SaysWhoHoldsTheLock) {
  const TemporaryFolder folder;
  SystemDisk disk;
  std::string holder;
  const auto lock = disk.Lock(folder.Path("f"), holder);
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(disk.Lock(folder.Path("f"), holder), nullptr);
  EXPECT_EQ(holder, "process " + std::to_string(::getpid()));
}

TEST(SystemDisk, LeavesNoMarkOfALockBehind) {
  const TemporaryFolder folder;
  SystemDisk disk;
  std::string holder;
  disk.Lock(folder.Path("f"), holder).reset();
  EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

TEST(SystemDisk, SaysWhyItCannotLock) {
  const TemporaryFolder folder;
  SystemDisk disk;
  std::string holder = "somebody";
  EXPECT_EQ(disk.Lock(folder.Path("no folder/f"), holder), nullptr);
  EXPECT_EQ(holder, "");
  EXPECT_EQ(disk.FailureReason(),
            "\"" + folder.Path("no folder/.f.in-use") + "\" cannot be made: No such file or directory");
}

}  // namespace
}  // namespace zolvane
