#include "files/json_file.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include "files/whole_file.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

[[noreturn]] void Refuse(const std::string& file, std::string_view reason) {
  throw UsageError{Joined(Printable(file), ": ", Printable(reason))};
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
  return ParseJson(ReadWholeFile(file, "JSON file"), file);
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
