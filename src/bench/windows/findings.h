// What a query has found out, for people: what the instrument said it is, beside what was made of that.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "config/configuration.h"

namespace zolvane {

class Findings {
 public:
  // The instrument has answered a command.
  void Hear(std::string_view command, std::string_view reply);

  // In one line; empty if the instrument said nothing about itself. `file` is the configuration, as the query
  // has left it, and `pumpText` what the page shows of the pumps.
  std::string Text(const Configuration& configuration, const std::string& file,
                   std::string_view pumpText) const;

 private:
  std::map<std::string, std::string, std::less<>> replies_;  // by command
};

}  // namespace zolvane
