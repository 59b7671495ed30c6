#include "files/json_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "files/paths.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

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

// `count` bytes were read before the mistake was seen.
std::string PlaceOf(std::string_view text, std::size_t count) {
  const auto read = text.substr(0, count == 0 ? 0 : count - 1);
  const auto line = static_cast<std::size_t>(std::ranges::count(read, '\n')) + 1;
  const auto column = read.size() - (read.rfind('\n') + 1) + 1;
  return Joined("line ", std::to_string(line), ", column ", std::to_string(column));
}

}  // namespace

nlohmann::json ReadJsonFile(const std::string& file) {
  return ParseJson(ReadWhole(file), file);
}

nlohmann::json ParseJson(std::string_view text, const std::string& file) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    Refuse(file, Joined("not JSON: ", PlaceOf(text, error.byte)));
  } catch (const nlohmann::json::exception&) {
    Refuse(file, "not JSON: a number in it is too large");
  }
}

}  // namespace zolvane
