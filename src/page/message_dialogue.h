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
// number; 0 if no answer could be read. The host may be null.
std::int16_t ShowMessage(Environment& environment, HostObject* host, const std::string& message,
                         std::int16_t style, const std::string& title);

}  // namespace zolvane
