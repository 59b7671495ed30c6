#include "bench/settings/exchanged_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using Names = std::vector<std::string>;

// A file together with the text that it held last.
class WrittenFile {
 public:
  explicit WrittenFile(const std::string& path, const ExchangedFileOptions& options = {})
      : file_{OpenExchangedFile(path, options)}, text_{file_->Read().Bytes} {}

  WriteOutcome Write(std::size_t offset, std::size_t removed, std::string inserted) {
    const Splice change{offset, removed, std::move(inserted)};
    const WriteOutcome outcome = file_->Write(text_, change);
    if (outcome == WriteOutcome::Done) {
      text_.replace(change.Offset, change.Removed, change.Inserted);
    }
    return outcome;
  }
  bool Append(std::string_view bytes) {
    return Write(text_.size(), 0, std::string{bytes}) == WriteOutcome::Done;
  }

  ExchangedFile& File() { return *file_; }
  const std::string& Text() const { return text_; }

 private:
  std::unique_ptr<ExchangedFile> file_;
  std::string text_;
};

struct stat StatusOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status;
}

// As a program that has the file open and reads on later.
class OpenReader {
 public:
  explicit OpenReader(const std::string& path) : file_{::open(path.c_str(), O_RDONLY)} {}
  OpenReader(const OpenReader&) = delete;
  OpenReader& operator=(const OpenReader&) = delete;
  ~OpenReader() { ::close(file_); }

  std::string Rest() {
    std::string bytes(100'000, '\0');
    const auto size = ::read(file_, bytes.data(), bytes.size());
    bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return bytes;
  }

 private:
  int file_;
};

class ExchangedFileBothWays : public testing::TestWithParam<bool> {
 protected:
  ExchangedFileOptions Options() const {
    return {.Survives = Durability::EachWrite, .KeepsCopy = GetParam()};
  }
};

std::string WayName(const testing::TestParamInfo<bool>& way) {
  return way.param ? "WithCopy" : "WithoutCopy";
}

INSTANTIATE_TEST_SUITE_P(ExchangedFile, ExchangedFileBothWays, testing::Bool(), WayName);

TEST_P(ExchangedFileBothWays, EachChangeIsInTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path, Options()};
  const std::vector<Splice> changes{{2, 3, "abc"},                      // same size
                                    {8, 1, "x"},                        // same size, elsewhere
                                    {4, 1, "longer"},                   // grows in the middle
                                    {0, 5, ""},                         // shrinks at the start
                                    {1, 1, "y"},                        // same size, before the last change
                                    {10, 0, " appended"}, {12, 7, ""},  // shrinks at the end
                                    {0, 0, "front "},     {0, 18, ""},  // leaves nothing
                                    {0, 0, "anew"}};
  for (const Splice& change : changes) {
    ASSERT_EQ(file.Write(change.Offset, change.Removed, change.Inserted), WriteOutcome::Done);
    ASSERT_EQ(BytesOf(path), file.Text());
  }
  EXPECT_EQ(BytesOf(path), "anew");
}

TEST_P(ExchangedFileBothWays, NeedsNoReadingAfterAWriteOfItsOwn) {
  const TemporaryFolder folder;
  WrittenFile file{folder.Put("file", "text"), Options()};
  ASSERT_TRUE(file.Append("+"));
  EXPECT_TRUE(file.File().IsCurrent());
  ASSERT_TRUE(file.Append("+"));
  EXPECT_TRUE(file.File().IsCurrent());
}

TEST_P(ExchangedFileBothWays, PermissionsAndOwnerAreKept) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  ::chmod(path.c_str(), 0640);
  const bool isPrivileged = ::geteuid() == 0 && ::chown(path.c_str(), 4321, 8765) == 0;
  const auto before = StatusOf(path);
  WrittenFile file{path, Options()};
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(file.Append("+"));
    const auto after = StatusOf(path);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, isPrivileged ? 4321U : before.st_uid);
    EXPECT_EQ(after.st_gid, isPrivileged ? 8765U : before.st_gid);
  }
}

TEST_P(ExchangedFileBothWays, PermissionsThatAreChangedInBetweenAreKept) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Append("+"));
  ::chmod(path.c_str(), 0604);
  ASSERT_EQ(file.Write(0, 0, "-"), WriteOutcome::Changed);
  ASSERT_EQ(file.File().Read().Bytes, "text+");
  ASSERT_TRUE(file.Append("+"));
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(StatusOf(path).st_mode & 07777U, 0604U);
}

