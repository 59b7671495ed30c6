// Reading a file that the user named, whole but not without end: some files, as devices
// that give zeros, have none.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace zolvane {

// Its bytes. Throws UsageError for a folder, for a file that cannot be read, and for more than 16 megabytes.
// `kind` says what the file should be: "run file".
std::string ReadWholeFile(const std::string& file, std::string_view kind);

// The same of a stream that is open. `name` is for people.
std::string ReadWholeStream(std::istream& stream, std::string_view name, std::string_view kind);

}  // namespace zolvane
