// Many writes while something else happens: the writer is killed, somebody reads, several programs write.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

using std::chrono::steady_clock;

// A number that parent and child processes see.
class SharedNumber {
 public:
  SharedNumber()
      : number_{new(::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>{0}} {}
  SharedNumber(const SharedNumber&) = delete;
  SharedNumber& operator=(const SharedNumber&) = delete;
  ~SharedNumber() { ::munmap(number_, sizeof(std::atomic<int>)); }

  std::atomic<int>& operator*() const { return *number_; }

 private:
  std::atomic<int>* number_;
};

class ChildProcess {
 public:
  explicit ChildProcess(const std::function<bool()>& work) : child_{::fork()} {
    if (child_ == 0) {
      ::_exit(work() ? 0 : 1);
    }
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { Kill(); }

  void Kill() {
    if (child_ > 0) {  // never -1, which stands for every process
      ::kill(child_, SIGKILL);
      Succeeded();
    }
  }
  bool Succeeded() {
    int result = -1;
    if (child_ <= 0) {
      return false;
    }
    ::waitpid(std::exchange(child_, -1), &result, 0);
    return WIFEXITED(result) && WEXITSTATUS(result) == 0;
  }

 private:
  pid_t child_;
};

bool WaitUntil(const std::function<bool()>& isTrue) {
  const auto end = steady_clock::now() + std::chrono::seconds{60};
  while (!isTrue() && steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::microseconds{100});
  }
  return isTrue();
}

FileSettingsService ServiceWithout(Durability durability) {
  return FileSettingsService{
      [durability](const std::string& path) { return OpenExchangedFile(path, {.Survives = durability}); }};
}

// On a busy machine another program may stand still for seconds while it saves. The clock of this service is slow, so
// that it waits for it all the same.
FileSettingsService PatientService() {
  const auto start = steady_clock::now();
  return FileSettingsService{[](const std::string& path) { return OpenExchangedFile(path); },
                             {.Now = [start] { return start + (steady_clock::now() - start) / 60; }}};
}

// A file whose state is known by the number of writes: they set A and B in turn, to values of various
// lengths.
const std::string& Padding() {
  static const std::string padding(20'000, '.');
  return padding;
}

std::string ValueOf(int round) {
  return std::to_string(round) + std::string(static_cast<std::size_t>(round % 5), '!');
}

std::string StateAfter(int writes) {
  return "[S]\r\nA=" + ValueOf((writes + 1) / 2) + "\r\nPadding=" + Padding() +
         "\r\nB=" + ValueOf(writes / 2) + "\r\n[T]\r\n";
}

// The number of writes after which the file looks so.
std::optional<int> WritesIn(const std::string& state) {
  const auto numberBehind = [&state](std::string_view name) {
    const auto at = state.rfind(name);
    return at == std::string::npos ? 0 : std::atoi(state.c_str() + at + name.size());
  };
  const int writes = numberBehind("\nA=") + numberBehind("\nB=");
  return state == StateAfter(writes) ? std::optional{writes} : std::nullopt;
}

bool WriteOnce(FileSettingsService& service, const std::string& path, int number) {
  return service.WriteValue("S", number % 2 == 1 ? "A" : "B", path, ValueOf((number + 1) / 2)).Ok();
}

bool WriteUntil(const std::string& path, Durability durability, std::atomic<int>& done, int end) {
  auto service = ServiceWithout(durability);
  while (done < end) {
    if (!WriteOnce(service, path, done + 1)) {
      return false;
    }
    ++done;
  }
  return true;
}

TEST(WriteStorm, AKilledWriterLeavesTheFileAfterItsLastWriteOrTheNext) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", StateAfter(0));
  const SharedNumber done;
  std::mt19937 random{7};
  constexpr int plenty = 1'000'000;
  for (int round = 0; round < 120; ++round) {
    const Durability durability = round % 2 == 0 ? Durability::EachWrite : Durability::OnFlush;
    const int before = *done;
    ChildProcess writer{[&] { return WriteUntil(path, durability, *done, plenty); }};
    ASSERT_TRUE(WaitUntil([&] { return *done > before; }));
    std::this_thread::sleep_for(std::chrono::microseconds{random() % 6000});
    writer.Kill();
    const auto writes = WritesIn(BytesOf(path));
    ASSERT_TRUE(writes.has_value()) << "round " << round << ": " << BytesOf(path);
    ASSERT_TRUE(*writes == *done || *writes == *done + 1) << *writes << " but " << *done << " had returned";
    *done = *writes;
  }
  EXPECT_GE(*done, 120);
  EXPECT_TRUE(WriteUntil(path, Durability::OnFlush, *done, *done + 1));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"file.ini"}) << "nothing is left behind for ever";
}

