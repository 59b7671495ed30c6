#include "bench/json_file.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "bench/paths.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

std::string ReadWhole(const std::string& file) {
  errno = 0;
  const std::ifstream stream{PathOf(file), std::ios::binary};
  std::ostringstream text;
  if (stream) {
    text << stream.rdbuf();
  }
  if (!stream || text.bad()) {
    throw UsageError{file + ": cannot be read: " + std::generic_category().message(errno)};
  }
  return std::move(text).str();
}

}  // namespace

nlohmann::json ReadJsonFile(const std::string& file) {
  const auto text = ReadWhole(file);
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 1, column 7: ...": from the place on
    const std::string reason{error.what()};
    const auto place = reason.find("line ");
    throw UsageError{file + ": not JSON: " + (place == std::string::npos ? reason : reason.substr(place))};
  }
}

}  // namespace zolvane
