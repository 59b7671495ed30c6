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
  Missing,  // there is no seal
  Broken,   // its hash is of other bytes
  Whole
};

// The line that seals the bytes.
std::string SealOf(std::string_view bytes, const SealForm& form);

SealState StateOfSeal(std::string_view sealed, const SealForm& form);

// The bytes before the seal; nothing if there is none.
std::string_view WithoutSeal(std::string_view sealed, const SealForm& form);

}  // namespace zolvane
