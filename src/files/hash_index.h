// Finds numbered things by the hash of their names. It holds no names: they stand in the text, which may
// move, and two of them may share a hash. So whoever asks says which of the numbers is the one meant.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace zolvane {

class HashIndex {
 public:
  // The number that was added with this hash and for which `isMeant(number)` is true.
  template <class IsMeant>
  std::optional<std::size_t> Find(std::uint32_t hash, IsMeant isMeant) const {
    for (std::size_t at = hash; !slots_.empty() && SlotAt(at).IsTaken(); ++at) {
      if (const Slot& slot = SlotAt(at); slot.Hash == hash && isMeant(slot.Number())) {
        return slot.Number();
      }
    }
    return std::nullopt;
  }

  void Add(std::uint32_t hash, std::size_t number) {
    if (2 * ++count_ > slots_.size()) {
      Grow();
    }
    Place({hash, static_cast<std::uint32_t>(number + 1)});
  }

 private:
  // Half as large as with a number of full width, so that more of them fit into the processor's cache.
  struct Slot {
    std::uint32_t Hash = 0;
    std::uint32_t NumberPlusOne = 0;

    bool IsTaken() const { return NumberPlusOne != 0; }
    std::size_t Number() const { return NumberPlusOne - 1; }
  };

  // The number of slots is a power of two.
  const Slot& SlotAt(std::size_t at) const { return slots_[at & (slots_.size() - 1)]; }

  void Place(Slot slot) {
    std::size_t at = slot.Hash;
    while (SlotAt(at).IsTaken()) {
      ++at;
    }
    slots_[at & (slots_.size() - 1)] = slot;
  }

  void Grow() {
    constexpr std::size_t fewestSlots = 16;
    const std::vector<Slot> before =
        std::exchange(slots_, std::vector<Slot>(std::max(fewestSlots, 2 * slots_.size())));
    for (const Slot& slot : before) {
      if (slot.IsTaken()) {
        Place(slot);
      }
    }
  }

  std::vector<Slot> slots_;  // at most every other one is taken, so that a search ends soon
  std::size_t count_ = 0;
};

}  // namespace zolvane
