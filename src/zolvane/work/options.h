// What the command line of zolvane asks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bench/host/session_options.h"

namespace zolvane {

struct CustodyOptions : SessionOptions {
  std::optional<std::string> By;  // who answers for it
  std::string Reason;
  std::vector<std::string> Despite;  // codes of objections and verdicts that are let pass
  std::vector<std::string> Faults;   // of a simulated link
  bool Rehearses = false;
  bool ComparesWire = false;
  bool TakesInstrument = false;  // restore: the instrument's values too
  bool PrintsCsv = false;
  std::optional<std::string> Explains;  // the code of a finding
  std::vector<std::string> Against;     // files that hold checkpoints
  std::vector<std::string> Command;     // with its arguments
};

}  // namespace zolvane
