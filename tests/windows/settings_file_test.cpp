// The bench's settings file on Windows: other programs' changes are seen although a look opens nothing.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "bench/settings/exchanged_file.h"
#include "program_folder.h"

namespace zolvane {
namespace {

// Changes younger than the clock of the file system is sure of always count as seen.
void LetSettle() {
  std::this_thread::sleep_for(std::chrono::milliseconds{200});
}

class SettledFile : public testing::Test {
 protected:
  SettledFile() {
    Store(path_, "[A]\r\nx=1\r\n");
    Settle();
  }
  ~SettledFile() override { std::filesystem::remove(path_); }

  void Settle() {
    LetSettle();
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

}  // namespace
}  // namespace zolvane
