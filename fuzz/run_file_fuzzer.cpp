// Any bytes as a run file: commands, or one refusal that says what is wrong.
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

#include "bench/job/job.h"
#include "require.h"
#include "text/usage_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream input{std::string{data, data + size}};
  try {
    zolvane::ParseJob({"run", "-"}, std::nullopt, input);
  } catch (const zolvane::UsageError& error) {
    Require(!std::string{error.what()}.empty());
  }
  return 0;
}
