// Boxes, file dialogues and the message loop, as operations get them from the system.
#include "shell/windows/host/windows_environment.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "bench/windows/play/dialogue_answerer.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "win32/text.h"
#include "windows/support/child_process.h"
#include "windows/support/dialogue_spectator.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

// ---- The message loop ----

class MessageLoop : public testing::Test {
 protected:
  MessageLoop()
      : window_{
            CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr)} {
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Count));
    heard_.clear();
  }
  ~MessageLoop() override {
    DestroyWindow(window_);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    }
  }

  static LRESULT CALLBACK Count(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    heard_.push_back(message);
    return DefWindowProcW(window, message, wParam, lParam);
  }

  static std::ptrdiff_t Heard(UINT message) { return std::count(heard_.begin(), heard_.end(), message); }

  static bool QuitWaits() {
    MSG message{};
    return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) != FALSE;
  }

  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): first messages carry no pointer of ours
  static inline std::vector<UINT> heard_;
  HWND window_;
  WindowsEnvironment environment_{[] { return HWND{}; }};
};

TEST_F(MessageLoop, EverythingThatWaitsIsDispatched) {
  for (int message = 0; message < 100; ++message) {
    PostMessageW(window_, WM_APP, 0, 0);
  }
  environment_.RunMessageLoopOnce();
  EXPECT_EQ(Heard(WM_APP), 100);
  environment_.RunMessageLoopOnce();
  EXPECT_EQ(Heard(WM_APP), 100) << "and returns when nothing waits";
}

// The system gives a request to quit before timers and what the user does. A dialogue waited for would never
// be answered if these were held back by it.
TEST_F(MessageLoop, ARequestToQuitIsLeftToTheHostAndTheRestGoesOn) {
  SetTimer(window_, 1, 10, nullptr);
  PostQuitMessage(7);
  EXPECT_TRUE(Eventually([this] {
    environment_.RunMessageLoopOnce();
    return Heard(WM_TIMER) >= 2;
  }));
  ASSERT_TRUE(QuitWaits());
  MSG message{};
  PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7U);
}

// ---- File dialogues ----

