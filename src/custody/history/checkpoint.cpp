#include "custody/history/checkpoint.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "custody/disk/sha256.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

bool IsOfAWord(char sign) {
  return (sign >= '0' && sign <= '9') || (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z');
}

// Empty if there is none any more.
std::string_view TakeWord(std::string_view& text) {
  const auto* const first = std::ranges::find_if(text, IsOfAWord);
  const auto* const last = std::find_if_not(first, text.end(), IsOfAWord);
  text = {last, text.end()};
  return {first, last};
}

}  // namespace

bool IsIdentity(std::string_view text) {
  constexpr std::size_t length = 32;
  return text.size() == length && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::vector<std::string> LinesOf(const Checkpoint& checkpoint) {
  return {checkpoint.Identity, std::to_string(checkpoint.Count), checkpoint.Hash};
}

std::vector<Checkpoint> CheckpointsIn(std::string_view text) {
  constexpr std::uint64_t mostEntries = std::uint64_t{1} << 53;
  std::vector<Checkpoint> checkpoints;
  std::array<std::string_view, 3> words;
  for (auto word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
    words = {words[1], words[2], word};
    const auto count = WholeNumberIn<std::uint64_t>(words[1], 0, mostEntries);
    if (IsIdentity(words[0]) && count && IsSha256Hex(words[2])) {
      checkpoints.push_back({std::string{words[0]}, *count, std::string{words[2]}});
    }
  }
  return checkpoints;
}

}  // namespace zolvane
