// What the programs' command lines have in common: describing options, showing them in the help, and
// complaining in plain words.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The library's header costs each of its users half a minute of compiling.
namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zolvane {

// A row of a help text: what is typed, and what it does. Later lines of an effect stand below the first.
std::string HelpRow(std::string_view typed, std::string_view effect);

class CommandLine {
 public:
  struct Help {
    std::string Program;          // "zolvane-bench"
    std::string Usage;            // what stands behind the program's name
    std::string Purpose;          // in whole lines
    std::string BeforeOptions{};  // the same
    std::string AfterOptions{};   // the same
  };

  explicit CommandLine(Help help);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Options and flags; the targets outlive the command line. `argument` names the value in the help.
  void AddOption(const std::string& name, std::string_view argument, std::string& target,
                 const std::string& effect);
  void AddOption(const std::string& name, std::string_view argument, std::optional<std::string>& target,
                 const std::string& effect);
  void AddOption(const std::string& name, std::string_view argument, std::vector<std::string>& target,
                 const std::string& effect);  // can be given more than once
  void AddFlag(const std::string& name, bool& target, const std::string& effect);

  enum class Asked { Nothing, Help, Version };

  // Takes the arguments behind the program's name, and returns what was asked for instead of
  // a run. Throws UsageError.
  Asked Parse(const std::vector<std::string>& arguments);

  // The arguments beside the options, in their order.
  const std::vector<std::string>& Words() const { return words_; }

  std::string HelpText() const;
  std::string VersionText() const;  // the program's name and version

 private:
  const CLI::Option* Named(std::string_view name) const;
  bool TakesValue(const std::string& argument) const;
  void TakeWords();
  [[noreturn]] void RefuseOption(const std::string& argument) const;
  [[noreturn]] void ExplainFailure(const std::vector<std::string>& arguments) const;

  Help help_;
  std::unique_ptr<CLI::App> app_;
  bool wantsHelp_ = false;
  bool wantsVersion_ = false;
  std::vector<std::string> words_;
};

}  // namespace zolvane
