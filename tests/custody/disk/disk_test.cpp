// What the disk of the system and the one in memory have in common.
#include "custody/disk/disk.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "files/file_settings_service.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using State = DiskContent::State;

template <class AnyDisk>
class Disks : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(Parent.MakeFolder(Path("")).Ok() && Disk.MakeFolder(Path("")).Ok()); }

  std::string Path(const std::string& name) const {
    return name.empty() ? folder_.Path() : folder_.Path(name);
  }
  std::string BytesAt(const std::string& name) { return Disk.Read(Path(name)).Bytes; }

  SystemDisk Parent;
  AnyDisk Disk;

 private:
  TemporaryFolder folder_;
};

using BothDisks = testing::Types<SystemDisk, MemoryDisk>;
TYPED_TEST_SUITE(Disks, BothDisks);

TYPED_TEST(Disks, TellAMissingFileFromOneThatCannotBeRead) {
  EXPECT_EQ(this->Disk.Read(this->Path("nothing")).Is, State::Missing);
  const auto folder = this->Disk.Read(this->Path(""));
  EXPECT_EQ(folder.Is, State::Unreadable);
  EXPECT_EQ(folder.Reason, "is a folder");
}

TYPED_TEST(Disks, CreateANewFileOnly) {
  const std::string bytes{"a\0b\r\n", 5};
  EXPECT_TRUE(this->Disk.Create(this->Path("a"), bytes).Ok());
  EXPECT_EQ(this->BytesAt("a"), bytes);
  EXPECT_FALSE(this->Disk.Create(this->Path("a"), "other").Ok());
  EXPECT_EQ(this->BytesAt("a"), bytes);
  EXPECT_NE(this->Disk.FailureReason().find(this->Path("a")), std::string::npos);
}

TYPED_TEST(Disks, AppendToAFileThatIsThereOnly) {
  EXPECT_FALSE(this->Disk.Append(this->Path("a"), "x").Ok());
  EXPECT_EQ(this->Disk.Read(this->Path("a")).Is, State::Missing);
  ASSERT_TRUE(this->Disk.Create(this->Path("a"), "one").Ok());
  EXPECT_TRUE(this->Disk.Append(this->Path("a"), ", two").Ok());
  EXPECT_EQ(this->BytesAt("a"), "one, two");
}

TYPED_TEST(Disks, SyncWhatIsThere) {
  ASSERT_TRUE(this->Disk.Create(this->Path("a"), "one").Ok());
  EXPECT_TRUE(this->Disk.SyncFile(this->Path("a")).Ok());
  EXPECT_TRUE(this->Disk.SyncFolder(this->Path("")).Ok());
  EXPECT_FALSE(this->Disk.SyncFile(this->Path("b")).Ok());
}

TYPED_TEST(Disks, RenameOverAFile) {
  ASSERT_TRUE(this->Disk.Create(this->Path("a"), "new").Ok());
  ASSERT_TRUE(this->Disk.Create(this->Path("b"), "old").Ok());
  EXPECT_TRUE(this->Disk.Rename(this->Path("a"), this->Path("b")).Ok());
  EXPECT_EQ(this->BytesAt("b"), "new");
  EXPECT_EQ(this->Disk.Read(this->Path("a")).Is, State::Missing);
  EXPECT_FALSE(this->Disk.Rename(this->Path("a"), this->Path("b")).Ok());
}

TYPED_TEST(Disks, RenameAFolderWithWhatLiesInIt) {
  ASSERT_TRUE(this->Disk.MakeFolder(this->Path("old")).Ok());
  ASSERT_TRUE(this->Disk.Create(this->Path("old/a"), "bytes").Ok());
  EXPECT_TRUE(this->Disk.Rename(this->Path("old"), this->Path("new")).Ok());
  EXPECT_EQ(this->BytesAt("new/a"), "bytes");
  EXPECT_EQ(this->Disk.Read(this->Path("old/a")).Is, State::Missing);
}

TYPED_TEST(Disks, RenameAFolderOverNone) {
  ASSERT_TRUE(this->Disk.MakeFolder(this->Path("old")).Ok() && this->Disk.MakeFolder(this->Path("new")).Ok());
  ASSERT_TRUE(this->Disk.Create(this->Path("new/a"), "kept").Ok());
  EXPECT_FALSE(this->Disk.Rename(this->Path("old"), this->Path("new")).Ok());
  EXPECT_EQ(this->BytesAt("new/a"), "kept");
}

TYPED_TEST(Disks, MakeAFolderOnceAndNotOverAFile) {
  EXPECT_TRUE(this->Disk.MakeFolder(this->Path("f")).Ok());
  EXPECT_TRUE(this->Disk.MakeFolder(this->Path("f")).Ok());
  ASSERT_TRUE(this->Disk.Create(this->Path("a"), "").Ok());
  EXPECT_FALSE(this->Disk.MakeFolder(this->Path("a")).Ok());
}

TYPED_TEST(Disks, RemoveFilesOnly) {
  ASSERT_TRUE(this->Disk.Create(this->Path("a"), "").Ok() && this->Disk.MakeFolder(this->Path("f")).Ok());
  EXPECT_TRUE(this->Disk.Remove(this->Path("a")).Ok());
  EXPECT_EQ(this->Disk.Read(this->Path("a")).Is, State::Missing);
  EXPECT_FALSE(this->Disk.Remove(this->Path("a")).Ok());
  EXPECT_FALSE(this->Disk.Remove(this->Path("f")).Ok());
  EXPECT_TRUE(this->Disk.Create(this->Path("f/a"), "").Ok());
}

TYPED_TEST(Disks, LockOnceUntilTheLockEnds) {
  std::string holder;
  auto lock = this->Disk.Lock(this->Path("f"), holder);
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(this->Disk.Lock(this->Path("f"), holder), nullptr);
  EXPECT_NE(holder, "");
  lock.reset();
  EXPECT_NE(this->Disk.Lock(this->Path("f"), holder), nullptr);
}

TYPED_TEST(Disks, LendSettingsFilesToTheService) {
  FileSettingsService service{[this](const std::string& path) { return this->Disk.OpenSettings(path); }};
  const auto path = this->Path("Zolvane.ini");
  EXPECT_TRUE(service.WriteValue("Arm", "Speed", path, "12").Ok());
  EXPECT_EQ(this->BytesAt("Zolvane.ini"), "[Arm]\r\nSpeed=12\r\n");
  EXPECT_EQ(service.ReadValue("Arm", "Speed", path, ""), "12");
  EXPECT_TRUE(service.WriteValue("Arm", "Speed", path, "13").Ok());
  EXPECT_EQ(this->BytesAt("Zolvane.ini"), "[Arm]\r\nSpeed=13\r\n");
}

TEST(MemoryDiskSettings, NoticeWhatWasChangedBesidesThem) {
  MemoryDisk disk;
  disk.Put("/lab/Zolvane.ini", "[Arm]\r\nSpeed=12\r\n");
  FileSettingsService service{[&disk](const std::string& path) { return disk.OpenSettings(path); }};
  EXPECT_EQ(service.ReadValue("Arm", "Speed", "/lab/Zolvane.ini", ""), "12");
  disk.Put("/lab/Zolvane.ini", "[Arm]\r\nSpeed=99\r\n");
  EXPECT_EQ(service.ReadValue("Arm", "Speed", "/lab/Zolvane.ini", ""), "99");
}

}  // namespace
}  // namespace zolvane
