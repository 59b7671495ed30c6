#include "files/whole_file.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "files/paths.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {

std::string ReadWholeFile(const std::string& file, std::string_view kind) {
  const auto name = Printable(file);
  std::error_code ignored;
  if (std::filesystem::is_directory(PathOf(file), ignored)) {
    throw UsageError{Joined(name, " is a folder and no ", kind)};
  }
  errno = 0;
  std::ifstream stream{PathOf(file), std::ios::binary};
  if (!stream) {
    throw UsageError{
        Joined("the ", kind, " ", name, " cannot be opened: ", std::generic_category().message(errno))};
  }
  return ReadWholeStream(stream, name, kind);
}

std::string ReadWholeStream(std::istream& stream, std::string_view name, std::string_view kind) {
  constexpr std::size_t mostBytes = std::size_t{16} * 1024 * 1024;
  std::string text;
  std::array<char, 65536> piece{};
  while (stream && text.size() <= mostBytes) {
    stream.read(piece.data(), piece.size());
    text.append(piece.data(), static_cast<std::size_t>(stream.gcount()));
  }
  if (text.size() > mostBytes) {
    throw UsageError{Joined(name, " is larger than 16 megabytes, too large for a ", kind)};
  }
  if (stream.bad()) {
    throw UsageError{Joined(name, " cannot be read to its end")};
  }
  return text;
}

}  // namespace zolvane
