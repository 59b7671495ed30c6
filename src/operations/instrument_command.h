// Sending one command line to the instrument.
#pragma once

#include <string>
#include <string_view>

#include "operations/operation_context.h"

namespace zolvane {

// Sends the command through the host's link and waits for the answer. `ok` tells whether the instrument
// answered. If not, the user has seen one "Communication Error" box and `reply` is as the link left it.
void SendInstrumentCommand(const OperationContext& context, std::string command, std::string& reply,
                           bool& ok);

// A reply without its line ends.
std::string StrippedReply(std::string_view reply);

// A reply as whoever watches the wire judges it: without blanks and line ends, also lone ones, at either end.
std::string JudgedReply(std::string_view reply);

// Whether the instrument says that it has taken a line that sets a value or keeps all.
bool IsAcceptance(std::string_view reply);

}  // namespace zolvane
