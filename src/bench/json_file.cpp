#include "bench/json_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "bench/console.h"
#include "bench/joined.h"
#include "bench/paths.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

[[noreturn]] void Refuse(const std::string& file, std::string_view reason) {
  throw UsageError{Joined(Printable(file), ": ", Printable(reason))};
}

std::string ReadWhole(const std::string& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(PathOf(file), ignored)) {
    Refuse(file, "is a folder");
  }
  errno = 0;
  const std::ifstream stream{PathOf(file), std::ios::binary};
  std::ostringstream text;
  if (stream) {
    text << stream.rdbuf();
  }
  if (!stream || text.bad()) {
    Refuse(file, Joined("cannot be read: ", std::generic_category().message(errno)));
  }
  return std::move(text).str();
}

}  // namespace

nlohmann::json ReadJsonFile(const std::string& file) {
  return ParseJson(ReadWhole(file), file);
}

nlohmann::json ParseJson(std::string_view text, const std::string& file) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 1, column 7: ...": from the place on
    const std::string reason{error.what()};
    const auto place = reason.find("line ");
    Refuse(file, Joined("not JSON: ", place == std::string::npos ? reason : reason.substr(place)));
  }
}

}  // namespace zolvane
