// `check`: what is wrong in a configuration, or will be passed over by the add-in.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "text/json_members.h"

namespace zolvane {

enum class Grade : std::uint8_t {
  Error,    // the instrument or the file will not hold what the file seems to say
  Warning,  // something is passed over
  Note      // worth knowing
};

inline constexpr std::array allGrades{Grade::Error, Grade::Warning, Grade::Note};

std::string_view NameOf(Grade grade);  // "error", "warning", "note"

// By its name.
Json JsonOf(Grade grade);
bool Take(const Json& from, Grade& grade);

// What a code means, and what to do about it.
struct Rule {
  std::string_view Code;  // stable
  zolvane::Grade Grade;
  std::string_view Meaning;
  std::string_view Advice;
};

struct Finding {
  std::string Code;
  zolvane::Grade Grade = Grade::Note;
  std::string File;
  std::size_t Line = 0;  // from 1; 0: of the whole file
  std::string Text;      // what is wrong, and what the add-in makes of it
  std::string Advice;    // what to do

  bool operator==(const Finding&) const = default;
};

constexpr auto MembersOf(const Finding*) {
  return std::tuple{
      Member{"code", &Finding::Code, Presence::Always}, Member{"grade", &Finding::Grade, Presence::Always},
      Member{"file", &Finding::File, Presence::Always}, Member{"line", &Finding::Line, Presence::Always},
      Member{"text", &Finding::Text, Presence::Always}, Member{"advice", &Finding::Advice}};
}

// In the order of the lines. `file` is its name, for the findings.
std::vector<Finding> CheckConfiguration(const std::string& configuration, const std::string& file);

// Of a backup that would be imported over the configuration.
std::vector<Finding> CheckBackup(const std::string& backup, const std::string& file,
                                 const std::string& configuration);

bool HasError(const std::vector<Finding>& findings);

// Every code, in the order of the rules.
std::vector<std::string_view> FindingCodes();

// Null if there is no such code.
const Rule* RuleOf(std::string_view code);

// What the code means and what to do, as text for people.
std::string ExplanationOf(const Rule& rule);

}  // namespace zolvane
