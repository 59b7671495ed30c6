// Keyboard use of the page's controls in whatever window the page sits.
//
// A host whose message loop knows dialogue keys moves the focus itself, across its own controls and the
// page's. With any other host these keys end up at the control that has the focus, and then, and only then,
// the page does what a dialogue would do. Enter presses the button that has the focus, and arrows walk
// through boxes and buttons, in every host.
#pragma once

#include "shell/windows/windows_headers.h"

namespace zolvane {

// Has a control, a child of the page's frame container, answer Tab, arrows, Enter and access keys. Takes the
// control's user data; ends with the control.
void AnswerDialogueKeys(HWND control);

}  // namespace zolvane
