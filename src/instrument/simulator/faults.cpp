#include "instrument/simulator/faults.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "config/conversions.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/suggestion.h"
#include "text/usage_error.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

constexpr std::size_t overlong = 2'000'000;

// A value that is no number is stored as it is.
template <class Change>
void ChangeNumber(LineEffect& effect, Change change) {
  if (const auto number = StrictNumber(effect.Value)) {
    effect.Value = GeneralText(change(*number));
  }
}

// With zeros at the end. Behind an exponent they would make another number.
void Respell(LineEffect& effect) {
  const bool isPlain = effect.Value.find_first_not_of("+-.0123456789") == std::string::npos;
  if (isPlain && StrictNumber(effect.Value)) {
    effect.Value += effect.Value.find('.') == std::string::npos ? ".000" : "00";
  }
}

void CutValue(LineEffect& effect) {
  if (!effect.Value.empty()) {
    effect.Value.pop_back();
  }
}

// There is nowhere to store before a first key has been set.
void StoreUnderKeyBefore(LineEffect& effect) {
  if (!effect.Key.empty()) {
    effect.IsOmitted = effect.KeyBefore.empty();
    effect.Key = effect.KeyBefore;
  }
}

void ReplyTwice(LineReply& reply) {
  const auto lines = reply.Lines;
  reply.Lines.insert(reply.Lines.end(), lines.begin(), lines.end());
}

void ReplyAsBefore(LineReply& reply) {
  reply.Lines.clear();
  if (!reply.ReplyBefore.empty()) {
    reply.Lines.push_back(reply.ReplyBefore);
  }
}

using E = LineEffect;
using R = LineReply;

// Of several faults of one line the earlier row comes first.

// clang-format off
constexpr std::array<FaultRow, 22> faultRows{{
    {.Name = "late",       .Description = "the reply comes a second late",
     .Disturb = [](R& reply) { reply.IsLate = true; }},
    {.Name = "silent",     .Description = "no reply",
     .Disturb = [](R& reply) { reply.Lines.clear(); }},
    {.Name = "close",      .Description = "the connection is closed instead of a reply",
     .Disturb = [](R& reply) { reply.IsClosing = true; }},
    {.Name = "garbage",    .Description = "bytes that are no text",
     .Disturb = [](R& reply) { reply.Lines = {std::string{"\x00\xFF\xFE=\x80\x01", 6}}; }},
    {.Name = "overlong",   .Description = "two million characters in one line",
     .Disturb = [](R& reply) { reply.Lines = {std::string(overlong, 'x')}; }},
    {.Name = "empty",      .Description = "an empty line",
     .Disturb = [](R& reply) { reply.Lines = {""}; }},
    {.Name = "split",      .Description = "the reply in two halves with a pause between them",
     .Disturb = [](R& reply) { reply.IsSplit = true; }},
    {.Name = "no-newline", .Description = "the reply without its line end",
     .Disturb = [](R& reply) { reply.LacksEnd = true; }},
    {.Name = "double",     .Description = "the reply twice",
     .Disturb = ReplyTwice},
    {.Name = "echo",       .Description = "the command before the reply",
     .Disturb = [](R& reply) { reply.Lines.insert(reply.Lines.begin(), reply.Command); }},
    {.Name = "shift",      .Description = "the reply to the command before",
     .Disturb = ReplyAsBefore},
    {.Name = "refuse",     .Description = "SET_CALIBRATION is answered SYNTAX_ERROR and has no effect",
     .Affect = [](E& effect) { effect.IsRefused = !effect.Key.empty() || effect.IsSaving; }},
    {.Name = "drop",       .Description = "the value is answered OK and not stored",
     .Affect = [](E& effect) { effect.IsOmitted |= !effect.Key.empty(); }},
    {.Name = "limit",      .Description = "half of the value is stored",
     .Affect = [](E& effect) { ChangeNumber(effect, [](double value) { return value / 2; }); }},
    {.Name = "neighbour",  .Description = "the value is stored under the key that was set before",
     .Affect = StoreUnderKeyBefore},
    {.Name = "cut",        .Description = "the value is stored without its last character",
     .Affect = CutValue},
    {.Name = "round",      .Description = "the value is stored as a whole number",
     .Affect = [](E& effect) { ChangeNumber(effect, [](double value) { return std::round(value); }); }},
    {.Name = "negate",     .Description = "the value is stored with the other sign",
     .Affect = [](E& effect) { ChangeNumber(effect, [](double value) { return -value; }); }},
    {.Name = "times100",   .Description = "a hundred times the value is stored",
     .Affect = [](E& effect) { ChangeNumber(effect, [](double value) { return value * 100; }); }},
    {.Name = "respell",    .Description = "the number is stored in another spelling, 2.5 as 2.500",
     .Affect = Respell},
    {.Name = "forget",     .Description = "SAVE is answered OK and keeps nothing",
     .Affect = [](E& effect) { effect.IsOmitted |= effect.IsSaving; }},
    {.Name = "power",      .Description = "a restart before the line is taken: what was not saved is gone",
     .Affect = [](E& effect) { effect.IsRestarted = true; }},
}};
// clang-format on

// All kinds, and the one that the user probably meant.
std::string KnownKinds(std::string_view typed) {
  std::string names;
  std::vector<std::string_view> known;
  for (const auto& row : faultRows) {
    AddListed(names, ", ", row.Name);
    known.push_back(row.Name);
  }
  return names + DidYouMean(typed, known);
}

bool IsNumber(std::string_view text) {
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsKey(std::string_view text) {
  return !IsNumber(text) && text.find_first_of(" \r\n") == std::string_view::npos;
}

}  // namespace

std::span<const FaultRow> FaultRows() {
  return faultRows;
}

FaultPlan::FaultPlan(std::initializer_list<std::string_view> texts) {
  for (const auto text : texts) {
    Add(text);
  }
}

void FaultPlan::Add(std::string_view text) {
  const auto mark = text.find('@');
  const auto kind = text.substr(0, mark);
  const auto* const row = std::ranges::find(faultRows, kind, &FaultRow::Name);
  if (mark == std::string_view::npos || row == faultRows.end()) {
    throw UsageError{
        Joined("--fault: ", Quoted(text), " is no KIND@N or KIND@KEY with a KIND out of ", KnownKinds(kind))};
  }
  const auto place = text.substr(mark + 1);
  const auto line = WholeNumberIn(place, std::size_t{1}, std::numeric_limits<std::size_t>::max());
  if (line) {
    atLine_.emplace(*line, row);
  } else if (IsKey(place)) {
    atKey_.emplace(place, row);
  } else {
    throw UsageError{Joined("--fault: ", Quoted(text),
                            " has neither the number N of a line, from 1 on, nor a key behind its @")};
  }
}

std::vector<const FaultRow*> FaultPlan::FaultsOf(std::size_t line, std::string_view key) const {
  std::vector<const FaultRow*> faults;
  const auto take = [&faults](const auto& range) {
    std::for_each(range.first, range.second, [&](const auto& entry) { faults.push_back(entry.second); });
  };
  take(atLine_.equal_range(line));
  take(atKey_.equal_range(key));
  std::ranges::sort(faults);  // as in the table
  return faults;
}

}  // namespace zolvane
