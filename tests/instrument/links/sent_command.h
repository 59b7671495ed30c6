// One command over a link that nobody interrupts.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "instrument/links/link_factory.h"

namespace zolvane {

inline const InterruptFlag quietInterrupt;

// The reply, or "failed", which leaves the reply as it was.
inline std::string Send(InstrumentLink& link, std::string command) {
  std::string reply = "as it was";
  if (link.SendCommand(command, reply, 0) != true) {
    EXPECT_EQ(reply, "as it was");
    return "failed";
  }
  return reply;
}

}  // namespace zolvane
