// File names as the bench passes them on: UTF-8 texts (elsewhere than on Windows any bytes), absolute and
// without detours, as a file dialogue gives them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zolvane {

std::filesystem::path PathOf(std::string_view text);
std::string TextOf(const std::filesystem::path& path);

// Absolute and lexically normal, without a separator at its end. Throws UsageError when
// there is no current folder.
std::string AbsolutePath(std::string_view text);

// Ends as only the name of a folder does: in a separator, "." or "..".
bool NamesFolder(std::string_view text);

std::string ConfigFileIn(const std::string& folder);

// The same file, by name or on the disk.
bool IsSameFile(const std::string& left, const std::string& right);

}  // namespace zolvane
