// What the page's controls do differently from the system's own, in whatever window the page sits.
//
// Keys: a host whose message loop knows dialogue keys moves the focus itself, across its own controls and the
// page's. With any other host these keys end up at the control that has the focus, and then, and only then,
// the page does what a dialogue would do. Enter presses the button that has the focus, and arrows walk
// through boxes and buttons, in every host.
//
// Check boxes: a click goes from unticked to ticked and back. A program can set a box grey; a click on it
// unticks it.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// Gives a control of the system, a child of the page's frame container, this behaviour. Takes the control's
// user data; ends with the control.
void MakePageControl(HWND control);

}  // namespace zolvane
