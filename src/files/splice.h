// One change of a text: some bytes at one place give way to others. Everything that happens to a settings
// file is such a change, in memory as on the disk.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zolvane {

struct Splice {
  std::size_t Offset = 0;
  std::size_t Removed = 0;
  std::string Inserted;

  bool ChangesNothing() const { return Removed == 0 && Inserted.empty(); }
  bool KeepsSize() const { return Removed == Inserted.size(); }
};

// Bytes from `From` up to `To`.
struct ByteRange {
  std::size_t From = 0;
  std::size_t To = 0;
};

// A text as it is after a splice, without the copy that making it would take. It looks at the text and the
// splice it was made from, which must stay.
class SplicedText {
 public:
  SplicedText(std::string_view text, const Splice& splice)
      : pieces_{text.substr(0, splice.Offset), splice.Inserted, text.substr(splice.Offset + splice.Removed)},
        keepsSize_{splice.KeepsSize()} {}

  std::size_t Size() const { return pieces_[0].size() + pieces_[1].size() + pieces_[2].size(); }

  // The bytes that differ from the text before. When the size changes these are all from the splice on.
  ByteRange Changed() const {
    return {pieces_[0].size(), keepsSize_ ? pieces_[0].size() + pieces_[1].size() : Size()};
  }

  // Calls `visit(offset, bytes)` for the parts of the range, in order, until one returns
  // false. True when none did.
  template <class Visit>
  bool VisitRange(ByteRange range, Visit visit) const {
    std::size_t start = 0;
    for (const std::string_view piece : pieces_) {
      const std::size_t from = std::max(range.From, start);
      const std::size_t to = std::min(range.To, start + piece.size());
      if (from < to && !visit(from, piece.substr(from - start, to - from))) {
        return false;
      }
      start += piece.size();
    }
    return true;
  }

 private:
  std::array<std::string_view, 3> pieces_;
  bool keepsSize_;
};

}  // namespace zolvane
