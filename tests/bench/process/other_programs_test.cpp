// A configuration that other programs hold, lock or save while the bench runs.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "bench/bench_process.h"

namespace zolvane {
namespace {

TEST_F(Bench, AConfigurationThatIsOpenForWritingElsewhereIsNotWritten) {
  const Descriptor other{::open(Folder.Path("Zolvane.ini").c_str(), O_RDWR | O_CLOEXEC)};
  const auto result = Run({"--quiet", "select", "cboDeviceType", "Beta"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Errors.find("another program has it open for writing"), std::string::npos)
      << result.Errors;
  EXPECT_EQ(Configuration(), configText);
}

// The lock of a writer that was stopped.
class StoppedWriter {
 public:
  explicit StoppedWriter(const std::string& folder)
      : folder_{::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)} {
    EXPECT_EQ(::flock(folder_.Number(), LOCK_EX), 0);
  }

 private:
  Descriptor folder_;
};

TEST_F(Bench, ALockOfAStoppedWriterIsWaitedForTenSeconds) {
  const StoppedWriter stopped{Folder.Path()};
  const auto begin = std::chrono::steady_clock::now();
  const auto result = Run({"--quiet", "select", "cboDeviceType", "Beta"});
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds{10});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Errors.find("the lock of its folder for ten seconds"), std::string::npos) << result.Errors;
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, AnInterruptEndsTheWaitForALock) {
  const StoppedWriter stopped{Folder.Path()};
  const auto begin = std::chrono::steady_clock::now();
  const Descriptor nothing{::open("/dev/null", O_RDWR | O_CLOEXEC)};
  Process bench{ZOLVANE_BENCH_PATH,
                {"--folder", Folder.Path(), "select", "cboDeviceType", "Beta"},
                {.Input = nothing.Number(), .Output = nothing.Number(), .Errors = nothing.Number()}};
  ASSERT_TRUE(bench.WaitUntilCatches(SIGINT));
  bench.Signal(SIGINT);
  EXPECT_EQ(bench.WaitUntil(begin + processDeadline), 1);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{9});
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, AWriteThatFailsIsToldAndChangesNothing) {
  const auto result = Run({"tick", "chkTipSensor", "1"}, {.InChild = [] {
                            const ::rlimit limit{.rlim_cur = 40, .rlim_max = 40};
                            ::setrlimit(RLIMIT_FSIZE, &limit);
                          }});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "tick chkTipSensor 1: failed (1 value not written)\n");
  EXPECT_NE(
      result.Errors.find("zolvane-bench: [DeviceType] SensorEnableTipsInstalled could not be written to \"" +
                         Folder.Path("Zolvane.ini") + "\""),
      std::string::npos)
      << result.Errors;
  EXPECT_EQ(Configuration(), configText);
}

// ---- Editors ----

// An editor that saves the configuration again and again while the bench runs, always the same.
class Editor {
 public:
  explicit Editor(std::function<void()> save)
      : thread_{[this, save = std::move(save)] {
          while (!isStopped_) {
            save();
            ++saves_;
          }
        }} {}
  ~Editor() {
    isStopped_ = true;
    thread_.join();
  }

  int Saves() const { return saves_; }

 private:
  std::atomic<bool> isStopped_ = false;
  std::atomic<int> saves_ = 0;
  std::thread thread_;
};

constexpr std::chrono::milliseconds editorsPace{10};

class BesideAnEditor : public Bench {
 protected:
  BesideAnEditor() {
    EXPECT_EQ(Run({"--quiet", "page"}).Status, 0);  // what the page stores by itself is there from now on
    Text = Configuration();
  }

  // Runs the bench some times, and until the editor has saved some times in between, however busy the machine is.
  void RunBeside(const Editor& editor, const std::function<void(const ProcessResult&)>& check) const {
    constexpr int enough = 20;
    constexpr int tooMany = 1000;
    constexpr int savesInBetween = 5;
    for (int run = 0; run < enough || editor.Saves() <= savesInBetween; ++run) {
      ASSERT_LT(run, tooMany) << "after " << editor.Saves() << " saves";
      check(Run({"--quiet", "page"}));
    }
  }

  std::string Text;
};

TEST_F(BesideAnEditor, NothingIsLostWhenItEmptiesTheFileBeforeItSaves) {
  {
    const Editor editor{[this] {
      Descriptor file{::open(Folder.Path("Zolvane.ini").c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC)};
      std::this_thread::sleep_for(editorsPace);
      EXPECT_EQ(::write(file.Number(), Text.data(), Text.size()), static_cast<ssize_t>(Text.size()));
      file.Close();
      std::this_thread::sleep_for(editorsPace);
    }};
    RunBeside(editor, [](const auto& result) { EXPECT_EQ(result.Status, 0) << result.Errors; });
  }
  EXPECT_EQ(Configuration(), Text);
}

TEST_F(BesideAnEditor, NothingIsLostWhenItMovesTheFileAwayBeforeItSaves) {
  {
    const Editor editor{[this] {
      std::filesystem::rename(Folder.Path("Zolvane.ini"), Folder.Path("Zolvane.ini~"));
      std::this_thread::sleep_for(editorsPace);
      Folder.PutByRename("Zolvane.ini", Text);
      std::this_thread::sleep_for(editorsPace);
    }};
    RunBeside(editor, [](const auto& result) {
      // Before the run began, or between its first look and its first reading.
      const bool wasMissingAtFirst =
          result.Status == 2 && (result.Errors.find("does not exist") != std::string::npos ||
                                 result.Errors.find("cannot be read") != std::string::npos);
      EXPECT_TRUE(result.Status == 0 || wasMissingAtFirst) << result.Errors;
    });
  }
  EXPECT_EQ(Configuration(), Text);
}

}  // namespace
}  // namespace zolvane
