// HestrionBench as a program: what its arguments do, and what its windows do for the user.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <semaphore>
#include <set>
#include <sstream>

#include "bench/windows/play/player.h"
#include "bench/windows/window/main_window.h"
#include "bench/windows/window/message_window.h"
#include "instrument/links/running_instrument.h"
#include "shell/windows/page/page_layout.h"
#include "win32/text.h"
#include "win32/window_class.h"
#include "windows/support/child_process.h"
#include "windows/support/hosted_page.h"
#include "windows/support/played_session.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

using Arguments = std::vector<std::string>;

// A folder with only a configuration in it, as a user keeps one for the bench.
class Folder {
 public:
  Folder() : path_{ProgramFolder::OfThisRun().Path() / "bench"} {
    std::filesystem::create_directories(path_);
    Reset();
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  void Reset() const {
    Store(path_ / "Zolvane.ini", SampleConfiguration());
    Store(path_ / "old.bak", SampleConfiguration());
    std::filesystem::remove(path_ / "new.bak");
  }

  std::string Text() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  std::string Content(const std::string& name) const { return ContentOf(path_ / name); }

  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator{path_}) {
      files[entry.path().filename().string()] = ContentOf(entry.path());
    }
    return files;
  }

 private:
  std::filesystem::path path_;
};

// ---- Playing, against the bench without windows ----

struct Plan {
  const char* Name;
  Arguments Commands;
  Arguments Options;
  int Status;
};

std::ostream& operator<<(std::ostream& out, const Plan& plan) {
  return out << plan.Name;
}

class HestrionPlays : public testing::TestWithParam<Plan> {
 protected:
  struct Played {
    ProgramResult Result;
    std::vector<std::string> Calls;
    std::string Configuration;
    std::string Backup;
  };

  void StoreCommands() const {
    std::string text;
    for (auto command : GetParam().Commands) {
      if (const auto at = command.find("FOLDER"); at != std::string::npos) {
        command.replace(at, std::strlen("FOLDER"), folder_.Text());
      }
      text += command + "\n";
    }
    Store(folder_.File("commands.txt"), text);
  }

  Played Play(const std::filesystem::path& program, const Arguments& how) const {
    folder_.Reset();
    StoreCommands();
    Arguments arguments{"--folder", folder_.Text(), "--trace-reads", "--trace", folder_.File("trace.jsonl")};
    arguments.insert(arguments.end(), GetParam().Options.begin(), GetParam().Options.end());
    arguments.insert(arguments.end(), how.begin(), how.end());
    Played played{.Result = RunToItsEnd(program, arguments), .Calls = {}, .Configuration = {}, .Backup = {}};
    std::istringstream trace{folder_.Content("trace.jsonl")};
    played.Calls = HostCalls(trace);
    played.Configuration = folder_.Content("Zolvane.ini");
    played.Backup = folder_.Content("new.bak");
    return played;
  }

  Folder folder_;
};

TEST_P(HestrionPlays, TheSameTraceFilesAndStatusAsTheBench) {
  const auto bench = Play(ZolvaneBenchPath(), {"--quiet", "run", folder_.File("commands.txt")});
  const auto host = Play(HestrionBenchPath(), {"--play", folder_.File("commands.txt"), "--quit"});
  EXPECT_EQ(host.Result.Status, GetParam().Status) << host.Result.Errors;
  EXPECT_EQ(bench.Result.Status, GetParam().Status) << bench.Result.Errors;
  ASSERT_FALSE(bench.Calls.empty());
  for (std::size_t call = 0; call < std::min(host.Calls.size(), bench.Calls.size()); ++call) {
    ASSERT_EQ(host.Calls[call], bench.Calls[call]) << "call " << call;
  }
  EXPECT_EQ(host.Calls.size(), bench.Calls.size());
  EXPECT_EQ(host.Configuration, bench.Configuration);
  EXPECT_EQ(host.Backup, bench.Backup);
  EXPECT_FALSE(folder_.Files().contains("HZOCalibrateDevice.dll")) << "put there for the run only";
}

INSTANTIATE_TEST_SUITE_P(
    HestrionBench, HestrionPlays,
    testing::Values(Plan{"EveryOperation",
                         {"query", "upload", "download", "export FOLDER/new.bak", "import FOLDER/old.bak",
                          "select cboTipType #1", "tick chkRFID 2", "page"},
                         {"--yes"},
                         0},
                    Plan{"WithoutAnInstrument", {"query", "upload"}, {"--link", "none", "--yes"}, 1},
                    Plan{"WithTheHostsOwnDialogue", {"query"}, {"--link", "none", "--host-dialog"}, 1},
                    Plan{"AnUploadThatIsCancelled", {"upload", "query"}, {"--answer", "cancel"}, 1},
                    Plan{"AnImportThatIsDeclined", {"import FOLDER/old.bak"}, {"--answer", "no"}, 1},
                    Plan{"NobodyToAnswer", {"download"}, {}, 1},
                    Plan{"AnAnswerWithoutItsButton", {"upload"}, {"--answer", "yes"}, 2},
                    Plan{"AnEntryThatIsNotThere", {"select cboTipType Nothing"}, {}, 2},
                    Plan{"AnExportOntoTheConfiguration", {"export FOLDER/Zolvane.ini"}, {"--yes"}, 1},
                    Plan{"ADialogueThatIsCancelled", {"export"}, {}, 1},
                    Plan{"NoSuchButton", {"press 9", "press -1"}, {}, 0}),
    [](const auto& plan) { return std::string{plan.param.Name}; });

