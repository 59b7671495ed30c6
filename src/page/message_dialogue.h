// Messages that must reach the user even while the host shows its own dialogues. Each is logged through the
// host before it is shown and after it is answered.
#pragma once

#include <cstdint>
#include <string>

#include "host/environment.h"
#include "host/host_object.h"

namespace zolvane {

// Shows the message in the host's own dialogue when the host offers one, otherwise in a system message box
// with the exclamation icon, brought to the foreground. Waits for the answer and returns the chosen button's
// number; 0 if no answer could be read. `log` gets the lines of the log, and `host` may offer the dialogue;
// either may be null. `extraStyle` is added to the box's style only.
std::int16_t ShowMessage(Environment& environment, HostObject* log, const std::string& message,
                         std::int16_t style, const std::string& title, HostObject* host,
                         std::int16_t extraStyle);

}  // namespace zolvane
