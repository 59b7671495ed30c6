// The last line of a file of ours: whether every byte before it is as it was written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zolvane {

// What stands before and behind the SHA-256 on its line; `Behind` ends with the line end.
struct SealForm {
  std::string_view Before;
  std::string_view Behind;
};

enum class SealState : std::uint8_t {
  Missing,  // the last line is none
  Broken,   // it tells of other bytes
  Whole
};

// The line that seals the bytes.
std::string SealOf(std::string_view bytes, const SealForm& form);

SealState StateOfSeal(std::string_view sealed, const SealForm& form);

// What the seal tells of; nothing unless it is there.
std::string_view WithoutSeal(std::string_view sealed, const SealForm& form);

}  // namespace zolvane
