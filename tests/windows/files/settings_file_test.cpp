// The bench's settings file on Windows: other programs' changes are seen although a look opens nothing, and
// what Windows keeps beside the bytes of a file. What holds on every system is in files/.
#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <string>

#include "files/exchanged_file.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

class SettledFile : public testing::Test {
 protected:
  SettledFile() {
    Store(path_, "[A]\r\nx=1\r\n");
    Settle();
  }
  ~SettledFile() override { std::filesystem::remove(path_); }

  // Changes younger than the clock of the file system is sure of always count as seen.
  void Settle() {
    std::filesystem::last_write_time(path_, std::filesystem::last_write_time(path_) - std::chrono::hours{1});
    content_ = file_->Read();
  }

  const std::filesystem::path path_ = ProgramFolder::OfThisRun().Path() / "settled.ini";
  const std::unique_ptr<ExchangedFile> file_ = OpenExchangedFile(path_.string());
  FileContent content_;
};

TEST_F(SettledFile, IsCurrentUntilItIsChanged) {
  EXPECT_EQ(content_.Bytes, "[A]\r\nx=1\r\n");
  EXPECT_TRUE(file_->IsCurrent());
  Store(path_, "[A]\r\nx=2\r\n");
  EXPECT_FALSE(file_->IsCurrent());
}

TEST_F(SettledFile, IsNotCurrentAfterAnotherTookItsPlace) {
  const auto other = ProgramFolder::OfThisRun().Path() / "other.ini";
  Store(other, "[A]\r\nx=3\r\n");
  std::filesystem::last_write_time(other, std::filesystem::last_write_time(path_) - std::chrono::hours{1});
  std::filesystem::rename(other, path_);
  EXPECT_FALSE(file_->IsCurrent());
}

TEST_F(SettledFile, IsNotCurrentOnceItIsGoneNorOnceItIsBack) {
  std::filesystem::remove(path_);
  EXPECT_FALSE(file_->IsCurrent());
  EXPECT_EQ(file_->Read().Is, FileContent::State::Missing);
  EXPECT_TRUE(file_->IsCurrent());
  Store(path_, "[A]\r\nx=1\r\n");
  EXPECT_FALSE(file_->IsCurrent());
}

TEST_F(SettledFile, IsNotOverwrittenByAWriteThatDidNotSeeTheChange) {
  Store(path_, "[A]\r\nx=4\r\n");
  const std::string_view before = content_.Bytes;
  EXPECT_EQ(file_->Write(before, {.Offset = 7, .Removed = 1, .Inserted = "5"}), WriteOutcome::Changed);
  EXPECT_EQ(ContentOf(path_), "[A]\r\nx=4\r\n");
}

// As another program that has the file open.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path& path, DWORD access, DWORD shared)
      : handle_{::CreateFileW(path.c_str(), access, shared, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                              nullptr)} {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { ::CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

const Splice change{.Offset = 7, .Removed = 1, .Inserted = {}};

TEST_F(SettledFile, IsAFailedReadWhileAnotherProgramSharesItWithNobody) {
  {
    const OpenFile other{path_, GENERIC_READ | GENERIC_WRITE, 0};
    const FileContent content = file_->Read();
    EXPECT_EQ(content.Is, FileContent::State::Unreadable);
    EXPECT_TRUE(content.IsBeingWritten);
  }
  EXPECT_EQ(file_->Read().Bytes, "[A]\r\nx=1\r\n");
}

// The system refuses to replace a file that a program has open.
TEST_F(SettledFile, IsInUseWhileAnotherProgramReadsIt) {
  {
    const OpenFile other{path_, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE};
    EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::InUse);
    EXPECT_EQ(ContentOf(path_), "[A]\r\nx=1\r\n");
  }
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::Done);
  EXPECT_EQ(ContentOf(path_), "[A]\r\nx=\r\n");
}

