#include "files/file_settings_service.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "files/exchanged_file.h"
#include "support/temporary_folder.h"
#include "support/writer_lock.h"

namespace zolvane {
namespace {

using Pieces = std::vector<std::string>;

// A file that another program changes at the worst moment: after the service has looked at it for the last
// time before it writes.
class InterruptedFile : public ExchangedFile {
 public:
  InterruptedFile(std::unique_ptr<ExchangedFile> file, std::function<void()>& beforeWrite)
      : file_{std::move(file)}, beforeWrite_{beforeWrite} {}

  bool IsCurrent() override { return file_->IsCurrent(); }
  FileContent Read() override { return file_->Read(); }
  WriteOutcome Write(std::string_view text, const Splice& change) override {
    if (const auto interrupt = std::exchange(beforeWrite_, nullptr)) {
      interrupt();
    }
    return file_->Write(text, change);
  }
  Status Flush() override { return file_->Flush(); }

 private:
  std::unique_ptr<ExchangedFile> file_;
  std::function<void()>& beforeWrite_;
};

std::string Read(FileSettingsService& service, const std::string& path, std::string_view key) {
  return service.ReadValue("A", key, path, "none").value();
}

TEST(FileSettingsService, ReadsAndWritesAFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\r\nx=1\r\n\r\n[B]\r\n");
  FileSettingsService service;
  EXPECT_EQ(Read(service, path, "x"), "1");
  EXPECT_TRUE(service.WriteValue("A", "x", path, "22").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\r\nx=22\r\n\r\n[B]\r\n");
  EXPECT_TRUE(service.WriteValue("A", "y", path, "3").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\r\nx=22\r\ny=3\r\n\r\n[B]\r\n");
  EXPECT_TRUE(service.WriteValue("C", "z", path, "4").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\r\nx=22\r\ny=3\r\n\r\n[B]\r\n[C]\r\nz=4\r\n");
  EXPECT_TRUE(service.AppendBlankLine(path).Ok());
  EXPECT_EQ(BytesOf(path), "[A]\r\nx=22\r\ny=3\r\n\r\n[B]\r\n[C]\r\nz=4\r\n\r\n");
  EXPECT_TRUE(service.Flush().Ok());
}

TEST(FileSettingsService, AMissingFileGivesTheFallback) {
  const TemporaryFolder folder;
  FileSettingsService service;
  EXPECT_EQ(service.ReadValue("A", "x", folder.Path("missing.ini"), "fallback"), "fallback");
  EXPECT_EQ(service.ReadValue("A", "x", folder.Path("missing/missing.ini"), "fallback"), "fallback");
  EXPECT_EQ(service.ReadValue("A", "x", "", "fallback"), "fallback");
  EXPECT_EQ(service.ReadValue("A", "x", std::string_view{"a\0b", 3}, "fallback"), std::nullopt);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(FileSettingsService, AnEmptyValueIsNotReplacedByTheFallback) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=\n");
  FileSettingsService service;
  EXPECT_EQ(service.ReadValue("A", "x", path, "fallback"), "");
}

TEST(FileSettingsService, AMissingFileIsCreatedByTheFirstWrite) {
  const TemporaryFolder folder;
  FileSettingsService service;
  EXPECT_TRUE(service.WriteValue("A", "x", folder.Path("new.ini"), "1").Ok());
  EXPECT_TRUE(service.WriteValue("A", "y", folder.Path("new.ini"), "2").Ok());
  EXPECT_EQ(BytesOf(folder.Path("new.ini")), "[A]\r\nx=1\r\ny=2\r\n");
  EXPECT_TRUE(service.AppendBlankLine(folder.Path("blank.ini")).Ok());
  EXPECT_EQ(BytesOf(folder.Path("blank.ini")), "\r\n");
}

TEST(FileSettingsService, AFileThatCannotBeCreatedFailsTheWrite) {
  const TemporaryFolder folder;
  FileSettingsService service;
  EXPECT_FALSE(service.WriteValue("A", "x", folder.Path("missing/new.ini"), "1").Ok());
  EXPECT_FALSE(service.WriteValue("A", "x", "", "1").Ok());
  std::filesystem::create_directory(folder.Path("missing"));
  EXPECT_TRUE(service.WriteValue("A", "x", folder.Path("missing/new.ini"), "1").Ok());
}

TEST(FileSettingsService, AFolderIsNoFile) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("folder"));
  FileSettingsService service;
  EXPECT_EQ(service.ReadValue("A", "x", folder.Path("folder"), "fallback"), std::nullopt);
  EXPECT_FALSE(service.WriteValue("A", "x", folder.Path("folder"), "1").Ok());
  EXPECT_FALSE(service.AppendBlankLine(folder.Path("folder")).Ok());
  EXPECT_EQ(folder.Names(), Pieces{"folder"});
}

TEST(FileSettingsService, ARefusedWriteChangesNothing) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  FileSettingsService service;
  EXPECT_FALSE(service.WriteValue("A]", "x", path, "2").Ok());
  EXPECT_FALSE(service.WriteValue("A", "a=b", path, "2").Ok());
  EXPECT_FALSE(service.WriteValue("A", "x", path, "2\n3").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
  EXPECT_FALSE(service.WriteValue("A]", "x", folder.Path("new.ini"), "2").Ok());
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

TEST(FileSettingsService, SeveralFilesAreInUseAtOnce) {
  const TemporaryFolder folder;
  const std::string source = folder.Put("source.bak", "[A]\nx=1\ny=2\n");
  const std::string destination = folder.Put("Zolvane.ini", "[A]\n");
  FileSettingsService service;
  for (const char* key : {"x", "y"}) {
    EXPECT_TRUE(service.WriteValue("A", key, destination, Read(service, source, key)).Ok());
  }
  EXPECT_EQ(BytesOf(destination), "[A]\nx=1\ny=2\n");
  EXPECT_EQ(BytesOf(source), "[A]\nx=1\ny=2\n");
}

TEST(FileSettingsService, NothingStaysBesideTheFileWhenTheServiceIsGone) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  {
    FileSettingsService service;
    EXPECT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
    EXPECT_TRUE(service.WriteValue("A", "x", path, "3").Ok());
  }
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

TEST(FileSettingsService, TextsAreSplitAtEveryDelimiter) {
  FileSettingsService service;
  EXPECT_EQ(service.SplitText(",", "a,b"), (Pieces{"a", "b"}));
  EXPECT_EQ(service.SplitText(",", ",a,,b"), (Pieces{"", "a", "", "b"}));
  EXPECT_EQ(service.SplitText("=", "Item1=\"Tall\""), (Pieces{"Item1", "\"Tall\""}));
  EXPECT_EQ(service.SplitText("\r\n", "one\r\ntwo\n"), (Pieces{"one", "two\n"}));
  EXPECT_EQ(service.SplitText(",", "abc"), Pieces{"abc"});
}

TEST(FileSettingsService, AnEmptyTextAndWhatFollowsAFinalDelimiterAreNoPieces) {
  FileSettingsService service;
  EXPECT_EQ(service.SplitText(",", ""), Pieces{});
  EXPECT_EQ(service.SplitText(",", "a,b,"), (Pieces{"a", "b"}));
  EXPECT_EQ(service.SplitText(",", ","), Pieces{""});
  EXPECT_EQ(service.SplitText(",", ",,"), (Pieces{"", ""}));
}

TEST(FileSettingsService, AnEmptyDelimiterSeparatesNothing) {
  FileSettingsService service;
  EXPECT_EQ(service.SplitText("", "abc"), Pieces{"abc"});
}

TEST(ChangesByOtherPrograms, AreSeenByTheNextCall) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  FileSettingsService service;
  EXPECT_EQ(Read(service, path, "x"), "1");
  folder.Put("Zolvane.ini", "[A]\nx=22\n");
  EXPECT_EQ(Read(service, path, "x"), "22");
  folder.PutByRename("Zolvane.ini", "[A]\nx=33\n");
  EXPECT_EQ(Read(service, path, "x"), "33");
  folder.Put("Zolvane.ini", "[A]\nx=44\n");
  EXPECT_EQ(Read(service, path, "x"), "44");
}

TEST(ChangesByOtherPrograms, AreNotOverwrittenByTheNextWrite) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  FileSettingsService service;
  EXPECT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
  folder.Put("Zolvane.ini", "[A]\nx=2\nmine=1\n");
  EXPECT_TRUE(service.WriteValue("A", "x", path, "3").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=3\nmine=1\n");
  folder.PutByRename("Zolvane.ini", "; new\n[A]\nmine=2\n");
  EXPECT_TRUE(service.WriteValue("A", "x", path, "4").Ok());
  EXPECT_EQ(BytesOf(path), "; new\n[A]\nmine=2\nx=4\n");
}

TEST(ChangesByOtherPrograms, AChangeOfTheSameSizeIsSeenEvenRightAfterOurOwn) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=0\n");
  FileSettingsService service;
  for (int round = 0; round < 100; ++round) {
    ASSERT_TRUE(service.WriteValue("A", "x", path, std::to_string(round % 4)).Ok());
    const std::string other = std::to_string(5 + round % 5);
    folder.Put("Zolvane.ini", "[A]\nx=" + other + "\n");
    ASSERT_EQ(Read(service, path, "x"), other);
  }
}

TEST(ChangesByOtherPrograms, OneRightAfterTheOtherAreSeen) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("Zolvane.ini");
  FileSettingsService service;
  for (int round = 0; round < 500; ++round) {
    const std::string value = std::to_string(round % 10);
    folder.Put("Zolvane.ini", "[A]\nx=" + value + "\n");
    ASSERT_EQ(Read(service, path, "x"), value);
  }
}

TEST(ChangesByOtherPrograms, BetweenTheLookAtTheFileAndTheWriteSurvive) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("Zolvane.ini");
  std::function<void()> interrupt;
  FileSettingsService service{[&interrupt](const std::string& file) {
    return std::make_unique<InterruptedFile>(OpenExchangedFile(file), interrupt);
  }};
  interrupt = [&] { folder.Put("Zolvane.ini", "[A]\nmine=1\n"); };
  EXPECT_TRUE(service.WriteValue("A", "x", path, "1").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nmine=1\nx=1\n");
  interrupt = [&] { folder.Put("Zolvane.ini", "[A]\nmine=2\nx=1\n"); };
  EXPECT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nmine=2\nx=2\n");
  interrupt = [&] { folder.PutByRename("Zolvane.ini", "[A]\nmine=3\nx=1\n"); };
  EXPECT_TRUE(service.WriteValue("A", "x", path, "3").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nmine=3\nx=3\n");
  interrupt = [&] { folder.PutByRename("Zolvane.ini", "[A]\nx=5\n"); };
  EXPECT_TRUE(service.WriteValue("A", "x", path, "5").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=5\n");
}

TEST(ChangesByOtherPrograms, MayMakeTheFileUnfitForAWriteThatWasPlanned) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  std::function<void()> interrupt;
  FileSettingsService service{[&interrupt](const std::string& file) {
    return std::make_unique<InterruptedFile>(OpenExchangedFile(file), interrupt);
  }};
  interrupt = [&] { folder.Put("Zolvane.ini", "\xFF\xFE[A]"); };
  EXPECT_FALSE(service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "\xFF\xFE[A]");
}

TEST(ChangesByOtherPrograms, TwoServicesOnOneFileSeeEachOther) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\n");
  {
    FileSettingsService first;
    FileSettingsService second;
    for (int round = 1; round <= 20; ++round) {
      ASSERT_TRUE(first.WriteValue("A", "x", path, std::to_string(round)).Ok());
      ASSERT_EQ(Read(second, path, "x"), std::to_string(round));
      ASSERT_TRUE(second.WriteValue("A", "y", path, std::to_string(round)).Ok());
      ASSERT_EQ(Read(first, path, "y"), std::to_string(round));
    }
  }
  EXPECT_EQ(BytesOf(path), "[A]\nx=20\ny=20\n");
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

TEST(ChangesByOtherPrograms, AtTheSameTimeAsOursAreNotLost) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nfirst=0\nsecond=0\n");
  constexpr int writes = 100;
  const auto writeOwnKey = [&](std::string_view key) {
    FileSettingsService service;
    for (int number = 1; number <= writes; ++number) {
      const bool isWritten = service.WriteValue("A", key, path, std::to_string(number)).Ok();
      EXPECT_TRUE(isWritten) << service.FailureReason();
    }
  };
  std::thread first{writeOwnKey, "first"};
  writeOwnKey("second");
  first.join();
  EXPECT_EQ(BytesOf(path), "[A]\nfirst=100\nsecond=100\n");
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

TEST(FilesOfOthers, FilesWithTheNamesOfOursAreNeitherChangedNorRemoved) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  const Pieces names{".Zolvane.ini.bench-copy", "Zolvane.ini.bench-copy", "Zolvane.ini.bench-lock"};
  for (const std::string& name : names) {
    folder.Put(name, "somebody's");
  }
  {
    FileSettingsService service;
    EXPECT_TRUE(service.WriteValue("A", "x", path, "2").Ok());
    EXPECT_TRUE(service.WriteValue("A", "x", path, "33").Ok());
  }
  for (const std::string& name : names) {
    EXPECT_EQ(folder.Read(name), "somebody's");
  }
  EXPECT_EQ(folder.Names().size(), names.size() + 1);
  EXPECT_EQ(BytesOf(path), "[A]\nx=33\n");
}

using std::chrono::milliseconds;
using std::chrono::seconds;

// Time that passes only while somebody waits, and what happens meanwhile.
class TestTime {
 public:
  Waiting Rules() {
    return {.Now = [this] { return now_; },
            .Rest =
                [this](Waiting::Clock::duration time) {
                  now_ += time;
                  if (atRest_) {
                    atRest_();
                  }
                },
            .IsUnwanted = [this] { return IsInterrupted; }};
  }
  milliseconds Passed() const { return std::chrono::duration_cast<milliseconds>(now_.time_since_epoch()); }
  void AtRest(std::function<void()> event) { atRest_ = std::move(event); }
  void After(milliseconds time, std::function<void()> event) {
    atRest_ = [this, end = now_ + time, event = std::move(event)]() mutable {
      if (event && now_ >= end) {
        std::exchange(event, nullptr)();
      }
    };
  }

