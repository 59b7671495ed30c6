// What became of a command.
#pragma once

#include <optional>
#include <string>

namespace zolvane {

struct Delivery {
  // False: nothing of the command was sent.
  bool HasLeft = false;

  // Why it was not answered, as a sentence for people. Empty when it was, and when there is no more to say
  // than that the instrument kept silent.
  std::string Problem;

  // A line that came while the command waited and did not answer it, as it came.
  std::optional<std::string> SkippedLine;
};

}  // namespace zolvane
