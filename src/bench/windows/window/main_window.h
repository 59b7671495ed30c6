// The host's window: a menu of add-ins, the embedded page, the buttons for it, a log, and a status bar.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "win32/window_metrics.h"
#include "win32/windows_headers.h"

namespace zolvane {

inline constexpr const wchar_t* mainWindowClass = L"HestrionBench";

// The numbers of its commands and of its parts.
enum MainWindowId : int {
  openPageId = 1000,
  closePageId,
  saveId,
  helpId,
  stopId,
  progressId,
  quitId,
  logId,
  statusBarId
};

class MainWindow {
 public:
  // What the user asks for. Closing the page or the window is requested when everything else has ended. If a
  // request throws, the log says why.
  struct Requests {
    std::function<void()> OpenPage;
    std::function<void()> ClosePage;
    std::function<void()> Save;
    std::function<void()> Help;
    std::function<void()> Quit;
    std::function<void()> Stop;        // the running operation
    std::function<bool()> MayBeEnded;  // whether the running operation may be ended to close them
    std::function<void()> Rest;        // the user's last action has been handled
  };

  // Throws std::runtime_error.
  explicit MainWindow(Requests requests);
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  HWND Handle() const { return window_; }

  // Adds an add-in to the menu, by its caption.
  void AddMenuEntry(const std::string& caption);

  // Takes in a page's frame at its own size; the window grows to fit. Null takes it out.
  void Embed(HWND frame, bool hasButtons, bool hasStatusBar);

  // The parts of the window's title: the page (none if the text is empty), and what it works on.
  void ShowTitle(std::string_view page);
  void ShowPlace(std::string_view folder, std::string_view link);

  // While an operation runs, the user can stop it; of the host's other buttons only Close works.
  void ShowOperation(bool isRunning);

  // What these show is on the screen when they return. A line of the log begins with the time.
  void AppendLog(std::string_view line);
  void ShowProgress(std::string_view text);
  void ShowStatus(std::string_view text);
  void ShowChanged(bool changed);

  // Handles all waiting messages. False once the window is gone.
  bool PumpMessages();

  // Handles messages until the window is gone.
  void Run();

  // For an operation that waits: handles messages until the event is set, except those for the page, whose
  // controls are disabled and which does not expect to be called meanwhile. Escape requests a stop.
  void PumpUntil(HANDLE event);

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(int id);
  void Request(int id);
  void RequestEnd(bool& request);
  void Postpone(bool& request);
  bool IsForPage(const MSG& message) const;
  void HandleMeanwhile(MSG& message);
  void LimitSize(MINMAXINFO& limits) const;
  SIZE SizeAround(int logPixels) const;
  void UpdateTitle() const;
  void DoPostponed();
  int Scaled(int pixels) const;
  HWND AddChild(const wchar_t* className, const wchar_t* text, DWORD style, int id);
  void CreateMenu();
  void CreateParts();
  void FitToPage();
  void Arrange();
  void ArrangeButtons(int top) const;
  void ShowPart(int part, std::string_view text) const;
  void Handle(MSG& message) const;

  Requests requests_;
  HWND window_ = nullptr;
  HWND frame_ = nullptr;
  HWND progress_ = nullptr;
  HWND log_ = nullptr;
  HWND statusBar_ = nullptr;
  HMENU addIns_ = nullptr;
  UINT dpi_ = 96;
  UniqueFont font_;
  std::wstring page_;
  std::wstring place_;
  std::vector<MSG> forLater_;  // the page's own messages from while an operation waited
  bool hasButtons_ = false;
  bool isRunning_ = false;  // an operation
  bool isGone_ = false;
  bool wantsClose_ = false;
  bool wantsQuit_ = false;
};

}  // namespace zolvane
