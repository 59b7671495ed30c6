#include "bench/host/session_options.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <system_error>

#include "bench/job/box_answers.h"
#include "files/paths.h"
#include "instrument/links/link_factory.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

std::string ParseFolder(const std::string& text) {
  if (text.empty()) {
    throw UsageError{"--folder: the name of the folder is empty"};
  }
  return AbsolutePath(text);
}

// Several lists count as one.
std::vector<std::int32_t> ParseAnswerLists(const std::vector<std::string>& lists) {
  std::vector<std::int32_t> answers;
  for (const auto& list : lists) {
    std::ranges::copy(ParseAnswers(list), std::back_inserter(answers));
  }
  return answers;
}

}  // namespace

double ParseTimeout(const std::string& text) {
  constexpr double longest = 1e6;
  double seconds = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == text.data() + text.size();
  if (!isNumber || !(seconds > 0) || seconds > longest) {
    throw UsageError{Joined("--timeout takes a number of seconds above 0 and up to 1000000 (0.5, 10), not ",
                            Quoted(text))};
  }
  return seconds;
}

std::string LinkHelp(std::string_view usual) {
  constexpr std::size_t width = 23;
  std::string text = Joined("the instrument (", usual, "):");
  for (const auto& [usage, effect] : LinkKindsHelp()) {
    text.append("\n").append(usage).append(width - usage.size(), ' ').append(effect);
  }
  return text;
}

TypedSessionOptions::TypedSessionOptions(const Defaults& defaults)
    : defaults_{defaults}, folder_{defaults.Folder} {}

void TypedSessionOptions::Describe(CommandLine& line, SessionOptions& options) {
  options.Link = defaults_.Link;
  line.AddOption("--folder", "DIR", folder_,
                 Joined("the program folder, which holds Zolvane.ini (", defaults_.FolderHelp, ")"));
  line.AddOption("--link", "LINK", options.Link, LinkHelp(defaults_.LinkHelp));
  line.AddOption("--timeout", "SECONDS", timeout_,
                 "how long a command waits for its reply (default: 5; a fraction is allowed)");
  line.AddOption("--answer", "A,B,...", answers_,
                 "answers to the boxes, in their order: ok, cancel, yes, no");
  line.AddFlag("--yes", options.AffirmsRest, "answer every box with OK or Yes once --answer has run out");
  line.AddOption("--trace", "FILE", options.Trace,
                 "write every interaction as JSON Lines to FILE (- is standard output)");
  line.AddFlag("--json", options.PrintsJson, "print results as one JSON document");
  line.AddFlag("--quiet", options.IsQuiet, "print errors and warnings only");
}

void TypedSessionOptions::TakeInto(SessionOptions& options) const {
  options.Folder = ParseFolder(folder_);
  options.TimeoutSeconds = ParseTimeout(timeout_);
  options.Answers = ParseAnswerLists(answers_);
  if (options.Trace && options.Trace->empty()) {
    throw UsageError{"--trace: the name of the file is empty"};
  }
}

}  // namespace zolvane
