#include "program/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "program/version.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

constexpr std::string_view endOfOptions = "--";

// A number may be negative.
bool LooksLikeOption(std::string_view argument) {
  constexpr std::string_view digits = "0123456789";
  return argument.size() > 1 && argument.front() == '-' && digits.find(argument[1]) == std::string_view::npos;
}

// "--option=" becomes the option and an empty value: the library would take the next argument for its value.
std::vector<std::string> WithEmptyValues(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  const auto end = std::ranges::find(arguments, endOfOptions);
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    const bool lacksValue = argument->starts_with("--") && argument->find('=') == argument->size() - 1;
    result.push_back(lacksValue ? argument->substr(0, argument->size() - 1) : *argument);
    if (lacksValue) {
      result.emplace_back();
    }
  }
  result.insert(result.end(), end, arguments.end());
  return result;
}

}  // namespace

std::string HelpRow(std::string_view typed, std::string_view effect) {
  constexpr std::size_t column = 24;
  std::string rows;
  while (!effect.empty()) {
    const auto end = std::min(effect.find('\n'), effect.size());
    std::string row = Joined("  ", typed);
    row.append(row.size() < column ? column - row.size() : 2, ' ');
    rows.append(row).append(effect.substr(0, end)).append("\n");
    effect.remove_prefix(std::min(end + 1, effect.size()));
    typed = {};
  }
  return rows;
}

CommandLine::CommandLine(Help help) : help_{std::move(help)}, app_{std::make_unique<CLI::App>()} {
  app_->set_help_flag();
  app_->allow_extras();
  AddFlag("-h,--help", wantsHelp_, "print this help");
  AddFlag("--version", wantsVersion_, "print the program's name and version");
}

CommandLine::~CommandLine() = default;

void CommandLine::AddOption(const std::string& name, std::string_view argument, std::string& target,
                            const std::string& effect) {
  app_->add_option(name, target, effect)->type_name(std::string{argument});
}

void CommandLine::AddOption(const std::string& name, std::string_view argument,
                            std::optional<std::string>& target, const std::string& effect) {
  app_->add_option(name, target, effect)->type_name(std::string{argument});
}

// Taken as typed: the library would split "[a,b]".
void CommandLine::AddOption(const std::string& name, std::string_view argument,
                            std::vector<std::string>& target, const std::string& effect) {
  app_->add_option_function<std::string>(
          name, [&target](const std::string& value) { target.push_back(value); }, effect)
      ->type_name(std::string{argument})
      ->trigger_on_parse()
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void CommandLine::AddFlag(const std::string& name, bool& target, const std::string& effect) {
  app_->add_flag(name, target, effect);
}

CommandLine::Asked CommandLine::Parse(const std::vector<std::string>& arguments) {
  auto reversed = WithEmptyValues(arguments);
  std::ranges::reverse(reversed);
  try {
    app_->parse(std::move(reversed));
  } catch (const CLI::ParseError&) {
    ExplainFailure(arguments);
  }
  TakeWords();
  return wantsHelp_ ? Asked::Help : wantsVersion_ ? Asked::Version : Asked::Nothing;
}

void CommandLine::TakeWords() {
  const auto rest = app_->remaining();
  const auto end = std::ranges::find(rest, endOfOptions);
  if (const auto unknown = std::find_if(rest.begin(), end, LooksLikeOption); unknown != end) {
    RefuseOption(*unknown);
  }
  words_.assign(rest.begin(), end);
  words_.insert(words_.end(), end == rest.end() ? end : std::next(end), rest.end());
}

std::string CommandLine::HelpText() const {
  std::string text = Joined("Usage: ", help_.Program, " ", help_.Usage, "\n\n", help_.Purpose,
                            help_.BeforeOptions, "\nOptions:\n");
  for (const auto* option : app_->get_options()) {
    const auto name = option->get_name(false, true);
    text += HelpRow(option->get_items_expected_max() == 0 ? name : Joined(name, " ", option->get_type_name()),
                    option->get_description());
  }
  return text + help_.AfterOptions;
}

std::string CommandLine::VersionText() const {
  return Joined(help_.Program, " ", programVersion, "\n");
}

const CLI::Option* CommandLine::Named(std::string_view name) const {
  return app_->get_option_no_throw(std::string{name.substr(0, name.find('='))});
}

bool CommandLine::TakesValue(const std::string& argument) const {
  const auto* const option = Named(argument);
  return option != nullptr && option->get_items_expected_max() > 0;
}

void CommandLine::RefuseOption(const std::string& argument) const {
  const auto name = argument.substr(0, argument.find('='));
  std::vector<std::string> names;
  for (const auto* option : app_->get_options()) {
    names.push_back(option->get_single_name());
  }
  std::ranges::transform(names, names.begin(), [](const auto& known) { return "--" + known; });
  const std::vector<std::string_view> known{names.begin(), names.end()};
  const auto suggestion = DidYouMean(name, known);
  throw UsageError{Joined("there is no option ", Quoted(name),
                          suggestion.empty() ? Joined("; see ", help_.Program, " --help") : suggestion)};
}

// The library has refused the arguments, but its own message speaks of the library.
void CommandLine::ExplainFailure(const std::vector<std::string>& arguments) const {
  const auto end = std::ranges::find(arguments, endOfOptions);
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    const bool hasValue = argument->find('=') != std::string::npos;
    const auto* const option = LooksLikeOption(*argument) ? Named(*argument) : nullptr;
    if (option == nullptr) {
      continue;
    }
    if (TakesValue(*argument) && !hasValue) {
      const auto value = std::next(argument);
      if (value == arguments.end()) {
        throw UsageError{Joined(*argument, " needs a value: ", *argument, " ", option->get_type_name())};
      }
      argument = value;
    } else if (!TakesValue(*argument) && hasValue) {
      throw UsageError{Joined(argument->substr(0, argument->find('=')), " takes no value")};
    }
    if (option->count() > 1) {
      throw UsageError{Joined(option->get_name(), " is given more than once")};
    }
  }
  throw UsageError{Joined("the options cannot be understood; see ", help_.Program, " --help")};
}

}  // namespace zolvane