  bool IsInterrupted = false;

 private:
  Waiting::Clock::time_point now_;
  std::function<void()> atRest_;
};

struct WaitingService {
  TestTime Time;
  FileSettingsService Service{FileSettingsService::OpenFile, Time.Rules()};
};

TEST(AFileThatHadContent, IsWaitedForWhenItIsGone) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  ASSERT_EQ(Read(waiting.Service, path, "x"), "1");
  std::filesystem::rename(path, folder.Path("Zolvane.ini~"));
  waiting.Time.After(milliseconds{500}, [&] { folder.Put("Zolvane.ini", "[A]\nx=2\n"); });
  EXPECT_EQ(Read(waiting.Service, path, "x"), "2");
  folder.Put("Zolvane.ini", "");
  waiting.Time.After(milliseconds{500}, [&] { folder.Put("Zolvane.ini", "[A]\nx=3\n"); });
  EXPECT_EQ(Read(waiting.Service, path, "x"), "3");
  EXPECT_LT(waiting.Time.Passed(), seconds{2});
}

TEST(AFileThatHadContent, IsAFailedReadWhenItStaysAway) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  FileSettingsService& service = waiting.Service;
  ASSERT_EQ(Read(service, path, "x"), "1");
  std::filesystem::remove(path);
  EXPECT_EQ(service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_EQ(service.FailureReason(), "it is missing, and had content before");
  EXPECT_EQ(waiting.Time.Passed(), longestAbsence);
  EXPECT_EQ(service.ReadValue("A", "y", path, "none"), std::nullopt);
  EXPECT_FALSE(service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_FALSE(service.AppendBlankLine(path).Ok());
  EXPECT_EQ(waiting.Time.Passed(), longestAbsence) << "the operation waits once";
  EXPECT_TRUE(folder.Names().empty());
  EXPECT_TRUE(service.Flush().Ok());
  EXPECT_EQ(service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_EQ(waiting.Time.Passed(), 2 * longestAbsence) << "the next operation waits again";
  folder.Put("Zolvane.ini", "");
  EXPECT_EQ(service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_EQ(service.FailureReason(), "it is empty, and had content before");
  EXPECT_FALSE(service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "");
  folder.Put("Zolvane.ini", "[A]\nx=3\n");
  EXPECT_TRUE(service.WriteValue("A", "y", path, "4").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=3\ny=4\n");
}

TEST(AFileThatHadContent, IsKnownToEveryServiceOfTheProcess) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ASSERT_EQ(CheckUsable(path), std::nullopt);
  std::filesystem::remove(path);
  WaitingService waiting;
  EXPECT_EQ(waiting.Service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_FALSE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_TRUE(folder.Names().empty());
}

TEST(AFileThatHadContent, IsForgottenWithItsHost) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  {
    WaitingService earlier;
    ASSERT_EQ(Read(earlier.Service, path, "x"), "1");
  }
  folder.Put("Zolvane.ini", "");
  ForgetSeenFiles();
  WaitingService waiting;
  EXPECT_EQ(Read(waiting.Service, path, "x"), "none");
}

TEST(AFileThatHadContent, IsNotTakenForTheTextThatItHasWhenItIsSavedAsUtf16) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  const std::string_view utf16{"[\0A\0]\0\n\0x\0=\0", 12};
  WaitingService waiting;
  ASSERT_EQ(Read(waiting.Service, path, "x"), "1");
  folder.Put("Zolvane.ini", utf16);
  EXPECT_EQ(waiting.Service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_FALSE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), utf16);
}

// An open file that looks as if a call had failed once.
class FailingFile : public ExchangedFile {
 public:
  FailingFile(const std::string& path, int& failures) : file_{OpenExchangedFile(path)}, failures_{failures} {}

  bool IsCurrent() override { return failures_ == 0 && file_->IsCurrent(); }
  FileContent Read() override {
    if (failures_ == 0) {
      return file_->Read();
    }
    --failures_;
    return {};
  }
  WriteOutcome Write(std::string_view text, const Splice& change) override {
    return file_->Write(text, change);
  }
  Status Flush() override { return file_->Flush(); }

 private:
  std::unique_ptr<ExchangedFile> file_;
  int& failures_;
};

TEST(AFileThatHadContent, IsNotEmptyBecauseACallFails) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  TestTime time;
  int failures = 0;
  FileSettingsService service{
      [&failures](const std::string& file) { return std::make_unique<FailingFile>(file, failures); },
      time.Rules()};
  ASSERT_EQ(Read(service, path, "x"), "1");
  failures = 1;
  EXPECT_EQ(Read(service, path, "x"), "1");
  failures = 3;
  EXPECT_TRUE(service.WriteValue("A", "y", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\ny=2\n");
  failures = 1'000'000;
  EXPECT_EQ(service.ReadValue("A", "x", path, "none"), std::nullopt);
  EXPECT_EQ(service.FailureReason(), "it cannot be read");
}

TEST(AFileThatIsOpenForWritingElsewhere, IsWaitedForAndNotExchanged) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  ASSERT_EQ(Read(waiting.Service, path, "x"), "1");
  std::ofstream editor{path, std::ios::binary | std::ios::trunc};
  waiting.Time.After(milliseconds{10}, [&] {
    editor << "[A]\nx=5\nmine=1\n";
    editor.close();
  });
  EXPECT_TRUE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=2\nmine=1\n");
}

TEST(AFileThatIsOpenForWritingElsewhere, FailsTheWriteWhenItStaysSo) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  ASSERT_EQ(Read(waiting.Service, path, "x"), "1");
  const std::fstream editor{path, std::ios::binary | std::ios::in | std::ios::out};
  EXPECT_FALSE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(waiting.Service.FailureReason(), "another program has it open for writing");
  EXPECT_GE(waiting.Time.Passed(), longestUse);
  EXPECT_LE(waiting.Time.Passed(), longestAbsence + longestUse);
  EXPECT_FALSE(waiting.Service.WriteValue("A", "y", path, "2").Ok());
  EXPECT_LE(waiting.Time.Passed(), 2 * longestAbsence + longestUse) << "only the fresh file is awaited again";
  EXPECT_EQ(Read(waiting.Service, path, "x"), "1");
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
  EXPECT_EQ(folder.Names(), Pieces{"Zolvane.ini"});
}

