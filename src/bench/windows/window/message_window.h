// The host's own message dialogue: a separate window that the user answers while the host keeps running.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/job/box_answers.h"
#include "win32/unique_handle.h"

namespace zolvane {

inline constexpr const wchar_t* messageWindowClass = L"HestrionMessage";

class MessageWindow {
 public:
  // The number of a button is the answer it stands for. The owner may be null. Throws std::runtime_error.
  MessageWindow(HWND owner, const Question& question);
  ~MessageWindow();
  MessageWindow(const MessageWindow&) = delete;
  MessageWindow& operator=(const MessageWindow&) = delete;

  // Negative while it is open.
  std::int16_t Result() const { return result_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK OnNextMessage(int code, WPARAM removal, LPARAM message);
  LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(std::int32_t button);
  void AddContent(const Question& question);
  HWND AddChild(const wchar_t* className, const std::string& text, DWORD style, const RECT& place, int id);
  void ResizeTo(SIZE inside);
  int Scaled(int pixels) const;
  void Answer(std::int32_t button);

  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a hook carries no pointer of ours
  inline static MessageWindow* newest_ = nullptr;

  MessageWindow* const before_ = newest_;
  const HWND owner_;
  const UINT dpi_;
  const UniqueFont font_;
  const std::vector<std::int32_t> buttons_;
  HWND window_ = nullptr;
  UniqueHandle<HHOOK, UnhookWindowsHookEx> keyHook_;
  std::int16_t result_ = -1;
};

}  // namespace zolvane
