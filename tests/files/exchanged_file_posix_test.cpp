#include "files/exchanged_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/written_file.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using Names = std::vector<std::string>;

struct stat StatusOf(const std::string& path) {
  struct stat status{};
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

  std::string Rest() const {
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

TEST_P(ExchangedFileBothWays, AFileThatIsOpenForWritingElsewhereIsNotExchanged) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Replace(0, "a"));
  const auto before = StatusOf(path).st_ino;
  for (const int flags : {O_WRONLY, O_RDWR}) {
    const int other = ::open(path.c_str(), flags);
    EXPECT_EQ(file.Write(1, 1, "b"), WriteOutcome::InUse);
    EXPECT_EQ(BytesOf(path), "a123456789");
    EXPECT_EQ(StatusOf(path).st_ino, before);
    ::close(other);
  }
  EXPECT_TRUE(file.Replace(1, "b"));
  EXPECT_EQ(BytesOf(path), "ab23456789");
}

TEST_P(ExchangedFileBothWays, WhatAnotherProgramWritesInPlaceIsTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Replace(0, "a"));
  const int late = ::open(path.c_str(), O_RDWR);
  ASSERT_EQ(file.Write(1, 1, "b"), WriteOutcome::InUse);
  ASSERT_EQ(::pwrite(late, "LATE", 4, 3), 4);
  EXPECT_TRUE(file.File().Read().IsBeingWritten);
  ::close(late);
  EXPECT_EQ(file.Write(1, 1, "b"), WriteOutcome::Changed);
  const FileContent content = file.File().Read();
  EXPECT_EQ(content.Bytes, "a12LATE789");
  EXPECT_FALSE(content.IsBeingWritten);
}

TEST_P(ExchangedFileBothWays, AProgramThatOnlyReadsTheFileIsNotInTheWay) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path, Options()};
  const OpenReader reader{path};
  EXPECT_TRUE(file.Append("+"));
  EXPECT_TRUE(file.Append("+"));
  EXPECT_EQ(BytesOf(path), "text++");
}

TEST_P(ExchangedFileBothWays, AFolderThatIsLockedElsewhereIsNotWaitedFor) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path, Options()};
  const int other = ::open(folder.Path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_EQ(file.Write(4, 0, "+"), WriteOutcome::Locked);
  EXPECT_EQ(BytesOf(path), "text");
  ::close(other);
  EXPECT_TRUE(file.Append("+"));
}

constexpr const char* accessListName = "system.posix_acl_access";

// Of owner rw, user 4242 rw, group r, mask rw, others none, as the system stores it.
std::string AccessList() {
  std::string list{"\2\0\0\0", 4};
  const auto append = [&list](auto number) {
    const auto bytes = std::bit_cast<std::array<char, sizeof number>>(number);
    list.append(bytes.data(), bytes.size());
  };
  const auto add = [&append](std::uint16_t tag, std::uint16_t rights, std::uint32_t id) {
    append(tag);
    append(rights);
    append(id);
  };
  constexpr std::uint32_t nobody = 0xFFFFFFFF;
  add(0x01, 6, nobody);
  add(0x02, 6, 4242);
  add(0x04, 4, nobody);
  add(0x10, 6, nobody);
  add(0x20, 0, nobody);
  return list;
}

std::string AttributeOf(const std::string& path, const char* name) {
  std::string value(1000, '\0');
  const auto size = ::getxattr(path.c_str(), name, value.data(), value.size());
  value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return size < 0 ? "none" : value;
}

bool SetAttribute(const std::string& path, const char* name, const std::string& value) {
  return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

TEST_P(ExchangedFileBothWays, AccessListsAndExtendedAttributesAreKept) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  ASSERT_TRUE(SetAttribute(path, accessListName, AccessList())) << "needs a file system with access lists";
  ASSERT_TRUE(SetAttribute(path, "user.checked by", "Ada")) << "needs a file system with attributes";
  const auto mode = StatusOf(path).st_mode;
  WrittenFile file{path, Options()};
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(file.Append("+"));
    EXPECT_EQ(AttributeOf(path, accessListName), AccessList());
    EXPECT_EQ(AttributeOf(path, "user.checked by"), "Ada");
    EXPECT_EQ(StatusOf(path).st_mode, mode);
  }
}

TEST_P(ExchangedFileBothWays, AnAccessListOfTheFolderGivesNobodyMoreRights) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  ::chmod(path.c_str(), 0640);
  ASSERT_TRUE(SetAttribute(folder.Path(), "system.posix_acl_default", AccessList()));
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(AttributeOf(path, accessListName), "none");
  EXPECT_EQ(StatusOf(path).st_mode & 07777U, 0640U);
}