TEST_P(ExchangedFileBothWays, ANewFileGetsThePermissionsThatTheUserWants) {
  const TemporaryFolder folder;
  const mode_t mask = ::umask(027);
  WrittenFile file{folder.Path("file"), Options()};
  EXPECT_TRUE(file.Append("text"));
  ::umask(mask);
  EXPECT_EQ(StatusOf(folder.Path("file")).st_mode & 07777U, 0640U);
}

TEST_P(ExchangedFileBothWays, ALinkStaysALink) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("elsewhere"));
  folder.Put("elsewhere/real", "text");
  std::filesystem::create_symlink("elsewhere/real", folder.Path("middle"));
  std::filesystem::create_symlink(folder.Path("middle"), folder.Path("link"));
  {
    WrittenFile file{folder.Path("link"), Options()};
    ASSERT_TRUE(file.Append("+"));
    ASSERT_TRUE(file.Append("+"));
  }
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("middle")));
  EXPECT_EQ(BytesOf(folder.Path("elsewhere/real")), "text++");
  EXPECT_EQ(folder.Names(), (Names{"elsewhere", "link", "middle"}));
}

TEST_P(ExchangedFileBothWays, ALinkToAMissingFileCreatesThatFile) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("real", folder.Path("link"));
  WrittenFile file{folder.Path("link"), Options()};
  ASSERT_TRUE(file.Append("text"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
  EXPECT_EQ(BytesOf(folder.Path("real")), "text");
}

TEST_P(ExchangedFileBothWays, ALinkThatIsSetToAnotherFileIsFollowed) {
  const TemporaryFolder folder;
  folder.Put("first", "1");
  folder.Put("second", "2");
  std::filesystem::create_symlink("first", folder.Path("link"));
  WrittenFile file{folder.Path("link"), Options()};
  ASSERT_TRUE(file.Append("+"));
  std::filesystem::remove(folder.Path("link"));
  std::filesystem::create_symlink("second", folder.Path("link"));
  EXPECT_EQ(file.Write(0, 0, "-"), WriteOutcome::Changed);
  EXPECT_EQ(file.File().Read().Bytes, "2");
  EXPECT_EQ(BytesOf(folder.Path("first")), "1+");
}

TEST_P(ExchangedFileBothWays, ASecondNameOfTheFileKeepsTheOldState) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  std::filesystem::create_hard_link(path, folder.Path("other name"));
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Append("+"));
  ASSERT_TRUE(file.Append("+"));
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(BytesOf(path), "text+++");
  EXPECT_EQ(BytesOf(folder.Path("other name")), "text");
}

TEST_P(ExchangedFileBothWays, AReaderThatIsSlowGetsTheStateThatItOpened) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0");
  WrittenFile file{path, Options()};
  std::vector<std::unique_ptr<OpenReader>> readers;
  std::vector<std::string> states;
  for (int round = 1; round <= 12; ++round) {
    ASSERT_EQ(file.Write(0, 1, std::to_string(round % 10)), WriteOutcome::Done);
    ASSERT_TRUE(file.Append("-"));
    if (round % 3 != 0) {
      readers.push_back(std::make_unique<OpenReader>(path));
      states.push_back(file.Text());
    }
  }
  for (std::size_t reader = 0; reader < readers.size(); ++reader) {
    EXPECT_EQ(readers[reader]->Rest(), states[reader]);
  }
}

TEST_P(ExchangedFileBothWays, AProgramThatWritesIntoWhatItOpenedBeforeDoesNotSpoilTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path, Options()};
  ASSERT_EQ(file.Write(0, 1, "a"), WriteOutcome::Done);
  {
    const int late = ::open(path.c_str(), O_RDWR);
    ASSERT_EQ(file.Write(1, 1, "b"), WriteOutcome::Done);
    ASSERT_EQ(::pwrite(late, "LATE", 4, 3), 4);
    ::close(late);
  }
  ASSERT_EQ(file.Write(2, 1, "c"), WriteOutcome::Done);
  EXPECT_EQ(BytesOf(path), "abc3456789");
}

