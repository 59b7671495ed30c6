#include "bench/json_file.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "bench/console.h"
#include "bench/joined.h"
#include "bench/paths.h"
#include "bench/usage_error.h"

namespace zolvane {
namespace {

// Some files, as devices that give zeros, never end.
constexpr std::size_t largestFile = 16'000'000;

[[noreturn]] void Refuse(const std::string& file, std::string_view reason) {
  throw UsageError{Joined(Printable(file), ": ", Printable(reason))};
}

std::string ReadWhole(const std::string& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(PathOf(file), ignored)) {
    Refuse(file, "is a folder");
  }
  errno = 0;
  std::ifstream stream{PathOf(file), std::ios::binary};
  if (!stream) {
    Refuse(file, Joined("cannot be read: ", std::generic_category().message(errno)));
  }
  std::string text;
  std::array<char, 65536> chunk{};
  while (stream.read(chunk.data(), chunk.size()) || stream.gcount() > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
    if (text.size() > largestFile) {
      Refuse(file, "is larger than 16 megabytes");
    }
  }
  if (stream.bad()) {
    Refuse(file, Joined("cannot be read: ", std::generic_category().message(errno)));
  }
  return text;
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