TEST_P(ExchangedFileBothWays, AttributesThatAreChangedInBetweenAreKept) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path, Options()};
  ASSERT_TRUE(file.Append("+"));
  ASSERT_TRUE(SetAttribute(path, accessListName, AccessList()));
  ASSERT_EQ(file.Write(0, 0, "-"), WriteOutcome::Changed);
  ASSERT_EQ(file.File().Read().Bytes, "text+");
  ASSERT_TRUE(file.Append("+"));
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(AttributeOf(path, accessListName), AccessList());
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

// The names of the hidden copies in a folder.
Names CopiesIn(const TemporaryFolder& folder) {
  Names names = folder.Names();
  std::erase_if(names, [](const std::string& name) { return name.find(".bench-copy") == std::string::npos; });
  return names;
}

// A program that is killed when it has written into the file.
class KilledWriter {
 public:
  explicit KilledWriter(const std::string& path) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    child_ = ::fork();
    if (child_ == 0) {
      WrittenFile file{path};
      const bool isWritten = file.Append("+") && ::write(ends[1], "+", 1) == 1;
      ::pause();
      ::_exit(isWritten ? 0 : 1);
    }
    ::close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    ::close(ends[0]);
  }
  KilledWriter(const KilledWriter&) = delete;
  KilledWriter& operator=(const KilledWriter&) = delete;
  ~KilledWriter() {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }

 private:
  pid_t child_ = -1;
};

// From now on this process finds a file system that has no files without a name. `whenFileGetsTime` is what the
// system does when a file's time is set, as it is when a copy has its content but not its final name.
bool LoseNamelessFiles(unsigned int whenFileGetsTime) {
  constexpr unsigned int nameless =
      static_cast<unsigned int>(O_TMPFILE) & ~static_cast<unsigned int>(O_DIRECTORY);
  auto rules = std::to_array<sock_filter>(
      {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
       BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_utimensat, 4, 0),
       BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 4),
       BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t)),
       BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, nameless, 0, 2),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP), BPF_STMT(BPF_RET | BPF_K, whenFileGetsTime),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)});
  const sock_fprog program{rules.size(), rules.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0;
}

// In a process of its own. Returns how it ended.
int StatusOfProcess(const std::function<bool()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(work() ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

TEST(SecondCopy, ACopyThatAKilledProgramWasMakingIsRemovedByTheNext) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  const int status = StatusOfProcess([&] {
    WrittenFile file{path};
    return LoseNamelessFiles(SECCOMP_RET_KILL_PROCESS) && file.Append("+");
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_EQ(CopiesIn(folder).size(), 1U);
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("!"));
    EXPECT_EQ(file.File().TakeRescued(), Names{});
  }
  EXPECT_EQ(BytesOf(path), "text!");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

// Numbers of processes are given again: in a container it is the same one each time.
TEST(SecondCopy, IsMadeWhateverAKilledProgramOfTheSameNumberLeft) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  const int status = StatusOfProcess([&] {
    folder.Put(".file.bench-copy-new-" + std::to_string(::getpid()), "te");
    WrittenFile file{path};
    return LoseNamelessFiles(SECCOMP_RET_ALLOW) && file.Append("+") && file.Append("+");
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(BytesOf(path), "text++");
  EXPECT_EQ(CopiesIn(folder).size(), 1U) << "a file that is not known to be a copy stays";
}

TEST(SecondCopy, IsHiddenAndOneChangeBehind) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "0");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("1"));
  ASSERT_TRUE(file.Append("2"));
  ASSERT_EQ(CopiesIn(folder).size(), 1U);
  EXPECT_EQ(folder.Names(), (Names{CopiesIn(folder).front(), "Zolvane.ini"}));
  EXPECT_TRUE(CopiesIn(folder).front().starts_with(".Zolvane.ini.bench-copy-"));
  EXPECT_EQ(folder.Read(CopiesIn(folder).front()), "01");
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

TEST(SecondCopy, CopiesThatWereLeftBehindAreRemovedHoweverManyThereAre) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  {
    std::vector<std::unique_ptr<KilledWriter>> writers;
    for (int count = 0; count < 40; ++count) {
      writers.push_back(std::make_unique<KilledWriter>(path));
    }
  }
  EXPECT_EQ(CopiesIn(folder).size(), 40U);
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("!"));
    EXPECT_EQ(CopiesIn(folder).size(), 1U);
  }
  EXPECT_EQ(BytesOf(path), "text" + std::string(40, '+') + "!");
  EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(SecondCopy, ALivingProgramsCopyIsNotTouched) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile living{path};
  ASSERT_TRUE(living.Append("+"));
  const Names copies = CopiesIn(folder);
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("+"));
    ASSERT_TRUE(file.Append("+"));
    EXPECT_EQ(CopiesIn(folder).size(), 2U);
  }
  EXPECT_EQ(CopiesIn(folder), copies);
  EXPECT_EQ(folder.Read(copies.front()), "text");
  EXPECT_EQ(BytesOf(path), "text+++");
}