// What keeps a file from being written, one after the other.
struct Obstruction {
  std::deque<WriteOutcome> Obstacles;
  int TimesRead = 0;
};

class ObstructedFile : public ExchangedFile {
 public:
  ObstructedFile(const std::string& path, Obstruction& obstruction)
      : file_{OpenExchangedFile(path)}, obstruction_{obstruction} {}

  bool IsCurrent() override { return file_->IsCurrent(); }
  FileContent Read() override {
    ++obstruction_.TimesRead;
    return file_->Read();
  }
  WriteOutcome Write(std::string_view text, const Splice& change) override {
    auto& obstacles = obstruction_.Obstacles;
    if (obstacles.empty()) {
      return file_->Write(text, change);
    }
    const auto obstacle = obstacles.front();
    obstacles.pop_front();
    return obstacle;
  }
  Status Flush() override { return file_->Flush(); }

 private:
  std::unique_ptr<ExchangedFile> file_;
  Obstruction& obstruction_;
};

struct ObstructedService {
  Obstruction Obstructed;
  TestTime Time;
  FileSettingsService Service{
      [this](const std::string& file) { return std::make_unique<ObstructedFile>(file, Obstructed); },
      Time.Rules()};
};

// Two hundred rests take 1.7 seconds.
TEST(AFileThatIsOpenForWritingElsewhere, IsWaitedForAnewWhenItHasChanged) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ObstructedService waiting;
  auto& obstacles = waiting.Obstructed.Obstacles;
  obstacles.assign(200, WriteOutcome::InUse);
  obstacles.push_back(WriteOutcome::Changed);
  obstacles.insert(obstacles.end(), 200, WriteOutcome::InUse);
  EXPECT_TRUE(waiting.Service.WriteValue("A", "x", path, "2").Ok()) << waiting.Service.FailureReason();
  EXPECT_GT(waiting.Time.Passed(), longestUse);
  EXPECT_EQ(BytesOf(path), "[A]\nx=2\n");
}