// ---- Arguments that cannot be used ----

struct Misuse {
  const char* Name;
  Arguments Given;
  const char* Complaint;  // a part of it
};

std::ostream& operator<<(std::ostream& out, const Misuse& misuse) {
  return out << misuse.Name;
}

class HestrionRefuses : public testing::TestWithParam<Misuse> {};

TEST_P(HestrionRefuses, MisuseWithStatusTwoBeforeAnythingIsChanged) {
  const Folder folder;
  Store(folder.File("job.txt"), "tick chkRFID 0\nimport " + folder.File("missing.bak") + "\n");
  Store(folder.File("nonsense.txt"), "dance\n");
  const auto before = folder.Files();
  Arguments arguments;
  for (auto argument : GetParam().Given) {
    if (const auto at = argument.find("FOLDER"); at != std::string::npos) {
      argument.replace(at, std::strlen("FOLDER"), folder.Text());
    }
    arguments.push_back(argument);
  }
  const auto result = RunToItsEnd(HestrionBenchPath(), arguments);
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find(GetParam().Complaint), std::string::npos) << result.Errors;
  EXPECT_EQ(folder.Files(), before);
}

INSTANTIATE_TEST_SUITE_P(
    HestrionBench, HestrionRefuses,
    testing::Values(
        Misuse{"AnUnknownOption", {"--dance"}, "--dance"},
        Misuse{"AFolderThatIsNotThere", {"--folder", "FOLDER/nowhere", "--quit"}, "Zolvane.ini"},
        Misuse{
            "ARunFileThatIsNotThere", {"--folder", "FOLDER", "--play", "FOLDER/no.txt", "--quit"}, "no.txt"},
        Misuse{
            "AnUnknownCommand", {"--folder", "FOLDER", "--play", "FOLDER/nonsense.txt", "--quit"}, "dance"},
        Misuse{"AnImportOfNothing",
               {"--folder", "FOLDER", "--play", "FOLDER/job.txt", "--trace", "FOLDER/t", "--quit"},
               "missing.bak"},
        Misuse{"AnUnknownLink", {"--folder", "FOLDER", "--link", "pigeon", "--quit"}, "pigeon"},
        Misuse{"AnUnknownAnswer",
               {"--folder", "FOLDER", "--play", "FOLDER/old.bak", "--answer", "perhaps", "--quit"},
               "HestrionBench:"},
        Misuse{"ATraceThatCannotBeWritten",
               {"--folder", "FOLDER", "--trace", "FOLDER/nowhere/t", "--quit"},
               "nowhere"},
        Misuse{"APictureThatCannotBeWritten",
               {"--folder", "FOLDER", "--screenshot", "FOLDER/nowhere/p.png", "--quit"},
               "nowhere"}),
    [](const auto& misuse) { return std::string{misuse.param.Name}; });

TEST(HestrionBench, PrintsItsHelp) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--help"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_NE(result.Output.find("--screenshot"), std::string::npos);
}

TEST(HestrionBench, PrintsItsNameAndVersion) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--version"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Output, "HestrionBench 1.00.0135\n");
}

// ---- At work, with its windows ----

struct Search {
  DWORD Process;
  std::wstring Class;
  HWND Found;
};

BOOL CALLBACK LookAt(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<Search*>(search);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == wanted.Process && IsWindowVisible(window) && ClassOf(window) == wanted.Class) {
    wanted.Found = window;
  }
  return wanted.Found == nullptr ? TRUE : FALSE;
}

HWND WindowOf(DWORD process, const std::wstring& className) {
  Search search{.Process = process, .Class = className, .Found = nullptr};
  EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
  return search.Found;
}

std::string ShownText(HWND window) {
  std::array<wchar_t, 4096> text{};
  const LRESULT length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return Utf8(std::wstring_view{text.data(), static_cast<std::size_t>(length)});
}

// The text of the box that the process shows, which is then answered. With a title: of the box that bears it.
std::string AnswerBoxOf(DWORD process, int button, const std::wstring& title = {}) {
  const auto box = [process] { return WindowOf(process, L"#32770"); };
  const auto isRight = [&] { return title.empty() || CaptionOf(box()) == Utf8(title); };
  EXPECT_TRUE(Eventually([&] { return box() != nullptr && isRight(); }));
  const HWND shown = box();
  auto text = ShownText(GetDlgItem(shown, 0xFFFF));
  PostMessageW(shown, WM_COMMAND, static_cast<WPARAM>(button), 0);
  EXPECT_TRUE(Eventually([shown] { return !IsWindow(shown); }));
  return text;
}