TEST(WriteStorm, WhatAKilledWriterLeavesBehindGoesAwayWithTheNextOne) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", StateAfter(0));
  const SharedNumber done;
  for (int round = 1; round <= 100 && folder.Names().size() < 2; ++round) {
    ChildProcess writer{[&] { return WriteUntil(path, Durability::OnFlush, *done, 1'000'000); }};
    ASSERT_TRUE(WaitUntil([&] { return *done >= 10 * round; }));
    writer.Kill();
  }
  *done = WritesIn(BytesOf(path)).value();
  ASSERT_EQ(folder.Names().size(), 2U);
  EXPECT_TRUE(WriteUntil(path, Durability::OnFlush, *done, *done + 3));
  EXPECT_EQ(BytesOf(path), StateAfter(*done));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"file.ini"});
}

// Bit by bit, so that writes happen while it reads.
std::string ReadSlowly(const std::string& path, std::size_t step) {
  std::ifstream file{path, std::ios::binary};
  file.rdbuf()->pubsetbuf(nullptr, 0);
  std::string bytes;
  std::string part(step, '\0');
  while (file.read(part.data(), static_cast<std::streamsize>(step)) || file.gcount() > 0) {
    bytes.append(part, 0, static_cast<std::size_t>(file.gcount()));
    std::this_thread::yield();
  }
  return bytes;
}

TEST(WriteStorm, AReaderAlwaysSeesAWholeStateAndNeverAnOldOne) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", StateAfter(0));
  const SharedNumber done;
  ChildProcess writer{[&] { return WriteUntil(path, Durability::OnFlush, *done, 1'000'000); }};
  int reads = 0;
  for (const auto end = steady_clock::now() + std::chrono::milliseconds{800}; steady_clock::now() < end;
       ++reads) {
    const int before = *done;
    const std::string state = reads % 2 == 0 ? BytesOf(path) : ReadSlowly(path, 1024);
    const auto writes = WritesIn(state);
    ASSERT_TRUE(writes.has_value()) << "read " << reads << ": " << state;
    ASSERT_GE(*writes, before);
    ASSERT_LE(*writes, *done + 1);
  }
  EXPECT_GT(reads, 10);
  EXPECT_GT(*done, reads / 100);
}

bool WriteOwnKey(const std::string& path, const std::string& key, std::atomic<int>& waiting) {
  FileSettingsService service = PatientService();
  --waiting;
  while (waiting > 0) {
    std::this_thread::yield();
  }
  for (int number = 1; number <= 300; ++number) {
    const std::string value = ValueOf(number);
    if (!service.WriteValue("S", key, path, value).Ok() || service.ReadValue("S", key, path, "") != value) {
      return false;
    }
  }
  return true;
}

TEST(WriteStorm, TwoProgramsThatWriteAtTheSameTimeLoseNothing) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", "[S]\nfirst=0\nsecond=0\n");
  const SharedNumber waiting;
  *waiting = 2;
  ChildProcess first{[&] { return WriteOwnKey(path, "first", *waiting); }};
  ChildProcess second{[&] { return WriteOwnKey(path, "second", *waiting); }};
  EXPECT_TRUE(first.Succeeded());
  EXPECT_TRUE(second.Succeeded());
  EXPECT_EQ(BytesOf(path), "[S]\nfirst=300\nsecond=300\n");
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"file.ini"});
}

// A storm lasts until the other program has done its part and ours has written often enough to meet it: on a busy
// machine either may be the slower one.
bool StormGoesOn(const std::atomic<int>& done, int end, const std::atomic<int>& writes) {
  return done < end || writes <= 20;
}

