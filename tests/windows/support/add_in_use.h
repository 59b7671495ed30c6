// What a host asks of the add-in before anything else.
#pragma once

#include <hestrion_cmds.h>

#include "win32/com_ptr.h"

namespace zolvane {

ComPtr<IAddInForm> FormOf(const ComPtr<IAddIn>& addIn);

// The frame container's window. Null once the page is unloaded.
HWND FrameOf(const ComPtr<IAddInForm>& form);

}  // namespace zolvane