TEST(HestrionBench, SaysInABoxWhatNobodyWouldRead) {
  ChildProcess refused{HestrionBenchPath(), {"--folder", "nowhere"}, StartedFrom::Explorer};
  EXPECT_NE(AnswerBoxOf(refused.Id(), IDOK).find("Zolvane.ini"), std::string::npos);
  EXPECT_EQ(refused.Wait(), 2);
  ChildProcess asked{HestrionBenchPath(), {"--help"}, StartedFrom::Explorer};
  EXPECT_NE(AnswerBoxOf(asked.Id(), IDOK).find("--screenshot"), std::string::npos);
  EXPECT_EQ(asked.Wait(), 0);
}

TEST(HestrionBench, SaysInABoxWhatFailedInAWindowThatIsGone) {
  const Folder folder;
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
  Screen() {
    for (const DWORD stream : streams) {
      before_.push_back(GetStdHandle(stream));
    }
    FreeConsole();
    isOpen_ = AllocConsole() != FALSE;
  }
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
  std::vector<HANDLE> before_;
  bool isOpen_;
};

TEST(HestrionBench, SaysOnTheConsoleThatItWasStartedFromWhatHasNoStreamToGoTo) {
  const Folder folder;
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
  const Folder folder;
  Store(folder.File("job.txt"), "select cboTipType \"\x1b[31mred\"\n");
  const auto result = RunToItsEnd(HestrionBenchPath(),
                                  {"--folder", folder.Text(), "--play", folder.File("job.txt"), "--quit"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_NE(result.Errors.find("\\u001b[31mred"), std::string::npos) << result.Errors;
  EXPECT_EQ(result.Errors.find('\x1b'), std::string::npos) << result.Errors;
}

// Answers a command with OK when it has been let.
class HeldInstrument {
 public:
  HeldInstrument() : server_{[this](asio::ip::tcp::acceptor& acceptor) { Serve(acceptor.accept()); }} {}
  // Whoever is connected has left before.
  ~HeldInstrument() {
    Let(enough);
    asio::io_context io;
    asio::ip::tcp::socket last{io};  // for a server that nobody came to
    asio::error_code ignored;
    last.connect({asio::ip::address_v4::loopback(), server_.Port()}, ignored);
  }
  HeldInstrument(const HeldInstrument&) = delete;
  HeldInstrument& operator=(const HeldInstrument&) = delete;

  static constexpr int enough = 1000;

  std::string Link() const { return server_.Link(); }
  void Let(int answers) { answers_.release(answers); }
  int Received() const { return received_; }
  bool Receives(int commands) const {
    return Eventually([this, commands] { return received_ == commands; });
  }

 private:
  void Serve(asio::ip::tcp::socket socket) {
    std::string input;
    asio::error_code error;
    while (true) {
      const auto length = asio::read_until(socket, asio::dynamic_buffer(input), "\r\n", error);
      if (error) {
        return;
      }
      input.erase(0, length);
      ++received_;
      answers_.acquire();
      asio::write(socket, asio::buffer(std::string{"OK\r\n"}), error);
    }
  }

  std::counting_semaphore<3 * enough> answers_{0};
  std::atomic<int> received_ = 0;
  HandmadeServer server_;
};

HWND FocusOf(HWND window) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof(thread);
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread);
  return thread.hwndFocus;
}

class HestrionWindows : public testing::Test {
 protected:
  // With the page open unless the arguments are to do that.
  void Start(Arguments more, bool opensPage = true) {
    Arguments arguments{"--folder", folder_.Text(), "--trace", folder_.File("trace.jsonl")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    process_.emplace(HestrionBenchPath(), arguments);
    ASSERT_TRUE(Eventually([this] { return Main() != nullptr || !process_->IsRunning(); }));
    if (opensPage) {
      Order(openPageId);
      ASSERT_TRUE(Eventually([this] { return Frame() != nullptr; })) << process_->Errors();
    }
  }

  HWND TopLevel(const std::wstring& className) const { return WindowOf(process_->Id(), className); }

  HWND Main() const { return TopLevel(mainWindowClass); }
  HWND Frame() const { return FindWindowExW(Main(), nullptr, frameClassName, nullptr); }
  HWND Box() const { return TopLevel(L"#32770"); }
  HWND Control(int id) const { return GetDlgItem(Frame(), id); }
  void Order(int command) const { PostMessageW(Main(), WM_COMMAND, static_cast<WPARAM>(command), 0); }

  // As the mouse does: the program must not be waited for, as the operation may show a box.
  void Press(HWND button) const {
    constexpr LPARAM inside = MAKELPARAM(5, 5);
    PostMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, inside);
    PostMessageW(button, WM_LBUTTONUP, 0, inside);
  }

