// What can go wrong with an instrument, on request: for tests, and for people who want to see what the page
// does.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zolvane {

enum class Fault : std::uint8_t {
  Late,
  Silent,
  Close,
  Garbage,
  Overlong,
  Empty,
  Split,
  NoNewline,
};

struct FaultRow {
  std::string_view Name;
  Fault Kind;
  std::string_view Description;
};

inline constexpr std::array<FaultRow, 8> faultRows{{
    {"late", Fault::Late, "the reply comes a second late"},
    {"silent", Fault::Silent, "no reply"},
    {"close", Fault::Close, "the connection is closed instead of a reply"},
    {"garbage", Fault::Garbage, "bytes that are no text"},
    {"overlong", Fault::Overlong, "two million characters in one line"},
    {"empty", Fault::Empty, "an empty line"},
    {"split", Fault::Split, "the reply in two halves with a pause between them"},
    {"no-newline", Fault::NoNewline, "the reply without its line end"},
}};

// By the number of the command, counted from 1 since the program was started.
using FaultPlan = std::map<std::size_t, Fault>;

// Adds "KIND@N" to the plan. Throws UsageError for any other text.
void AddFault(FaultPlan& plan, const std::string& text);

}  // namespace zolvane
