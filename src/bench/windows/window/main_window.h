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

// The numbers of its commands, and of what it shows.
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
  // What the user asks for. An end of the page or of the window is asked for when all else has ended. The log
  // says why something asked for failed, with the text of what was thrown.
  struct Requests {
    std::function<void()> OpenPage;
    std::function<void()> ClosePage;
    std::function<void()> Save;
    std::function<void()> Help;
    std::function<void()> Quit;
    std::function<void()> Stop;        // the running operation
    std::function<bool()> MayBeEnded;  // the running operation, for the end of the page or of the window
    std::function<void()> Rest;        // what the user did last has been dealt with
  };

  // Throws std::runtime_error.
  explicit MainWindow(Requests requests);
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  HWND Handle() const { return window_; }

  // An add-in in the menu, by its caption.
  void AddMenuEntry(const std::string& caption);

  // Takes a page's frame in, at the size that it has; the window grows to it. Null takes it out.
  void Embed(HWND frame, bool hasButtons, bool hasStatusBar);

  // What stands in the window's title: the page, none if the text is empty, and what it works on.
  void ShowTitle(std::string_view page);
  void ShowPlace(std::string_view folder, std::string_view link);

  // While an operation runs it can be stopped, and of the host's other buttons only those
  // of an end can be pressed.
  void ShowOperation(bool isRunning);

  // Each is on the screen when it returns. A line of the log begins with the time.
  void AppendLog(std::string_view line);
  void ShowProgress(std::string_view text);
  void ShowStatus(std::string_view text);
  void ShowChanged(bool changed);

  // Handles all messages that wait. False when the window is gone.
  bool PumpMessages();

  // Handles messages until the window is gone.
  void Run();

  // For an operation that waits: handles messages until the event is set, except those that are meant for the
  // page. Its controls are disabled, and it does not expect to be called meanwhile. Escape asks for a stop.
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
  SIZE SizeAround(int logHeight) const;
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
  std::vector<MSG> forLater_;  // the page's own, that came while an operation waited
  bool hasButtons_ = false;
  bool isRunning_ = false;  // an operation
  bool isGone_ = false;
  bool wantsClose_ = false;
  bool wantsQuit_ = false;
};

}  // namespace zolvane
