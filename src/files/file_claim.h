// A file that one program at a time uses as its own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace zolvane {

// Lasts as long as the object, and never longer than the process.
class FileClaim {
 public:
  virtual ~FileClaim() = default;
};

// Where the mark of a claim on the file stands.
std::filesystem::path MarkBeside(const std::string& file);

// Claims the file, which need not exist, under whichever name it is reached. Throws UsageError, naming the
// file and the process, if another claim lasts. While it lasts a hidden file stands beside the file
// (".memory.json.in-use"), because the file itself is replaced with each change.
std::unique_ptr<FileClaim> ClaimFile(const std::string& file);

// The system's part. Null if another claim lasts; `holder` is then the number of its process, or empty if
// unknown. Throws UsageError if the mark cannot be made.
std::unique_ptr<FileClaim> TryClaim(const std::filesystem::path& mark, std::string& holder);

// What a mark holds: the number of a process.
bool IsProcessNumber(const std::string& text);

}  // namespace zolvane
