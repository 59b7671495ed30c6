#include "bench/windows/play/dialogue_answerer.h"

#include <array>
#include <utility>
#include <vector>

#include "bench/windows/window/message_window.h"
#include "win32/text.h"

namespace zolvane {
namespace {

constexpr const wchar_t* systemDialogueClass = L"#32770";

// The number of a file dialogue's field for the name, in the system's two kinds of dialogue.
constexpr std::array fileNameIds{0x47C, 0x480};

std::wstring ClassOf(HWND window) {
  std::array<wchar_t, 64> name{};
  GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  return name.data();
}

BOOL CALLBACK CollectDialogue(HWND window, LPARAM list) {
  const auto name = ClassOf(window);
  if (IsWindowVisible(window) && IsWindowEnabled(window) &&
      (name == systemDialogueClass || name == messageWindowClass)) {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  }
  return TRUE;
}

std::vector<HWND> OpenDialogues(DWORD thread) {
  std::vector<HWND> dialogues;
  EnumThreadWindows(thread, CollectDialogue, reinterpret_cast<LPARAM>(&dialogues));
  return dialogues;
}

HWND FileNameField(HWND dialogue) {
  for (const int id : fileNameIds) {
    if (const HWND field = GetDlgItem(dialogue, id)) {
      return field;
    }
  }
  return nullptr;
}

// The window may belong to a thread that is not handling its messages just now.
LRESULT Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT patience = 5000;
  DWORD_PTR result = 0;
  SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG, patience, &result);
  return static_cast<LRESULT>(result);
}

std::string TextIn(HWND window) {
  std::array<wchar_t, 4096> text{};
  Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return Utf8(text.data());
}

// The single button of a box answers to "Cancel", whatever its text.
std::int32_t FirstButton(HWND box) {
  for (const std::int32_t button : {IDOK, IDYES, IDCANCEL, IDNO}) {
    if (GetDlgItem(box, button) != nullptr) {
      return button;
    }
  }
  return IDCANCEL;
}

}  // namespace

DialogueAnswerer::DialogueAnswerer()
    : user_{GetCurrentThreadId()},
      changed_{CreateEventW(nullptr, FALSE, FALSE, nullptr)},
      thread_{[this](const std::stop_token& ending) { Run(ending); }} {}

DialogueAnswerer::~DialogueAnswerer() {
  thread_.request_stop();
  SetEvent(changed_.Get());
}

void DialogueAnswerer::PressButton(std::int32_t button) {
  Begin(Task::Button, button, {});
}

void DialogueAnswerer::ChooseFile(std::optional<std::string> path) {
  Begin(path ? Task::File : Task::Cancel, IDCANCEL, path ? Wide(*path) : std::wstring{});
}

void DialogueAnswerer::Closed() {
  Begin(Task::None, 0, {});
}

void DialogueAnswerer::Begin(Task task, std::int32_t button, std::wstring file) {
  const std::lock_guard lock{mutex_};
  order_ = {.What = task, .Button = button, .File = std::move(file), .Number = order_.Number + 1};
  SetEvent(changed_.Get());
}

DialogueAnswerer::Order DialogueAnswerer::Ordered() const {
  const std::lock_guard lock{mutex_};
  return order_;
}

void DialogueAnswerer::Done(const Order& order) {
  const std::lock_guard lock{mutex_};
  if (order_.Number == order.Number) {
    order_.What = Task::None;
  }
}

void DialogueAnswerer::Run(const std::stop_token& ending) {
  constexpr DWORD pause = 2;
  while (!ending.stop_requested()) {
    const Order order = Ordered();
    const bool isBusy = order.What != Task::None;
    if (isBusy && Attempt(order)) {
      Done(order);
    }
    WaitForSingleObject(changed_.Get(), isBusy ? pause : INFINITE);
  }
}

// True when nothing is left to do. A file dialogue stays with us until it is closed: it may ask whether the
// file is to be replaced, or say that it cannot be used.
bool DialogueAnswerer::Attempt(const Order& order) {
  if (order.What == Task::Button && pressing_.Order == order.Number) {
    return PressAgain();
  }
  for (const HWND window : OpenDialogues(user_)) {
    if (order.What == Task::Button) {
      AnswerBox(window, order);
      return false;
    }
    if (FileNameField(window) == nullptr) {
      PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(FirstButton(window)), 0);
    } else {
      AnswerFileDialogue(window, order);
    }
  }
  return false;
}

// A box that is still being set up may lose what was posted to it.
bool DialogueAnswerer::PressAgain() {
  constexpr auto patience = std::chrono::milliseconds{500};
  if (!IsWindowVisible(pressing_.Box)) {
    return true;
  }
  const auto now = std::chrono::steady_clock::now();
  if (now - pressing_.At > patience) {
    pressing_.At = now;
    PostMessageW(pressing_.Box, WM_COMMAND, static_cast<WPARAM>(pressing_.Button), 0);
  }
  return false;
}

void DialogueAnswerer::AnswerBox(HWND box, const Order& order) {
  const auto button = order.Button;
  const bool hasButton = GetDlgItem(box, button) != nullptr;
  pressing_ = {.Order = order.Number,
               .Box = box,
               .Button = hasButton ? button : FirstButton(box),
               .At = std::chrono::steady_clock::now()};
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(pressing_.Button), 0);
}

// A dialogue that is still being set up writes its own proposal over what was typed, so the name is accepted
// only when it has stayed. A dialogue that is still there long after that does not accept it.
void DialogueAnswerer::AnswerFileDialogue(HWND dialogue, const Order& order) {
  constexpr auto patience = std::chrono::seconds{15};
  constexpr auto settling = std::chrono::milliseconds{20};
  const auto now = std::chrono::steady_clock::now();
  if (order.What == Task::Cancel || (typing_.Order == order.Number && now - typing_.BegunAt > patience)) {
    PostMessageW(dialogue, WM_COMMAND, IDCANCEL, 0);
    return;
  }
  if (order.What != Task::File || (typing_.Order == order.Number && typing_.IsAccepted)) {
    return;
  }
  const HWND field = FileNameField(dialogue);
  if (typing_.Order != order.Number || TextIn(field) != Utf8(order.File)) {
    const auto begunAt = typing_.Order == order.Number ? typing_.BegunAt : now;
    typing_ = {.Order = order.Number, .BegunAt = begunAt, .At = now, .IsAccepted = false};
    Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(order.File.c_str()));
  } else if (now - typing_.At > settling) {
    typing_.IsAccepted = true;
    PostMessageW(dialogue, WM_COMMAND, IDOK, 0);
  }
}

}  // namespace zolvane
