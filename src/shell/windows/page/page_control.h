// What the page's controls do differently from the system's own, in whatever window the page is.
//
// Keys: a host whose message loop handles dialogue keys moves the focus itself, across its own controls and
// the page's. In any other host these keys reach the control that has the focus; then, and only then, the
// page does what a dialogue would do. In every host, Enter presses the button that has the focus, and the
// arrows walk through boxes and buttons.
//
// Check boxes: a click toggles between unticked and ticked. A program can set a box grey; a click unticks it.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Gives this behaviour to a control of the system, a child of the page's frame container. Uses the control's
// user data; ends with the control.
void MakePageControl(HWND control);

}  // namespace zolvane
