#include "files/paths.h"

#include <system_error>

#include "config/configuration.h"
#include "text/joined.h"
#include "text/usage_error.h"

namespace zolvane {

std::filesystem::path PathOf(std::string_view text) {
  return std::filesystem::path{std::u8string{text.begin(), text.end()}};
}

std::string TextOf(const std::filesystem::path& path) {
  const auto text = path.u8string();
  return {text.begin(), text.end()};
}

std::string AbsolutePath(std::string_view text) {
  std::error_code failure;
  auto path = std::filesystem::absolute(PathOf(text), failure).lexically_normal();
  if (failure) {
    throw UsageError{Joined("the current folder cannot be read: ", failure.message())};
  }
  if (!path.has_filename() && path.has_relative_path()) {
    path = path.parent_path();
  }
  return TextOf(path);
}

bool NamesFolder(std::string_view text) {
  const auto name = PathOf(text).filename();
  return name.empty() || name == "." || name == "..";
}

std::string ConfigFileIn(const std::string& folder) {
  return TextOf(PathOf(folder) / configFileName);
}

bool IsSameFile(const std::string& left, const std::string& right) {
  std::error_code failure;
  if (left == right || std::filesystem::equivalent(PathOf(left), PathOf(right), failure)) {
    return true;
  }
  // Neither is there: the folders that are decide.
  return failure && std::filesystem::weakly_canonical(PathOf(left), failure) ==
                        std::filesystem::weakly_canonical(PathOf(right), failure);
}

}  // namespace zolvane
