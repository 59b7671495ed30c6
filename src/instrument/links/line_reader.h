// Lines out of the bytes that come over a wire.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zolvane {

class LineReader {
 public:
  void Append(std::string_view bytes) {
    const auto end = bytes.rfind('\n');
    whole_ = end == std::string_view::npos ? whole_ : bytes_.size() + end + 1;
    bytes_.append(bytes);
  }

  bool HasLine() const { return whole_ > 0; }

  // How many bytes have come of a line that has not ended yet.
  std::size_t Begun() const { return bytes_.size() - whole_; }

  // The next whole line without its end, CR LF or LF.
  std::optional<std::string> Take() {
    while (HasLine()) {
      const auto end = bytes_.find('\n');
      auto line = bytes_.substr(0, end);
      bytes_.erase(0, end + 1);
      whole_ -= end + 1;
      if (!std::exchange(isInDroppedLine_, false)) {
        line.erase(line.ends_with('\r') ? line.size() - 1 : line.size());
        return line;
      }
    }
    return std::nullopt;
  }

  // Call this when all whole lines have been taken. Drops the line that has begun, and
  // what is still to come of it.
  void DropBegunLine() {
    isInDroppedLine_ |= !bytes_.empty();
    bytes_.clear();
  }

  void Clear() { *this = {}; }

 private:
  std::string bytes_;
  std::size_t whole_ = 0;  // the bytes of whole lines
  bool isInDroppedLine_ = false;
};

}  // namespace zolvane
