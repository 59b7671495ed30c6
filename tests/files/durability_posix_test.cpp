// What has to be on the disk before what, so that a power cut leaves a whole file behind. As no test can cut the
// power, these watch in which order the system is called.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "files/written_file.h"
#include "support/temporary_folder.h"
#include "support/texts.h"

namespace zolvane {
namespace {

// Notes, while it lives, what this thread asks the system for: `write`, `sync file`, `sync folder`, and `name`
// when a file gets the name that is watched.
class CallsAroundName {
 public:
  explicit CallsAroundName(std::string name) : name_{std::move(name)} { current = this; }
  ~CallsAroundName() { current = nullptr; }
  CallsAroundName(const CallsAroundName&) = delete;
  CallsAroundName& operator=(const CallsAroundName&) = delete;

  static void Note(const char* call) {
    if (current != nullptr) {
      current->calls_.emplace_back(call);
    }
  }
  static void NoteName(std::string_view name) {
    if (current != nullptr && name == current->name_) {
      Note("name");
    }
  }
  static void NoteSync(int file) {
    struct stat status{};
    const bool isFolder = ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
    Note(isFolder ? "sync folder" : "sync file");
  }

  const Texts& Calls() const { return calls_; }

 private:
  static thread_local CallsAroundName* current;
  std::string name_;
  Texts calls_;
};

thread_local CallsAroundName* CallsAroundName::current = nullptr;

}  // namespace
}  // namespace zolvane

// Take the place of those of the C library in the whole test program.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): theirs are reserved names
extern "C" {
ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
  zolvane::CallsAroundName::Note("write");
  return ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

int fdatasync(int file) {
  zolvane::CallsAroundName::NoteSync(file);
  return static_cast<int>(::syscall(SYS_fdatasync, file));
}

int fsync(int file) {
  zolvane::CallsAroundName::NoteSync(file);
  return static_cast<int>(::syscall(SYS_fsync, file));
}

int renameat(int from, const char* name, int to, const char* newName) noexcept {
  zolvane::CallsAroundName::NoteName(newName);
  return static_cast<int>(::syscall(SYS_renameat2, from, name, to, newName, 0));
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned int flags) noexcept {
  zolvane::CallsAroundName::NoteName(newName);
  return static_cast<int>(::syscall(SYS_renameat2, from, name, to, newName, flags));
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

namespace zolvane {
namespace {

class DurabilityBothWays : public testing::TestWithParam<bool> {
 protected:
  // Those of a file that is created and then changed four times.
  static Texts CallsOfFiveWrites() {
    const TemporaryFolder folder;
    const CallsAroundName watched{"file"};
    WrittenFile file{folder.Path("file"), {.KeepsCopy = GetParam()}};
    for (const auto* text : {"1", "2", "3", "4", "5"}) {
      EXPECT_TRUE(file.Append(text));
    }
    EXPECT_EQ(folder.Read("file"), "12345");
    return watched.Calls();
  }
};

INSTANTIATE_TEST_SUITE_P(Durability, DurabilityBothWays, testing::Bool(),
                         [](const auto& way) { return way.param ? "WithCopy" : "WithoutCopy"; });

TEST_P(DurabilityBothWays, ATextIsOnTheDiskBeforeTheNameLeadsToIt) {
  int names = 0;
  bool isOnDisk = true;
  for (const auto& call : CallsOfFiveWrites()) {
    if (call == "name") {
      EXPECT_TRUE(isOnDisk) << "name " << names;
      ++names;
    }
    isOnDisk = call == "sync file" || (isOnDisk && call != "write");
  }
  EXPECT_EQ(names, 5);
}

// Else a power cut could bring the former file back, which is the copy that is being written.
TEST_P(DurabilityBothWays, ANameIsOnTheDiskBeforeAnythingIsWrittenAgain) {
  int writes = 0;
  bool isOnDisk = true;
  for (const auto& call : CallsOfFiveWrites()) {
    if (call == "write") {
      EXPECT_TRUE(isOnDisk) << "write " << writes;
      ++writes;
    }
    isOnDisk = call == "sync folder" || (isOnDisk && call != "name");
  }
  EXPECT_GE(writes, 5);
  EXPECT_TRUE(isOnDisk);
}

}  // namespace
}  // namespace zolvane