// In its place, the file staying the one that it is.
void PutByte(const std::filesystem::path& path, char byte) {
  std::fstream file{path, std::ios::binary | std::ios::in | std::ios::out};
  file.seekp(7);
  file.put(byte);
  EXPECT_TRUE(file.flush());
}

// An editor that saves has written half of it: that is waited for, and not taken for its change.
TEST_F(SettledFile, IsInUseWhileAnotherProgramWritesItWhateverStandsThereMeanwhile) {
  const OpenFile other{path_, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE};
  PutByte(path_, '5');
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::InUse);
  EXPECT_EQ(ContentOf(path_), "[A]\r\nx=5\r\n");
}

// Nobody waits for a file that will not become writable.
TEST_F(SettledFile, IsAFailedWriteWhileItMayOnlyBeRead) {
  ASSERT_NE(::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  Settle();
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::Failed);
  EXPECT_EQ(ContentOf(path_), "[A]\r\nx=1\r\n");
  ASSERT_NE(::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

// Two changes within a step of the clock have one time, so a young file is compared byte by byte.
TEST_F(SettledFile, IsNotOverwrittenWhereAChangeLeftItsSizeAndTime) {
  const auto young = std::filesystem::last_write_time(path_) + std::chrono::hours{2};
  std::filesystem::last_write_time(path_, young);
  const auto before = file_->Read().Bytes;
  PutByte(path_, '7');
  std::filesystem::last_write_time(path_, young);
  EXPECT_EQ(file_->Write(before, change), WriteOutcome::Changed);
  EXPECT_EQ(ContentOf(path_), "[A]\r\nx=7\r\n");
}

std::string AccessListOf(const std::filesystem::path& path) {
  std::string list(10'000, '\0');
  DWORD size = 0;
  EXPECT_NE(::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, list.data(),
                               static_cast<DWORD>(list.size()), &size),
            0);
  list.resize(size);
  return list;
}

// Only one group may do anything: no new file in this folder inherits such a list.
void LetOnlyAdministratorsIn(const std::filesystem::path& path) {
  std::array<std::byte, SECURITY_MAX_SID_SIZE> group{};
  auto groupSize = static_cast<DWORD>(group.size());
  ASSERT_NE(::CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, group.data(), &groupSize), 0);
  std::array<std::byte, 200> bytes{};
  auto* const list = reinterpret_cast<ACL*>(bytes.data());
  ASSERT_NE(::InitializeAcl(list, static_cast<DWORD>(bytes.size()), ACL_REVISION), 0);
  ASSERT_NE(::AddAccessAllowedAce(list, ACL_REVISION, GENERIC_ALL, group.data()), 0);
  SECURITY_DESCRIPTOR description{};
  ASSERT_NE(::InitializeSecurityDescriptor(&description, SECURITY_DESCRIPTOR_REVISION), 0);
  ASSERT_NE(::SetSecurityDescriptorDacl(&description, TRUE, list, FALSE), 0);
  ASSERT_NE(::SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, &description), 0);
}

TEST_F(SettledFile, KeepsItsAccessListWithAWrite) {
  const std::string before = AccessListOf(path_);
  LetOnlyAdministratorsIn(path_);
  const std::string list = AccessListOf(path_);
  ASSERT_NE(list, before);
  Settle();
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::Done);
  EXPECT_EQ(AccessListOf(path_), list);
}

TEST_F(SettledFile, KeepsItsAttributesWithAWrite) {
  ASSERT_NE(::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
  Settle();
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::Done);
  EXPECT_EQ(::GetFileAttributesW(path_.c_str()) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM),
            DWORD{FILE_ATTRIBUTE_HIDDEN});
}

TEST_F(SettledFile, IsRidOfTheCopyThatAKilledProgramLeft) {
  auto copy = path_;
  copy += ".bench-copy";
  Store(copy, "half of a");
  ASSERT_NE(::SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0);
  EXPECT_EQ(file_->Write(content_.Bytes, change), WriteOutcome::Done);
  EXPECT_FALSE(std::filesystem::exists(copy));
}

}  // namespace
}  // namespace zolvane