  std::string StatusText() const { return ShownText(GetDlgItem(Main(), statusBarId)); }
  std::string Progress() const { return ShownText(GetDlgItem(Main(), progressId)); }
  std::string Log() const { return ShownText(GetDlgItem(Main(), logId)); }
  bool Logs(const std::string& text) const {
    return Eventually([&] { return Log().find(text) != std::string::npos; });
  }
  bool CanStop() const { return IsWindowEnabled(GetDlgItem(Main(), stopId)) != FALSE; }
  bool IsAtRest() const {
    return Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; });
  }

  // The text of the box that is open, which is then answered.
  std::string AnswerBox(int button) const { return AnswerBoxOf(process_->Id(), button); }

  // The instrument has the first command of an upload and has not answered it.
  void StartUpload() {
    Start({"--link", instrument_.Link(), "--timeout", "60"});
    Press(Control(IdOfButton(uploadButton)));
    AnswerBox(IDOK);
    ASSERT_TRUE(instrument_.Receives(1));
  }

  void StopTwice(const std::function<void()>& stop) {
    StartUpload();
    stop();
    ASSERT_TRUE(Logs("Stop: no further command is sent"));
    EXPECT_EQ(Box(), nullptr) << "the reply is still waited for";
    stop();
    ASSERT_TRUE(Logs("Stop: no longer waiting for the reply"));
    EXPECT_TRUE(AnswerBox(IDOK).starts_with("Uploading Data to Zolvane\r\n\r\nPlease ensure"));
    EXPECT_TRUE(Logs("Save To Zolvane: failed (1 of 178 commands sent; 0 accepted; 1 not answered, first "));
    EXPECT_TRUE(IsAtRest());
    EXPECT_FALSE(CanStop());
    EXPECT_EQ(instrument_.Received(), 1);
    CloseWindow();
    EXPECT_EQ(process_->Wait(), 1);
  }

  void CloseWindow() const { PostMessageW(Main(), WM_CLOSE, 0, 0); }

  int EventsOf(const std::string& part) const {
    std::istringstream trace{folder_.Content("trace.jsonl")};
    int count = 0;
    for (std::string line; std::getline(trace, line);) {
      count += line.find(part) != std::string::npos ? 1 : 0;
    }
    return count;
  }

  Folder folder_;
  HeldInstrument instrument_;
  std::optional<ChildProcess> process_;
};

TEST_F(HestrionWindows, TheMenuOpensThePageAndClosesIt) {
  Start({});
  EXPECT_TRUE(IsWindowVisible(Frame()));
  EXPECT_TRUE(Eventually([this] { return CaptionOf(Main()).starts_with("Zolvane Setup - "); }));
  EXPECT_TRUE(CaptionOf(Main()).ends_with("bench, sim - Hestrion bench")) << CaptionOf(Main());
  EXPECT_TRUE(
      std::regex_search(Log(), std::regex{"^[0-2][0-9]:[0-5][0-9]:[0-5][0-9]  Opened: Zolvane Setup"}))
      << Log();
  Order(closePageId);
  EXPECT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  Order(openPageId);
  EXPECT_TRUE(Eventually([this] { return Frame() != nullptr; })) << "and opens it again";
  Order(quitId);
  EXPECT_EQ(process_->Wait(), 0) << process_->Errors();
}

TEST_F(HestrionWindows, HelpNamesTheTopicOfThePage) {
  Start({}, false);
  PostMessageW(Main(), WM_KEYDOWN, VK_F1, 1);
  EXPECT_NE(AnswerBox(IDOK).find("Open an add-in's page"), std::string::npos);
  Order(openPageId);
  ASSERT_TRUE(Eventually([this] { return Frame() != nullptr; }));
  PostMessageW(Control(IdOfButton(queryButton)), WM_KEYDOWN, VK_F1, 1);
  EXPECT_NE(AnswerBox(IDOK).find("topic 9014"), std::string::npos);
  Order(helpId);
  EXPECT_NE(AnswerBox(IDOK).find("topic 9014"), std::string::npos);
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

TEST_F(HestrionWindows, TheHostsButtonsAreThereWithThePageAndWork) {
  Start({}, false);
  const HWND save = GetDlgItem(Main(), saveId);
  EXPECT_FALSE(IsWindowVisible(save));
  Order(openPageId);
  ASSERT_TRUE(Eventually([save] { return IsWindowVisible(save) != FALSE; }));
  EXPECT_TRUE(Eventually([this] { return IsWindowVisible(GetDlgItem(Main(), helpId)) != FALSE; }));
  Press(save);
  Press(GetDlgItem(Main(), closePageId));
  ASSERT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  EXPECT_FALSE(IsWindowVisible(save));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
  EXPECT_EQ(EventsOf(R"("event":"changed","value":false)"), 2)
      << "by the button, and when the page was closed";
}

TEST_F(HestrionWindows, TheStatusBarShowsWhatAnOperationDoesAndTheControlsAreDisabledMeanwhile) {
  Start({"--link", "none"});
  EXPECT_EQ(StatusText(), "");
  Press(Control(IdOfButton(queryButton)));
  for (const auto* const step : {"Getting Zolvane Type", "Getting Pipette Module Type", "Enabling RFID",
                                 "Getting Pump Module Status"}) {
    ASSERT_TRUE(Eventually([this] { return Box() != nullptr; })) << step;
    EXPECT_EQ(StatusText(), step);
    EXPECT_FALSE(IsWindowEnabled(Control(IdOfButton(queryButton))));
    EXPECT_FALSE(IsWindowEnabled(Control(IdOf(ListControl::DeviceType))));
    EXPECT_EQ(
        AnswerBox(IDOK),
        std::string{step} + "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'");
  }
  EXPECT_TRUE(Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; }));
  EXPECT_EQ(StatusText(), "");
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1) << "commands have failed";
}