class FileDialogues : public testing::Test {
 protected:
  FileDialogues()
      : folder_{ProgramFolder::OfThisRun().Path() / L"Sicherung \u00fc \u65e5\u672c"},
        owner_{CreateWindowExW(0, L"STATIC", L"owner", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                               nullptr, nullptr, nullptr)} {
    std::filesystem::create_directories(folder_);
    dialogue_ = {.Title = "A title: \u00fc",
                 .Filter = "Backup files (*.bak)|*.bak|All files (*.*)|*.*",
                 .FilterIndex = 1,
                 .DefaultExtension = "bak",
                 .Flags = 2054,
                 .CancelIsError = true,
                 .FileName = "ZolvaneINIExport"};
  }
  ~FileDialogues() override {
    DestroyWindow(owner_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::optional<std::string> Choose(FileDialogueKind kind, std::optional<std::string> path) {
    DialogueAnswerer user;
    user.ChooseFile(std::move(path));
    return environment_.ShowFileDialogue(kind, dialogue_);
  }

  std::string InFolder(const std::wstring& name) const { return Utf8((folder_ / name).wstring()); }

  std::filesystem::path folder_;
  HWND owner_;
  FileDialogue dialogue_;
  WindowsEnvironment environment_{[this] { return owner_; }};
};

TEST_F(FileDialogues, AFileInAFolderOfAnyNameGetsTheExtension) {
  EXPECT_EQ(Choose(FileDialogueKind::Save, InFolder(L"\u03b1 \u0436")), InFolder(L"\u03b1 \u0436.bak"));
  EXPECT_EQ(Choose(FileDialogueKind::Save, InFolder(L"named.txt")), InFolder(L"named.txt"));
}

TEST_F(FileDialogues, TheFileChosenLastIsProposedWhereverItLies) {
  Store(folder_ / L"old \u00fc.bak", "x");
  dialogue_.FileName = InFolder(L"old \u00fc.bak");
  dialogue_.Flags = std::nullopt;
  EXPECT_EQ(Choose(FileDialogueKind::Open, InFolder(L"old \u00fc.bak")), dialogue_.FileName);
}

TEST_F(FileDialogues, CancelGivesNoFile) {
  EXPECT_EQ(Choose(FileDialogueKind::Open, std::nullopt), std::nullopt);
  EXPECT_EQ(Choose(FileDialogueKind::Save, std::nullopt), std::nullopt);
}

TEST_F(FileDialogues, TheCurrentFolderOfTheProcessStays) {
  const auto before = std::filesystem::current_path();
  ASSERT_NE(before, folder_);
  ASSERT_TRUE(Choose(FileDialogueKind::Save, InFolder(L"new.bak")));
  EXPECT_EQ(std::filesystem::current_path(), before);
}

// Wine's dialogue takes no longer paths than the system once did, so this one does not appear.
class ChosenUnseen final : public DialogueSpectator {
 public:
  explicit ChosenUnseen(std::string path) : path_{std::move(path)} {}

  bool ShowsDialogues() const override { return false; }
  std::optional<std::string> ChooseUnshown(FileDialogueKind) override { return path_; }

 private:
  std::string path_;
};

TEST_F(FileDialogues, APathOfAThousandCharactersArrivesWhole) {
  std::string path = "C:";
  for (int folder = 0; folder < 20; ++folder) {
    path += "\\" + std::string(49, 'f');
  }
  path += "\\new.bak";
  ChosenUnseen user{path};
  const DialogueHooks hooks{GetModuleHandleW(nullptr), nullptr, user};
  for (const auto kind : {FileDialogueKind::Open, FileDialogueKind::Save}) {
    EXPECT_EQ(environment_.ShowFileDialogue(kind, dialogue_), path);
  }
  dialogue_.FileName = path;
  EXPECT_EQ(environment_.ShowFileDialogue(FileDialogueKind::Save, dialogue_), path) << "proposed as well";
}

// What a user sees of the dialogue while it is open.
struct Seen {
  std::string Title;
  HWND Owner = nullptr;
  bool OwnerIsLocked = false;
  std::string Name;
  std::vector<std::string> Filters;
  int Filter = -1;
};

std::string TextOf(HWND window) {
  std::array<wchar_t, 512> text{};
  SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return Utf8(text.data());
}

Seen Look(HWND dialogue) {
  constexpr int filterListId = 0x470;
  constexpr int nameFieldId = 0x47C;
  const HWND filters = GetDlgItem(dialogue, filterListId);
  Seen seen{.Title = TextOf(dialogue),
            .Owner = GetWindow(dialogue, GW_OWNER),
            .OwnerIsLocked = IsWindowEnabled(GetWindow(dialogue, GW_OWNER)) == FALSE,
            .Name = TextOf(GetDlgItem(dialogue, nameFieldId)),
            .Filters = {},
            .Filter = static_cast<int>(SendMessageW(filters, CB_GETCURSEL, 0, 0))};
  const auto count = static_cast<WPARAM>(SendMessageW(filters, CB_GETCOUNT, 0, 0));
  for (WPARAM filter = 0; filter < count; ++filter) {
    std::array<wchar_t, 256> text{};
    SendMessageW(filters, CB_GETLBTEXT, filter, reinterpret_cast<LPARAM>(text.data()));
    seen.Filters.push_back(Utf8(text.data()));
  }
  return seen;
}

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a timer carries no pointer of ours
std::optional<Seen> whatTheUserSaw;

void CALLBACK LookAndCancel(HWND, UINT, UINT_PTR, DWORD) {
  constexpr int nameFieldId = 0x47C;
  const HWND dialogue = GetActiveWindow();
  const HWND name = dialogue != nullptr ? GetDlgItem(dialogue, nameFieldId) : nullptr;
  if (name != nullptr && !TextOf(name).empty()) {
    whatTheUserSaw = Look(dialogue);
    PostMessageW(dialogue, WM_COMMAND, IDCANCEL, 0);
  }
}

TEST_F(FileDialogues, TitleFiltersAndProposedNameAppearOverTheOwner) {
  whatTheUserSaw.reset();
  // A timer of the thread: it is only served by the dialogue's own loop.
  const UINT_PTR timer = SetTimer(nullptr, 0, 50, LookAndCancel);
  SetActiveWindow(owner_);
  EXPECT_EQ(environment_.ShowFileDialogue(FileDialogueKind::Save, dialogue_), std::nullopt);
  KillTimer(nullptr, timer);
  const auto& seen = whatTheUserSaw;
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->Title, dialogue_.Title);
  EXPECT_EQ(seen->Owner, owner_);
  EXPECT_TRUE(seen->OwnerIsLocked);
  EXPECT_EQ(seen->Name.substr(0, 16), "ZolvaneINIExport");
  EXPECT_EQ(seen->Filters, (std::vector<std::string>{"Backup files (*.bak)", "All files (*.*)"}));
  EXPECT_EQ(seen->Filter, 0);
  EXPECT_TRUE(IsWindowEnabled(owner_)) << "and is free again afterwards";
}

}  // namespace
}  // namespace zolvane