TEST(ALockOfAnotherProgram, IsWaitedForWithoutReadingTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  ObstructedService waiting;
  waiting.Obstructed.Obstacles.assign(200, WriteOutcome::Locked);
  EXPECT_TRUE(waiting.Service.WriteValue("A", "x", path, "2").Ok()) << waiting.Service.FailureReason();
  EXPECT_EQ(waiting.Obstructed.TimesRead, 1);
}

TEST(AFileThatIsOpenForWritingElsewhere, IsReadWhenItIsWhole) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("Zolvane.ini");
  std::ofstream editor{path, std::ios::binary};
  WaitingService waiting;
  waiting.Time.After(milliseconds{10}, [&] {
    editor << "[A]\nx=5\n";
    editor.close();
  });
  EXPECT_EQ(Read(waiting.Service, path, "x"), "5");
}

TEST(ALockOfAnotherProgram, IsWaitedForTenSeconds) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  auto other = std::make_unique<LockOfAnotherWriter>(path);
  ASSERT_TRUE(other->IsHeld());
  EXPECT_EQ(Read(waiting.Service, path, "x"), "1");
  EXPECT_FALSE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(waiting.Service.FailureReason(),
            "another program has been holding the lock of its folder for ten seconds");
  EXPECT_EQ(waiting.Time.Passed(), seconds{10});
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
  EXPECT_FALSE(waiting.Service.WriteValue("A", "y", path, "2").Ok());
  EXPECT_FALSE(waiting.Service.AppendBlankLine(path).Ok());
  EXPECT_EQ(waiting.Time.Passed(), seconds{10}) << "the operation waits once";
  EXPECT_TRUE(waiting.Service.Flush().Ok());
  waiting.Time.After(seconds{9}, [&] { other.reset(); });
  EXPECT_TRUE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(BytesOf(path), "[A]\nx=2\n");
}

