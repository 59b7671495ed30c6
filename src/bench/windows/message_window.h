// The host's own message dialogue: a window beside the host's that the user answers while the host goes on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "bench/answers.h"
#include "shell/windows/windows_headers.h"

namespace zolvane {

inline constexpr const wchar_t* messageWindowClass = L"HestrionMessage";

class MessageWindow {
 public:
  // Its buttons have the numbers of their answers. The owner may be null. Throws std::runtime_error.
  MessageWindow(HWND owner, const Question& question);
  ~MessageWindow();
  MessageWindow(const MessageWindow&) = delete;
  MessageWindow& operator=(const MessageWindow&) = delete;

  // Negative while it is open.
  std::int16_t Result() const { return result_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void AddContent(const Question& question);
  void Answer(std::int32_t button);

  HWND owner_;
  HWND window_ = nullptr;
  std::int32_t closingButton_ = 0;
  std::int16_t result_ = -1;
};

}  // namespace zolvane
