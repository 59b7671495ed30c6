// The thread's messages: letting the waiting ones run, and taking some away. A request to quit, which the system
// gives to whoever looks for any message, stays for the host's own loop.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Dispatches every message that waits now.
void DispatchWaitingMessages();

// Takes the messages of these numbers away from the window and its children. The window is not null.
void DiscardMessages(HWND window, UINT first, UINT last);

}  // namespace zolvane
