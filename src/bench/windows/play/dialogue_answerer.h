// Answers the boxes and file dialogues of another thread as a user at the keyboard would: on a thread of its
// own that waits for the next one to appear.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "win32/unique_handle.h"
#include "win32/windows_headers.h"

namespace zolvane {

class DialogueAnswerer {
 public:
  // Answers what the calling thread shows.
  DialogueAnswerer();
  ~DialogueAnswerer();
  DialogueAnswerer(const DialogueAnswerer&) = delete;
  DialogueAnswerer& operator=(const DialogueAnswerer&) = delete;

  // Call these when the box or dialogue is about to appear.
  void PressButton(std::int32_t button);
  void ChooseFile(std::optional<std::string> path);  // empty: Cancel

  // It is gone; what was left to do is dropped.
  void Closed();

 private:
  enum class Task : std::uint8_t { None, Button, File, Cancel };

  struct Order {
    Task What = Task::None;
    std::int32_t Button = 0;
    std::wstring File;
    unsigned Number = 0;  // counts the orders
  };

  // Only the thread itself knows it.
  struct Typing {
    unsigned Order = 0;
    std::chrono::steady_clock::time_point BegunAt;
    std::chrono::steady_clock::time_point At;  // of the last time that the name was typed
    bool IsAccepted = false;
  };

  struct Pressing {
    unsigned Order = 0;
    HWND Box = nullptr;
    std::int32_t Button = 0;
    std::chrono::steady_clock::time_point At;
  };

  void Begin(Task task, std::int32_t button, std::wstring file);
  Order Ordered() const;
  void Done(const Order& order);
  void Run(const std::stop_token& ending);
  bool Attempt(const Order& order);
  bool PressAgain();
  void AnswerBox(HWND box, const Order& order);
  void AnswerFileDialogue(HWND dialogue, const Order& order);

  DWORD user_;
  mutable std::mutex mutex_;
  // Set by an order and by the end. Not a condition of the standard library: MinGW's now and then sleeps
  // through being notified while another thread begins to wait, and then nobody ends the thread any more.
  UniqueHandle<HANDLE, CloseHandle> changed_;
  Order order_;
  Typing typing_;
  Pressing pressing_;
  std::jthread thread_;
};

}  // namespace zolvane
