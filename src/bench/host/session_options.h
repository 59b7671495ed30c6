// The options of every program that plays host sessions on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "program/command_line.h"

namespace zolvane {

struct SessionOptions {
  std::string Folder;  // the program folder, absolute
  std::string Link;    // as it was given
  double TimeoutSeconds = 5;
  std::vector<std::int32_t> Answers;  // buttons
  bool AffirmsRest = false;
  std::optional<std::string> Trace;  // "-" is standard output
  bool PrintsJson = false;
  bool IsQuiet = false;
};

// The number of seconds given with --timeout. Throws UsageError.
double ParseTimeout(const std::string& text);

// What --link takes, as the help shows it. `usual` says what happens without it.
std::string LinkHelp(std::string_view usual = "default: sim");

// The options as they are typed; they are interpreted once the whole line has been parsed.
class TypedSessionOptions {
 public:
  // What stands for an option that is not given.
  struct Defaults {
    std::string Folder = ".";
    std::string FolderHelp = "default: the current folder";
    std::string Link = "sim";
    std::string LinkHelp = "default: sim";
  };

  explicit TypedSessionOptions(const Defaults& defaults);

  // Both outlive the command line.
  void Describe(CommandLine& line, SessionOptions& options);

  // Throws UsageError.
  void TakeInto(SessionOptions& options) const;

 private:
  Defaults defaults_;
  std::string folder_;
  std::string timeout_ = "5";
  std::vector<std::string> answers_;
};

// A text that the user asked for instead of a run: the help or the version.
struct Information {
  std::string Text;
};

}  // namespace zolvane
