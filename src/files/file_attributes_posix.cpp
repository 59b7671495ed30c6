#include "files/file_attributes_posix.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace zolvane {
namespace {

constexpr mode_t permissions = 07777;

// In a file with an access list these are the rights of all named users and groups together.
bool GroupHasMoreThanOthers(mode_t mode) {
  return (((mode & S_IRWXG) >> 3) & ~(mode & S_IRWXO)) != 0;
}

bool GiveOwner(const struct stat& wanted, const struct stat& present, const FileHandle& to) {
  const bool hasOwner = wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid;
  return hasOwner || ::fchown(to.Number(), wanted.st_uid, wanted.st_gid) == 0 ||
         ::fchown(to.Number(), static_cast<uid_t>(-1), wanted.st_gid) == 0 ||
         (errno == EPERM && !GroupHasMoreThanOthers(wanted.st_mode));
}

// A call that fills a buffer, and tells the size that it needs when there is none.
template <class Call>
std::optional<std::string> Filled(Call call) {
  for (;;) {
    const auto size = call(nullptr, std::size_t{0});
    if (size <= 0) {
      return size == 0 ? std::optional{std::string{}} : std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (const auto filled = call(bytes.data(), bytes.size()); filled >= 0) {
      bytes.resize(static_cast<std::size_t>(filled));
      return bytes;
    }
    if (errno != ERANGE) {
      return std::nullopt;
    }
  }
}

// Nothing when the file system has no such attributes.
std::vector<std::string> AttributeNames(const FileHandle& file) {
  const auto list =
      Filled([&](char* place, std::size_t size) { return ::flistxattr(file.Number(), place, size); });
  std::vector<std::string> names;
  for (std::string_view rest = list ? std::string_view{*list} : std::string_view{}; !rest.empty();) {
    names.emplace_back(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(rest.size(), names.back().size() + 1));
  }
  return names;
}

std::optional<std::string> AttributeOf(const FileHandle& file, const std::string& name) {
  return Filled(
      [&](void* place, std::size_t size) { return ::fgetxattr(file.Number(), name.c_str(), place, size); });
}

// These are the system's own, by the rules for the place and the program.
bool IsGivenBySystem(std::string_view name) {
  return name.starts_with("security.");
}

bool GiveAttribute(const FileHandle& from, const FileHandle& to, const std::string& name) {
  const auto value = AttributeOf(from, name);
  if (value && value == AttributeOf(to, name)) {
    return true;
  }
  const bool isGiven = value && ::fsetxattr(to.Number(), name.c_str(), value->data(), value->size(), 0) == 0;
  return isGiven || IsGivenBySystem(name);
}

// A new file may have inherited an access list from its folder that the old one does not have.
bool GiveExtendedAttributes(const FileHandle& from, const FileHandle& to) {
  const auto wanted = AttributeNames(from);
  const auto isSuperfluous = [&](const std::string& name) {
    return std::ranges::find(wanted, name) == wanted.end() && !IsGivenBySystem(name);
  };
  return std::ranges::all_of(AttributeNames(to),
                             [&](const std::string& name) {
                               return !isSuperfluous(name) || ::fremovexattr(to.Number(), name.c_str()) == 0;
                             }) &&
         std::ranges::all_of(wanted, [&](const std::string& name) { return GiveAttribute(from, to, name); });
}

}  // namespace

// The permissions come last: a change of owner takes some away, and an access list brings its own.
bool GiveAttributes(const FileHandle& from, const FileHandle& to) {
  struct stat wanted{};
  struct stat present{};
  if (::fstat(from.Number(), &wanted) != 0 || ::fstat(to.Number(), &present) != 0 ||
      !GiveOwner(wanted, present, to) || !GiveExtendedAttributes(from, to)) {
    return false;
  }
  const bool hasMode = ::fstat(to.Number(), &present) == 0 && present.st_mode == wanted.st_mode;
  return hasMode || ::fchmod(to.Number(), wanted.st_mode & permissions) == 0;
}

}  // namespace zolvane
