// What became of a value that was sent: asked again, the instrument gave it, or something else, and why.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "custody/values/values.h"

namespace zolvane {

enum class Proof : std::uint8_t {
  Verified,    // asked again, the instrument gave the value that was sent
  Differs,     // it gave another one, or none where there had been one
  Unreadable,  // it knows no such key, neither before nor now
  Unknown,     // it was not asked, or did not answer
};

// Why a value differs.
enum class Cause : std::uint8_t {
  None,
  Kept,       // holds what it held before
  Refused,    // the same, and the instrument had said so
  Neighbour,  // the value stands under another key
  Cut,        // its end is missing
  Rounded,
  Sign,
  Factor,   // 10, 100 or 1000, either way
  Limited,  // nearer to zero
  Other,
};

// As the JSON spells it: "verified", "kept".
std::string_view NameOf(Proof proof);
std::string_view NameOf(Cause cause);

struct Verdict {
  std::string Key;
  std::optional<std::string> Found{};  // what it held before; empty: unknown to the instrument, or to us
  std::string Sent{};
  std::optional<std::string> Left{};  // what it holds now
  Proof Is = Proof::Unknown;
  Cause Why = Cause::None;
  int Factor = 0;  // of Cause::Factor

  bool operator==(const Verdict&) const = default;
};

// A line that set a value, and what was answered.
struct SentLine {
  std::string Key;
  std::string Text;
  std::optional<std::string> Reply{};  // empty: none came

  // The reply is one to a line that sets a value: a text, and no value of another line.
  bool IsAnswered() const;
  bool IsAccepted() const;
};

// One verdict for each key, in the order in which the keys were first sent; of several lines with one key the
// last counts. `found` and `left` are what the instrument gave before and after all lines.
std::vector<Verdict> Judged(std::span<const SentLine> lines, const Values& found, const Values& left);

// What is held is what was sent, rounded. Also true if the instrument held that value before: it may have stored
// nothing.
bool CouldBeRounded(const Verdict& verdict);

// An instrument in which something fails could have made `left` of `sent`. For the use of an operation that
// was cut short, so that its damage is not taken for somebody else's change.
bool CouldBeDamage(std::string_view sent, std::string_view left);

}  // namespace zolvane