TEST_P(ExchangedFileBothWays, AMissingFileIsNoReasonToOverwriteOneThatAppears) {
  const TemporaryFolder folder;
  WrittenFile file{folder.Path("file"), Options()};
  EXPECT_TRUE(file.File().IsCurrent());
  folder.Put("file", "somebody's");
  EXPECT_FALSE(file.File().IsCurrent());
  EXPECT_EQ(file.Write(0, 0, "mine"), WriteOutcome::Changed);
  EXPECT_EQ(BytesOf(folder.Path("file")), "somebody's");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST_P(ExchangedFileBothWays, AVeryLongNameIsAName) {
  const TemporaryFolder folder;
  const std::string name(255, 'n');
  folder.Put(name, "text");
  {
    WrittenFile file{folder.Path(name), Options()};
    ASSERT_TRUE(file.Append("+"));
    ASSERT_TRUE(file.Append("+"));
  }
  EXPECT_EQ(BytesOf(folder.Path(name)), "text++");
  EXPECT_EQ(folder.Names(), Names{name});
}

TEST(ExchangedFile, FlushesWhatWasNotMadeDurableAtOnce) {
  const TemporaryFolder folder;
  WrittenFile file{folder.Path("file"), {.Survives = Durability::OnFlush, .KeepsCopy = true}};
  EXPECT_TRUE(file.File().Flush().Ok());
  ASSERT_TRUE(file.Append("text"));
  EXPECT_TRUE(file.File().Flush().Ok());
  ASSERT_TRUE(file.Append("+"));
  std::filesystem::remove(folder.Path("file"));
  EXPECT_FALSE(file.File().Flush().Ok());
}

TEST(SecondCopy, IsHiddenAndOneChangeBehind) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "0");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("1"));
  ASSERT_TRUE(file.Append("2"));
  EXPECT_EQ(folder.Names(), (Names{".Zolvane.ini.bench-copy", "Zolvane.ini"}));
  EXPECT_EQ(BytesOf(folder.Path(".Zolvane.ini.bench-copy")), "01");
}

TEST(SecondCopy, IsTheSameFileAgainAndAgainUnlessSomebodyReadsIt) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("1"));
  const auto first = StatusOf(path).st_ino;
  ASSERT_TRUE(file.Append("2"));
  ASSERT_TRUE(file.Append("3"));
  EXPECT_EQ(StatusOf(path).st_ino, first);
  const OpenReader reader{path};
  ASSERT_TRUE(file.Append("4"));
  ASSERT_TRUE(file.Append("5"));
  EXPECT_NE(StatusOf(path).st_ino, first);
  EXPECT_EQ(BytesOf(path), "012345");
}

TEST(SecondCopy, ThatWasLeftBehindIsReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  folder.Put(".file.bench-copy", "of a program that was killed");
  folder.Put(".file.bench-copy2", "of another one");
  folder.Put(".file.bench-copy3", "of a third one");
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("+"));
    EXPECT_EQ(folder.Names(), (Names{".file.bench-copy", "file"}));
  }
  EXPECT_EQ(BytesOf(path), "text+");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(SecondCopy, OfALivingProgramIsNotTouched) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  const int living = ::open(folder.Put(".file.bench-copy", "in use").c_str(), O_RDWR);
  ASSERT_EQ(::flock(living, LOCK_EX), 0);
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("+"));
    ASSERT_TRUE(file.Append("+"));
    EXPECT_EQ(folder.Names(), (Names{".file.bench-copy", ".file.bench-copy2", "file"}));
  }
  ::close(living);
  EXPECT_EQ(BytesOf(folder.Path(".file.bench-copy")), "in use");
  EXPECT_EQ(BytesOf(path), "text++");
  EXPECT_EQ(folder.Names(), (Names{".file.bench-copy", "file"}));
}

TEST(SecondCopy, IsLockedAndTheVisibleFileIsNot) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  const auto isLocked = [](const std::string& name) {
    const int file = ::open(name.c_str(), O_RDWR);
    const bool result = ::flock(file, LOCK_EX | LOCK_NB) != 0;
    ::close(file);
    return result;
  };
  WrittenFile file{path};
  for (int round = 0; round < 4; ++round) {
    ASSERT_TRUE(file.Append("+"));
    EXPECT_TRUE(isLocked(folder.Path(".file.bench-copy")));
    EXPECT_FALSE(isLocked(path));
  }
}

TEST(SecondCopy, IsMadeAnewWhenSomebodyRemovesIt) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("+"));
  std::filesystem::remove(folder.Path(".file.bench-copy"));
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(BytesOf(path), "text++");
}

TEST(SecondCopy, ThatSomebodyChangedIsNotUsed) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path};
  ASSERT_EQ(file.Write(0, 1, "a"), WriteOutcome::Done);
  folder.Put(".file.bench-copy", "nonsense!!");
  ASSERT_EQ(file.Write(1, 1, "b"), WriteOutcome::Done);
  EXPECT_EQ(BytesOf(path), "ab23456789");
  folder.PutByRename(".file.bench-copy", "nonsense!!");
  ASSERT_EQ(file.Write(2, 1, "c"), WriteOutcome::Done);
  EXPECT_EQ(BytesOf(path), "abc3456789");
}

}  // namespace
}  // namespace zolvane
