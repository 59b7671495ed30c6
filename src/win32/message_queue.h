// The thread's messages: dispatching those that wait, and discarding some. A request to quit, which the
// system gives to anyone who looks for a message, is left for the host's own loop.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Dispatches every message that is waiting now.
void DispatchWaitingMessages();

// Discards the messages of these numbers for the window and its children. The window is not null.
void DiscardMessages(HWND window, UINT first, UINT last);

}  // namespace zolvane
