// The command line of zolvane-bench.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zolvane {

struct Options {
  std::string Folder;  // the program folder, absolute
  std::string Link = "sim";
  double TimeoutSeconds = 5;
  std::vector<std::int32_t> Answers;  // buttons
  bool AffirmsRest = false;
  bool OffersHostDialog = false;
  std::optional<std::string> Trace;  // "-" is standard output
  bool Replaces = false;             // an export may write into a file that exists
  bool TracesReads = false;
  bool PrintsJson = false;
  bool KeepsGoing = false;
  bool IsQuiet = false;
  std::optional<std::string> File;   // of press
  std::vector<std::string> Command;  // with its arguments
};

// The number of seconds given with --timeout. Throws UsageError.
double ParseTimeout(const std::string& text);

// What --link takes, as the help shows it.
std::string LinkHelp();

// A text that the user asked for instead of a run: the help or the version.
struct Information {
  std::string Text;
};

// `arguments` are those after the program's name. Throws UsageError.
std::variant<Options, Information> ParseOptions(const std::vector<std::string>& arguments);

}  // namespace zolvane
