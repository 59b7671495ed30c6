#include "win32/message_queue.h"

namespace zolvane {
namespace {

// Given back only at the end: put back at once, it would come before all timers and
// everything that the user does.
class QuitRequest {
 public:
  QuitRequest() = default;
  ~QuitRequest() {
    if (isSeen_) {
      PostQuitMessage(status_);
    }
  }
  QuitRequest(const QuitRequest&) = delete;
  QuitRequest& operator=(const QuitRequest&) = delete;

  // True when the message is a request to quit.
  bool Takes(const MSG& message) {
    if (message.message != WM_QUIT) {
      return false;
    }
    isSeen_ = true;
    status_ = static_cast<int>(message.wParam);
    return true;
  }

 private:
  bool isSeen_ = false;
  int status_ = 0;
};

}  // namespace

void DispatchWaitingMessages() {
  QuitRequest quit;
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    if (!quit.Takes(message)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

void DiscardMessages(HWND window, UINT first, UINT last) {
  QuitRequest quit;
  MSG message{};
  while (PeekMessageW(&message, window, first, last, PM_REMOVE) != FALSE) {
    quit.Takes(message);
  }
}

}  // namespace zolvane
