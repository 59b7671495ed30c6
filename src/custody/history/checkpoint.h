// Three lines that, kept elsewhere, prove later that the history still is what it was.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

struct Checkpoint {
  std::string Identity;     // of the history
  std::uint64_t Count = 0;  // of entries; the line of identity is none
  std::string Hash;         // of the last line

  friend bool operator==(const Checkpoint&, const Checkpoint&) = default;
};

// 32 digits, lower case.
bool IsIdentity(std::string_view text);

// Its three lines, without line ends.
std::vector<std::string> LinesOf(const Checkpoint& checkpoint);

// All that stand in a text: the three words behind each other, whatever signs stand between them. So they are
// found in a printed page, behind the comment signs of a backup, and in JSON.
std::vector<Checkpoint> CheckpointsIn(std::string_view text);

}  // namespace zolvane
