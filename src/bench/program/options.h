// The command line of zolvane-bench.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "bench/host/session_options.h"

namespace zolvane {

struct Options : SessionOptions {
  bool OffersHostDialog = false;
  bool Replaces = false;  // an export may write into a file that exists
  bool TracesReads = false;
  bool KeepsGoing = false;
  std::optional<std::string> File;   // of press
  std::vector<std::string> Command;  // with its arguments
};

// `arguments` are those after the program's name. Throws UsageError.
std::variant<Options, Information> ParseOptions(const std::vector<std::string>& arguments);

}  // namespace zolvane