TEST_F(HestrionWindows, ABoxIsInFrontOfTheHostWhichWaitsForIt) {
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(Eventually([this] { return Box() != nullptr; }));
  EXPECT_EQ(GetWindow(Box(), GW_OWNER), Main());
  EXPECT_FALSE(IsWindowEnabled(Main()));
}

TEST_F(HestrionWindows, ABoxHasToBeAnsweredBeforeTheWindowCloses) {
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(Eventually([this] { return Box() != nullptr; }));
  CloseWindow();
  for (int box = 0; box < 4; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Query Zolvane: failed (0 of 5 commands sent; 0 accepted; 5 not sent"));
  EXPECT_EQ(EventsOf(R"("event":"send")"), 4) << "the operation has run to its end";
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "and the page was detached";
}

TEST_F(HestrionWindows, ClosingTheWindowUnderTheHostsOwnDialogueAsks) {
  Start({"--link", "none", "--host-dialog"});
  Press(Control(IdOfButton(queryButton)));
  const auto message = [this] { return TopLevel(messageWindowClass); };
  ASSERT_TRUE(Eventually([&] { return message() != nullptr; }));
  Order(closePageId);
  AnswerBox(IDNO);
  CloseWindow();
  AnswerBox(IDYES);
  EXPECT_TRUE(IsWindow(Frame()));
  PostMessageW(GetDlgItem(message(), IDOK), WM_KEYDOWN, VK_RETURN, 1);
  EXPECT_NE(AnswerBox(IDOK).find("0 of 5 commands sent"), std::string::npos);
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("event":"host_dialog")"), 1);
}

TEST_F(HestrionWindows, AnOperationSaysHowFarItIsAndCanBeStopped) {
  StartUpload();
  EXPECT_TRUE(Eventually([this] { return Progress() == "1 of 178"; })) << Progress();
  EXPECT_TRUE(CanStop());
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(Main(), saveId)));
  instrument_.Let(1);
  ASSERT_TRUE(instrument_.Receives(2));
  EXPECT_TRUE(Eventually([this] { return Progress() == "2 of 178"; })) << Progress();
  Press(GetDlgItem(Main(), stopId));
  ASSERT_TRUE(Logs("Stop: no further command is sent"));
  instrument_.Let(1);
  ASSERT_TRUE(IsAtRest());
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (2 of 178 commands sent"));
  EXPECT_FALSE(CanStop());
  EXPECT_TRUE(IsWindowEnabled(FocusOf(Main()))) << "the keyboard is not left on the button";
  EXPECT_EQ(Progress(), "");
  EXPECT_EQ(instrument_.Received(), 2);

  Press(Control(IdOfButton(queryButton)));
  instrument_.Let(HeldInstrument::enough);
  EXPECT_TRUE(Logs("Query Zolvane: done")) << "a stop ends one operation";
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST_F(HestrionWindows, EscapeStopsAsTheButtonDoes) {
  StartUpload();
  PostMessageW(Control(IdOfButton(uploadButton)), WM_KEYDOWN, VK_ESCAPE, 1);
  ASSERT_TRUE(Logs("Stop: no further command is sent"));
  instrument_.Let(1);
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (1 of 178 commands sent"));
}

TEST_F(HestrionWindows, ASecondStopNoLongerWaitsForTheReply) {
  StopTwice([this] { Press(GetDlgItem(Main(), stopId)); });
}

TEST_F(HestrionWindows, ASecondEscapeNoLongerWaitsForTheReply) {
  StopTwice([this] { PostMessageW(Control(IdOfButton(uploadButton)), WM_KEYDOWN, VK_ESCAPE, 1); });
}

TEST_F(HestrionWindows, ClosingThePageDuringAnOperationShowsWhatBecameOfItAndLeavesTheWindow) {
  StartUpload();
  Press(GetDlgItem(Main(), closePageId));
  AnswerBox(IDYES);
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped (1 of 178 commands sent"), std::string::npos);
  EXPECT_TRUE(Eventually([this] { return Frame() == nullptr; }));
  EXPECT_TRUE(Logs("Save To Zolvane: stopped (1 of 178 commands sent"));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "the page was detached";
}

TEST_F(HestrionWindows, ClosingBetweenTheCommandsOfARunFileSaysWhatWasNotBegun) {
  Store(folder_.File("job.txt"), "upload\nquery\npage\n");
  Start({"--link", instrument_.Link(), "--timeout", "60", "--play", folder_.File("job.txt"), "--yes"}, false);
  ASSERT_TRUE(instrument_.Receives(1));
  Order(closePageId);
  AnswerBox(IDYES);
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped"), std::string::npos);
  EXPECT_TRUE(Logs("closed after \"upload\": 2 of 3 commands not begun: query; page")) << Log();
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST_F(HestrionWindows, ClosingDuringAnOperationAsksAndShowsWhatBecameOfIt) {
  constexpr LPARAM withAlt = LPARAM{1} << 29;
  StartUpload();
  PostMessageW(Control(IdOfButton(uploadButton)), WM_SYSKEYDOWN, VK_F4, withAlt);
  EXPECT_TRUE(AnswerBox(IDNO).starts_with("Save To Zolvane is not finished (command 1 of 178)."));
  instrument_.Let(1);
  ASSERT_TRUE(instrument_.Receives(2)) << "it goes on";
  CloseWindow();
  AnswerBox(IDYES);
  EXPECT_TRUE(process_->IsRunning());
  instrument_.Let(1);
  EXPECT_NE(AnswerBox(IDOK).find("Save To Zolvane: stopped (2 of 178 commands sent"), std::string::npos);
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(instrument_.Received(), 2);
  EXPECT_EQ(EventsOf(R"("event":"send")"), 2);
  EXPECT_EQ(EventsOf(R"("flag":"hold","op":"set","value":false)"), 1) << "the page was detached";
}

TEST_F(HestrionWindows, TheSystemIsKeptFromEndingDuringAnOperation) {
  Start({"--link", instrument_.Link(), "--timeout", "60"});
  EXPECT_TRUE(SendMessageW(Main(), WM_QUERYENDSESSION, 0, 0));
  Press(Control(IdOfButton(queryButton)));
  ASSERT_TRUE(instrument_.Receives(1));
  EXPECT_FALSE(SendMessageW(Main(), WM_QUERYENDSESSION, 0, 0));
}

TEST_F(HestrionWindows, WhatIsClickedOnThePageDuringAnOperationIsNotDoneLater) {
  StartUpload();
  Press(Control(IdOfButton(downloadButton)));
  instrument_.Let(HeldInstrument::enough);
  EXPECT_TRUE(Logs("Save To Zolvane: done (178 of 178 commands sent"));
  EXPECT_EQ(Box(), nullptr);
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
  EXPECT_EQ(EventsOf(R"("event":"message_box")"), 1);
}

TEST_F(HestrionWindows, SaysWhatAnOperationCameToWithTheTimeOfDayAndHowLongItTook) {
  Start({});
  Press(Control(IdOfButton(queryButton)));
  EXPECT_TRUE(Logs("Query Zolvane: done ("));
  Press(Control(IdOfButton(uploadButton)));
  AnswerBox(IDOK);
  EXPECT_TRUE(Logs("Save To Zolvane: done (178 of 178 commands sent"));
  EXPECT_TRUE(IsAtRest());
  const std::regex line{
      R"([0-2][0-9]:[0-5][0-9]:[0-5][0-9]  Save To Zolvane: done \([^)]*; SAVE accepted\), [0-9]+\.[0-9] s\r\n)"};
  EXPECT_TRUE(std::regex_search(Log(), line)) << Log();
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

TEST_F(HestrionWindows, SaysWhatTheInstrumentCalledItselfAndWhatThatWasStoredAs) {
  Store(folder_.File("replies.json"), R"({"default": "OK", "replies": {"STATUS_STAGE": "ZV200\r\n",
      "STATUS_MECH": "96/384", "RFID READ_PERSISTENT": "0,0,5A4C0150AA7F1012,0,0", "STATUS PUMPS": "OPEN"}})");
  Start({"--link", "script:" + folder_.File("replies.json")});
  Press(Control(IdOfButton(queryButton)));
  EXPECT_TRUE(
      Logs("Found: Zolvane \"ZV200\", stored as \"Zolvane 200\"; Pipette Module \"96/384\", stored as "
           "\"96/384 Module\"; Pipette Head \"0,0,5A4C0150AA7F1012,0,0\", stored as \"96-Channel 125 "
           "ul\"; Pump Module Installed \"OPEN\", shown as \"Not Connected\"\r\n"))
      << Log();
}

TEST_F(HestrionWindows, ClaimsNothingFoundThatTheInstrumentDidNotSay) {
  Store(folder_.File("replies.json"), R"({"default": null, "replies": {"STATUS_STAGE": "ZV900"}})");
  Start({"--link", "script:" + folder_.File("replies.json")});
  Press(Control(IdOfButton(queryButton)));
  for (int box = 0; box < 3; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Found: Zolvane \"ZV900\", not in Zolvane.ini\r\n")) << Log();
  Store(folder_.File("replies.json"), "{}");
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  for (int box = 0; box < 4; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Query Zolvane: failed (0 of 5 commands sent"));
  EXPECT_TRUE(IsAtRest());
  EXPECT_EQ(Log().find("Found"), std::string::npos) << Log();
}

// Another program that has the configuration open for writing.
UniqueKernelHandle Opened(const std::string& file) {
  return UniqueKernelHandle{CreateFileW(std::filesystem::path{file}.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
}

TEST_F(HestrionWindows, EachChoiceThatCouldNotBeStoredIsInABoxAndInTheLogAndInTheStatus) {
  Start({});
  {
    const auto other = Opened(folder_.File("Zolvane.ini"));
    for (const auto& [box, key] : {std::pair{CheckControl::RFID, "SensorEnableRFID"},
                                   {CheckControl::Encoders, "SDXYEncodersEnable"}}) {
      Press(Control(IdOf(box)));
      EXPECT_TRUE(AnswerBox(IDOK).starts_with("Your choice could not be stored in\r\n")) << key;
      EXPECT_TRUE(Logs(std::string{"[DeviceType] "} + key + " could not be written to ")) << Log();
      EXPECT_EQ(SendMessageW(Control(IdOf(box)), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    }
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST_F(HestrionWindows, SaysOnceThatCharactersWereLost) {
  const auto sample = SampleConfiguration();
  Store(folder_.File("Zolvane.ini"), "; \xB5l\r\n" + sample);
  auto backup = sample;
  backup.replace(backup.find("Zolvane 400"), std::strlen("Zolvane 400"), "\xD0\x9A\xD0\xB0\xD0\xBD");
  Store(folder_.File("old.bak"), backup);
  Store(folder_.File("job.txt"), "import " + folder_.File("old.bak") + "\n");
  Start({"--play", folder_.File("job.txt"), "--yes"}, false);
  const std::string complaint = "characters that the encoding of a settings file lacks were written";
  EXPECT_TRUE(Logs(complaint));
  for (int message = 0; message < 20; ++message) {
    PostMessageW(Main(), WM_NULL, 0, 0);
  }
  Press(Control(IdOf(CheckControl::RFID)));
  EXPECT_TRUE(Eventually(
      [this] { return folder_.Content("Zolvane.ini").find("SensorEnableRFID=0") != std::string::npos; }));
  EXPECT_EQ(CountOf(complaint, Log()), 1U) << Log();
}

TEST_F(HestrionWindows, SaysThatAnExportIntoAFileThatExistsMerges) {
  Store(folder_.File("job.txt"), "export " + folder_.File("old.bak") + "\n");
  Start({"--play", folder_.File("job.txt"), "--yes", "--replace"}, false);
  EXPECT_TRUE(Logs("old.bak\" exists: the add-in merges, so what it does not export stays in it")) << Log();
  EXPECT_TRUE(Logs("Save To File " + folder_.File("old.bak") + ": done (")) << Log();
  Order(quitId);
  EXPECT_EQ(process_->Wait(), 0) << process_->Errors();
}

TEST_F(HestrionWindows, ThePageComesBackWhenTheUserHasCancelled) {
  Start({});
  for (const auto& [button, status] : {std::pair{uploadButton, "Uploading Data to Zolvane"},
                                       {downloadButton, "Downloading Data from Zolvane"}}) {
    Press(Control(IdOfButton(button)));
    AnswerBox(IDCANCEL);
    EXPECT_TRUE(Logs(std::string{status} + ": cancelled"));
    EXPECT_TRUE(IsAtRest()) << status;
    EXPECT_EQ(StatusText(), "");
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

TEST(MainWindow, ARequestThatFailsIsInTheLogAndGoesNoFurther) {
  const MainWindow window{{.OpenPage = [] { throw std::runtime_error{"there is no page"}; },
                           .ClosePage = {},
                           .Save = {},
                           .Help = {},
                           .Quit = {},
                           .Stop = {},
                           .MayBeEnded = {},
                           .Rest = {}}};
  EXPECT_NO_THROW(SendMessageW(window.Handle(), WM_COMMAND, openPageId, 0));
  EXPECT_TRUE(ShownText(GetDlgItem(window.Handle(), logId)).ends_with("  there is no page\r\n"));
}

TEST_F(HestrionWindows, AHostsDialogueThatIsDestroyedWithItsOwnerLeavesNobodyWaiting) {
  const HWND owner = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                                     nullptr, nullptr, nullptr);
  const MessageWindow dialogue{owner, {.Title = "Title", .Text = "Text", .Style = 1}};
  EXPECT_LT(dialogue.Result(), 0);
  DestroyWindow(owner);
  EXPECT_EQ(dialogue.Result(), IDCANCEL);
}

TEST_F(HestrionWindows, TheWindowCanBeOfAnySizeThatThePageFitsInto) {
  Start({});
  const SIZE page{PlaceOf(Frame()).right, PlaceOf(Frame()).bottom};
  for (const SIZE size : {SIZE{1000, 800}, SIZE{120, 60}, SIZE{700, 700}}) {
    SetWindowPos(Main(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER);
    RECT inside{};
    GetClientRect(Main(), &inside);
    const HWND statusBar = GetDlgItem(Main(), statusBarId);
    EXPECT_TRUE(Eventually([&] { return PlaceOf(statusBar).bottom == inside.bottom; }));
    EXPECT_EQ(PlaceOf(statusBar).right, inside.right);
    EXPECT_EQ(PlaceOf(Frame()).right, page.cx) << "the page keeps its size";
    EXPECT_EQ(PlaceOf(Frame()).bottom, page.cy);
    EXPECT_GE(inside.right, page.cx);
    const RECT log = PlaceOf(GetDlgItem(Main(), logId));
    EXPECT_GT(log.top, page.cy);
    EXPECT_GE(log.bottom - log.top, 40);
    EXPECT_LT(log.bottom, PlaceOf(statusBar).top);
    EXPECT_LT(log.right, inside.right);
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

// Answers the first command and hangs up for good on the second.
TEST_F(HestrionWindows, AnInstrumentUnpluggedInTheMiddleIsReportedAndThePageGoesOn) {
  const HandmadeServer instrument{[](asio::ip::tcp::acceptor& acceptor) {
    asio::ip::tcp::socket socket = acceptor.accept();
    std::string lines;
    asio::read_until(socket, asio::dynamic_buffer(lines), "\r\n");
    asio::write(socket, asio::buffer(std::string{"ZV400\r\n"}));
    lines.clear();
    asio::read_until(socket, asio::dynamic_buffer(lines), "\r\n");
    socket.close();
    acceptor.close();
  }};
  Start({"--link", instrument.Link(), "--timeout", "2"});
  Press(Control(IdOfButton(queryButton)));
  for (const auto* const step :
       {"Getting Pipette Module Type", "Enabling RFID", "Getting Pump Module Status"}) {
    EXPECT_EQ(AnswerBox(IDOK).substr(0, std::strlen(step)), step);
  }
  EXPECT_TRUE(Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; }));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("event":"send","command":"STATUS_STAGE","ok":true,"reply":"ZV400")"), 1);
}

// ---- Pictures ----

struct Bitmap {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint32_t> Pixels;

  std::uint32_t At(int x, int y) const {
    return Pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
                     static_cast<std::size_t>(x)) &
           0xFFFFFF;
  }

  std::size_t ColoursIn(const RECT& area) const {
    std::set<std::uint32_t> colours;
    for (int y = area.top; y < area.bottom; ++y) {
      for (int x = area.left; x < area.right; ++x) {
        colours.insert(At(x, y));
      }
    }
    return colours.size();
  }
};

// A picture says in its header how long it is.
bool IsWholeBitmap(const std::string& bytes) {
  BITMAPFILEHEADER file{};
  if (bytes.size() < sizeof(file)) {
    return false;
  }
  std::memcpy(&file, bytes.data(), sizeof(file));
  return bytes.size() == file.bfSize;
}

// As the program writes them: 32 bits, from the top.
Bitmap BitmapIn(const std::string& bytes) {
  Bitmap bitmap;
  BITMAPFILEHEADER file{};
  BITMAPINFOHEADER header{};
  if (bytes.size() < sizeof(file) + sizeof(header)) {
    return bitmap;
  }
  std::memcpy(&file, bytes.data(), sizeof(file));
  std::memcpy(&header, bytes.data() + sizeof(file), sizeof(header));
  bitmap.Width = header.biWidth;
  bitmap.Height = -header.biHeight;
  bitmap.Pixels.resize((bytes.size() - file.bfOffBits) / sizeof(std::uint32_t));
  std::memcpy(bitmap.Pixels.data(), bytes.data() + file.bfOffBits,
              bitmap.Pixels.size() * sizeof(std::uint32_t));
  return bitmap;
}

TEST_F(HestrionWindows, APictureShowsTheWindowWithThePageAsItIs) {
  Start({"--screenshot", folder_.File("picture.bmp")}, false);
  const auto file = folder_.File("picture.bmp");
  ASSERT_TRUE(Eventually([&] { return IsWholeBitmap(ContentOf(file)); }));
  const auto picture = BitmapIn(ContentOf(file));
  RECT window{};
  GetWindowRect(Main(), &window);
  ASSERT_EQ(picture.Width, window.right - window.left);
  ASSERT_EQ(picture.Height, window.bottom - window.top);
  ASSERT_EQ(picture.Pixels.size(), static_cast<std::size_t>(picture.Width * picture.Height));
  for (const auto& row : PageLayout()) {
    RECT area{};
    GetWindowRect(Control(row.Id), &area);
    OffsetRect(&area, -window.left, -window.top);
    EXPECT_GE(picture.ColoursIn(area), 2U) << row.Id << ": text on its background";
    if (row.Kind == ControlKind::List) {
      const COLORREF white = GetSysColor(COLOR_WINDOW);
      EXPECT_EQ(picture.At(area.right - 40, (area.top + area.bottom) / 2),
                static_cast<std::uint32_t>(RGB(GetBValue(white), GetGValue(white), GetRValue(white))))
          << row.Id;
    }
  }
}

std::uint32_t BigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(at + byte));
  }
  return number;
}

TEST_F(HestrionWindows, APictureWithAnotherNameIsAPngOfTheSameSize) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--folder", folder_.Text(), "--screenshot",
                                                        folder_.File("picture.bmp"), "--quit"});
  EXPECT_EQ(result.Status, 0) << result.Errors;
  EXPECT_EQ(RunToItsEnd(HestrionBenchPath(),
                        {"--folder", folder_.Text(), "--screenshot", folder_.File("picture.png"), "--quit"})
                .Status,
            0);
  const auto bitmap = BitmapIn(folder_.Content("picture.bmp"));
  const auto png = folder_.Content("picture.png");
  ASSERT_EQ(png.substr(1, 3), "PNG");
  EXPECT_EQ(BigEndian(png, 16), static_cast<std::uint32_t>(bitmap.Width));
  EXPECT_EQ(BigEndian(png, 20), static_cast<std::uint32_t>(bitmap.Height));
}

}  // namespace
}  // namespace zolvane
