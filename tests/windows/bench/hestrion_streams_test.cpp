// Where HestrionBench says what it has to say: streams, a console, or a box.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "win32/text.h"
#include "win32/unique_handle.h"
#include "windows/bench/bench_folder.h"
#include "windows/bench/hestrion_windows.h"
#include "windows/support/child_process.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

TEST(HestrionBench, SaysInABoxWhatNobodyWouldRead) {
  ChildProcess refused{HestrionBenchPath(), {"--folder", "nowhere"}, StartedFrom::Explorer};
  EXPECT_NE(AnswerBoxOf(refused.Id(), IDOK).find("Zolvane.ini"), std::string::npos);
  EXPECT_EQ(refused.Wait(), 2);
  ChildProcess asked{HestrionBenchPath(), {"--help"}, StartedFrom::Explorer};
  EXPECT_NE(AnswerBoxOf(asked.Id(), IDOK).find("--screenshot"), std::string::npos);
  EXPECT_EQ(asked.Wait(), 0);
}

TEST(HestrionBench, SaysInABoxWhatFailedInAWindowThatIsGone) {
  const BenchFolder folder;
  Store(folder.File("job.txt"), "upload\nquery\n");
  const Arguments arguments{"--folder", folder.Text(), "--play", folder.File("job.txt"), "--quit"};
  ChildProcess played{HestrionBenchPath(), arguments, StartedFrom::Explorer};
  const auto said = AnswerBoxOf(played.Id(), IDOK, L"HestrionBench");
  EXPECT_NE(said.find("to upload this information. (Cancel, as nobody answered"), std::string::npos) << said;
  EXPECT_NE(said.find("1 of 2 commands not begun: query"), std::string::npos) << said;
  EXPECT_EQ(played.Wait(), 1);
}

// A console of the test's own, with what is written on it.
class Screen {
 public:
  Screen() : before_{StreamsNow()}, isOpen_{Open()} {}
  ~Screen() {
    FreeConsole();
    for (std::size_t stream = 0; stream < streams.size(); ++stream) {
      SetStdHandle(streams[stream], before_[stream]);
    }
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  bool IsOpen() const { return isOpen_; }

  std::string Text() const {
    const UniqueKernelHandle screen{CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                                nullptr)};
    std::wstring text(10000, L' ');
    DWORD length = 0;
    ReadConsoleOutputCharacterW(screen.Get(), text.data(), static_cast<DWORD>(text.size()), {}, &length);
    text.resize(length);
    text.resize(text.find_last_not_of(L' ') + 1);
    return Utf8(text);
  }

 private:
  static constexpr std::array<DWORD, 3> streams{STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

  static std::vector<HANDLE> StreamsNow() {
    std::vector<HANDLE> now;
    for (const DWORD stream : streams) {
      now.push_back(GetStdHandle(stream));
    }
    return now;
  }

  static bool Open() {
    FreeConsole();
    return AllocConsole() != FALSE;
  }

  // In this order: a console of its own changes the streams.
  std::vector<HANDLE> before_;
  bool isOpen_;
};

TEST(HestrionBench, SaysOnTheConsoleThatItWasStartedFromWhatHasNoStreamToGoTo) {
  const BenchFolder folder;
  Store(folder.File("job.txt"), "upload\n");
  const Screen screen;
  ASSERT_TRUE(screen.IsOpen());
  ChildProcess asked{HestrionBenchPath(), {"--version"}, StartedFrom::Explorer};
  EXPECT_EQ(asked.Wait(), 0);
  EXPECT_NE(screen.Text().find("HestrionBench 1.00.0135"), std::string::npos) << screen.Text();
  ChildProcess refused{HestrionBenchPath(), {"--folder", "nowhere"}, StartedFrom::Explorer};
  EXPECT_EQ(refused.Wait(), 2);
  EXPECT_NE(screen.Text().find(R"(nowhere\Zolvane.ini)"), std::string::npos) << screen.Text();
  ChildProcess played{HestrionBenchPath(),
                      {"--folder", folder.Text(), "--play", folder.File("job.txt"), "--quit"},
                      StartedFrom::Explorer};
  EXPECT_EQ(played.Wait(), 1);
  EXPECT_NE(screen.Text().find("HestrionBench: Upload Calibration Data to Zolvane: "), std::string::npos)
      << screen.Text();
  EXPECT_NE(screen.Text().find("to upload this information. (Cancel, as nobody answered"), std::string::npos)
      << screen.Text();
}

TEST(HestrionBench, LetsNothingOfARunFileSteerTheTerminal) {
  const BenchFolder folder;
  Store(folder.File("job.txt"), "select cboTipType \"\x1b[31mred\"\n");
  const auto result = RunToItsEnd(HestrionBenchPath(),
                                  {"--folder", folder.Text(), "--play", folder.File("job.txt"), "--quit"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find("\\u001b[31mred"), std::string::npos) << result.Errors;
  EXPECT_EQ(result.Errors.find('\x1b'), std::string::npos) << result.Errors;
}

}  // namespace
}  // namespace zolvane