// It replaces the file by one of its own, without regard to what others do in the meantime.
bool ReplaceAgainAndAgain(const TemporaryFolder& folder, std::atomic<int>& done, int end,
                          const std::atomic<int>& writes) {
  while (StormGoesOn(done, end, writes)) {
    folder.PutByRename("file.ini", "[S]\ntheirs=" + std::to_string(done + 1) + "\n");
    ++done;
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  return true;
}

TEST(WriteStorm, ReplacementsByAnotherProgramAreNeverOverwritten) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", "[S]\ntheirs=0\n");
  const SharedNumber done;
  const SharedNumber writes;
  constexpr int replacements = 500;
  ChildProcess other{[&] { return ReplaceAgainAndAgain(folder, *done, replacements, *writes); }};
  FileSettingsService service = PatientService();
  while (StormGoesOn(*done, replacements, *writes)) {
    const int before = *done;
    ASSERT_TRUE(service.WriteValue("S", "ours", path, std::to_string(++*writes)).Ok());
    ASSERT_GE(std::stoi(service.ReadValue("S", "theirs", path, "-1").value()), before);
  }
  EXPECT_TRUE(other.Succeeded());
  ASSERT_TRUE(service.WriteValue("S", "ours", path, "last").Ok());
  EXPECT_EQ(BytesOf(path), "[S]\ntheirs=" + std::to_string(*done) + "\nours=last\n");
}

std::string SavedText(int number) {
  return "[S]\ntheirs=" + std::to_string(number) + "\npadding=" + Padding() + "\n";
}

// Other programs that save the file in their own ways, each with its pauses.
void SaveInPlace(const std::string& path, const std::string& text, std::mt19937& random) {
  const int file = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  std::this_thread::sleep_for(std::chrono::microseconds{random() % 10'000});
  const std::size_t half = text.size() / 2;
  const bool isBegun = ::write(file, text.data(), half) == static_cast<ssize_t>(half);
  std::this_thread::sleep_for(std::chrono::microseconds{random() % 1000});
  const bool isDone = ::write(file, text.data() + half, text.size() - half) > 0;
  ::close(file);
  if (!isBegun || !isDone) {
    std::abort();
  }
}

void MoveAwayAndSave(const std::string& path, const std::string& text, std::mt19937& random) {
  std::filesystem::rename(path, path + "~");
  std::this_thread::sleep_for(std::chrono::microseconds{random() % 5000});
  std::ofstream{path + ".new", std::ios::binary} << text;
  std::filesystem::rename(path + ".new", path);
}

using Save = void (*)(const std::string&, const std::string&, std::mt19937&);

bool SaveAgainAndAgain(Save save, const std::string& path, std::atomic<int>& done, int end,
                       const std::atomic<int>& writes) {
  std::mt19937 random{11};
  while (StormGoesOn(done, end, writes)) {
    save(path, SavedText(done + 1), random);
    ++done;
    std::this_thread::sleep_for(std::chrono::microseconds{random() % 3000});
  }
  return true;
}

class SavingStorm : public testing::TestWithParam<Save> {};

INSTANTIATE_TEST_SUITE_P(WriteStorm, SavingStorm, testing::Values(&SaveInPlace, &MoveAwayAndSave),
                         [](const auto& way) { return way.index == 0 ? "InPlace" : "ByMovingAway"; });

TEST_P(SavingStorm, WhatAnotherProgramSavesIsNeverLostAndNeverTakenForAnEmptyFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("file.ini", SavedText(0));
  const SharedNumber done;
  const SharedNumber writes;
  constexpr int saves = 300;
  FileSettingsService service = PatientService();
  ASSERT_EQ(service.ReadValue("S", "theirs", path, "none"), "0");
  ChildProcess other{[&] { return SaveAgainAndAgain(GetParam(), path, *done, saves, *writes); }};
  while (StormGoesOn(*done, saves, *writes)) {
    const int before = *done;
    ASSERT_TRUE(service.WriteValue("S", "ours", path, std::to_string(++*writes)).Ok())
        << service.FailureReason();
    const auto theirs = service.ReadValue("S", "theirs", path, "none");
    ASSERT_TRUE(theirs.has_value()) << service.FailureReason();
    ASSERT_GE(std::atoi(theirs->c_str()), before) << *theirs;
  }
  EXPECT_TRUE(other.Succeeded());
  ASSERT_TRUE(service.WriteValue("S", "ours", path, "last").Ok());
  EXPECT_EQ(BytesOf(path), SavedText(*done) + "ours=last\n");
  EXPECT_EQ(service.TakeRescued(), std::vector<std::string>{});
}

}  // namespace
}  // namespace zolvane
