// The host's settings-file service as the add-in uses it: sectioned key=value text files, read and
// written one value at a time. Implemented by the Windows component over the host's object and by
// the bench over real files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/status.h"

namespace zolvane {

// Texts are UTF-8. Section and key names match without regard to case.
class IniFileService {
 public:
  virtual ~IniFileService() = default;

  // The key's value, or `fallback` when the file, the section or the key is missing. A key that is there with
  // no value reads as the empty text. Empty if the call itself failed.
  virtual std::optional<std::string> ReadValue(std::string_view section, std::string_view key,
                                               std::string_view file, std::string_view fallback) = 0;

  // Creates or replaces the key, and creates the section and the file as needed. When it returns without
  // failure the value is in the file; after a failure the file is as it was.
  virtual Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                            std::string_view value) = 0;

  // The text between the occurrences of the delimiter, numbered from 0. An empty text has no pieces, and
  // nothing behind a final delimiter is no piece ("a,b," has two). Empty if the call itself failed.
  virtual std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                            std::string_view text) = 0;
};

}  // namespace zolvane