TEST(ALockOfAnotherProgram, IsNotWaitedForByAUserWhoWantsToStop) {
  const TemporaryFolder folder;
  const std::string path = folder.Put("Zolvane.ini", "[A]\nx=1\n");
  WaitingService waiting;
  auto other = std::make_unique<LockOfAnotherWriter>(path);
  ASSERT_TRUE(other->IsHeld());
  waiting.Time.After(milliseconds{300}, [&] { waiting.Time.IsInterrupted = true; });
  EXPECT_FALSE(waiting.Service.WriteValue("A", "x", path, "2").Ok());
  EXPECT_EQ(waiting.Service.FailureReason(), "the wait for another program was interrupted");
  EXPECT_LT(waiting.Time.Passed(), milliseconds{400});
}

TEST(CheckUsable, AnOrdinaryFileIs) {
  const TemporaryFolder folder;
  EXPECT_EQ(CheckUsable(folder.Put("Zolvane.ini", "[A]\n")), std::nullopt);
  EXPECT_EQ(CheckUsable(folder.Put("empty.ini", "")), std::nullopt);
  EXPECT_EQ(CheckUsable(folder.Put("odd.ini", "\xFF")), std::nullopt);
}

TEST(CheckUsable, AMissingFileIsWhereItCanBeCreated) {
  const TemporaryFolder folder;
  EXPECT_EQ(CheckUsable(folder.Path("new.ini")), std::nullopt);
  EXPECT_EQ(CheckUsable(folder.Path("new.ini"), FileUse::ReadOnly), "does not exist");
  EXPECT_EQ(CheckUsable(folder.Path("missing/new.ini")), "is in a folder that does not exist");
  EXPECT_EQ(CheckUsable(folder.Put("file", "") + "/new.ini"), "cannot be reached");
}

TEST(CheckUsable, AFolderAndATextOf16BitUnitsAreNot) {
  const TemporaryFolder folder;
  const std::string utf16 =
      "cannot be used: it is a UTF-16 text; it has to be saved as UTF-8 or Windows-1252";
  EXPECT_EQ(CheckUsable(folder.Path("")), "is a folder");
  EXPECT_EQ(CheckUsable(folder.Put("little.ini", "\xFF\xFE[")), utf16);
  EXPECT_EQ(CheckUsable(folder.Put("big.ini", "\xFE\xFF[")), utf16);
  EXPECT_EQ(CheckUsable(folder.Put("little without mark.ini", std::string_view{"[\0A\0]\0", 6})), utf16);
  EXPECT_EQ(CheckUsable(folder.Put("big without mark.ini", std::string_view{"\0[\0A\0]", 6})), utf16);
}

}  // namespace
}  // namespace zolvane