TEST(SecondCopy, AnOrdinaryFileUnderTheNameOfOneIsNotRemoved) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  {
    const KilledWriter writer{path};
  }
  ASSERT_EQ(CopiesIn(folder).size(), 1U);
  const std::string name = CopiesIn(folder).front();
  std::filesystem::remove(folder.Path(name));
  folder.Put(name, "somebody's");
  std::filesystem::last_write_time(folder.Path(name),
                                   std::filesystem::file_time_type::clock::now() - std::chrono::hours{24});
  folder.Put(".file.bench-copy", "somebody else's");
  folder.Put(".file.bench-copy-", "somebody else's");
  const Names before = folder.Names();
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("+"));
    ASSERT_TRUE(file.Append("+"));
  }
  EXPECT_EQ(folder.Names(), before);
  EXPECT_EQ(folder.Read(name), "somebody's");
}

TEST(SecondCopy, IsLockedAndTheVisibleFileIsNot) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  const auto isLocked = [](const std::string& name) {
    const int file = ::open(name.c_str(), O_RDONLY);
    const bool result = ::flock(file, LOCK_EX | LOCK_NB) != 0;
    ::close(file);
    return result;
  };
  WrittenFile file{path};
  for (int round = 0; round < 4; ++round) {
    ASSERT_TRUE(file.Append("+"));
    EXPECT_TRUE(isLocked(folder.Path(CopiesIn(folder).at(0))));
    EXPECT_FALSE(isLocked(path));
  }
}

TEST(SecondCopy, IsMadeAnewWhenSomebodyRemovesIt) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("+"));
  std::filesystem::remove(folder.Path(CopiesIn(folder).at(0)));
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(BytesOf(path), "text++");
}

// As a program does that had the file open when it was exchanged, where the system grants no leases.
TEST(SecondCopy, IsKeptForTheUserIfAnotherProgramHasWrittenIntoIt) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Replace(0, "a"));
    folder.Put(CopiesIn(folder).at(0), "a whole save");
    ASSERT_TRUE(file.Replace(1, "b"));
    EXPECT_EQ(BytesOf(path), "ab23456789");
    EXPECT_EQ(file.File().TakeRescued(), Names{folder.Path("file.kept-1")});
    EXPECT_EQ(file.File().TakeRescued(), Names{});
    folder.Put(CopiesIn(folder).at(0), "another one");
    EXPECT_TRUE(file.File().Flush().Ok());
    EXPECT_EQ(file.File().TakeRescued(), Names{folder.Path("file.kept-2")});
    ASSERT_TRUE(file.Replace(2, "c"));
    folder.Put(CopiesIn(folder).at(0), "the last one");
  }
  EXPECT_EQ(BytesOf(path), "abc3456789");
  EXPECT_EQ(folder.Read("file.kept-1"), "a whole save");
  EXPECT_EQ(folder.Read("file.kept-2"), "another one");
  EXPECT_EQ(folder.Read("file.kept-3"), "the last one");
  EXPECT_EQ(CopiesIn(folder), Names{});
}

TEST(SecondCopy, AKilledProgramsCopyIsKeptForTheUserIfAnotherProgramHasWrittenIntoIt) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  {
    const KilledWriter writer{path};
  }
  folder.Put(CopiesIn(folder).at(0), "a whole save");
  WrittenFile file{path};
  ASSERT_TRUE(file.Append("+"));
  EXPECT_EQ(file.File().TakeRescued(), Names{folder.Path("file.kept-1")});
  EXPECT_EQ(folder.Read("file.kept-1"), "a whole save");
}

TEST(SecondCopy, ACopyThatAnotherProgramHasOpenForWritingIsNotRemoved) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "text");
  int late = -1;
  {
    WrittenFile file{path};
    ASSERT_TRUE(file.Append("+"));
    late = ::open(folder.Path(CopiesIn(folder).at(0)).c_str(), O_WRONLY);
  }
  ASSERT_EQ(::write(late, "late", 4), 4);
  ::close(late);
  ASSERT_EQ(CopiesIn(folder).size(), 1U);
  EXPECT_EQ(folder.Read(CopiesIn(folder).at(0)), "late");
}

TEST(SecondCopy, ACopyThatSomebodyReplacedIsLeftAlone) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file", "0123456789");
  WrittenFile file{path};
  ASSERT_TRUE(file.Replace(0, "a"));
  const std::string name = CopiesIn(folder).at(0);
  folder.PutByRename(name, "somebody's");
  ASSERT_TRUE(file.Replace(1, "b"));
  ASSERT_TRUE(file.Replace(2, "c"));
  EXPECT_EQ(BytesOf(path), "abc3456789");
  EXPECT_EQ(folder.Read(name), "somebody's");
}

}  // namespace
}  // namespace zolvane
