#include "instrument/links/wire_rules.h"

#include <algorithm>
#include <array>
#include <ranges>
#include <utility>

#include "config/conversions.h"
#include "config/text.h"
#include "host/instrument_link.h"

namespace zolvane {
namespace {

// Keys that every instrument holds.
constexpr std::array<std::string_view, 2> commonKeys{"STAGE1_X", "STAGE2_X"};

std::optional<std::string> KeyAskedBy(std::string_view command) {
  return command.starts_with(questionStart) ? std::optional{std::string{command.substr(questionStart.size())}}
                                            : std::nullopt;
}

// A text with blanks, commas or control characters in front of its "=" is no key: status texts
// and lists may hold a "=".
bool IsKey(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte > ' ' && byte < 0x7F && character != ',';
  });
}

bool IsRefusal(std::string_view line) {
  return line.find(syntaxErrorReply) != std::string_view::npos;
}

bool HoldsInAnyCase(const std::vector<std::string>& keys, std::string_view key) {
  return std::ranges::any_of(keys, [key](const auto& held) { return EqualIgnoringCase(held, key); });
}

}  // namespace

void WireRules::Connect() {
  hasNamed_ = false;
  answersBare_ = false;
}

void WireRules::Ask(std::string_view command) {
  skippedLine_.reset();
  TakeInHand(std::string{command}, KeyAskedBy(command));
}

WireRules::Verdict WireRules::Hear(std::string_view line) {
  if (line == command_) {
    return Verdict::Skip;  // an echo
  }
  const auto name = NameIn(line);
  return name.empty() ? HearBare(line) : HearNamed(name, line);
}

void WireRules::Overhear(std::string_view line) {
  const auto name = NameIn(line);
  hasNamed_ |= !name.empty();
  if (NamesTheKeyInHand(name) || (key_ && name.empty() && IsRefusal(line))) {
    SettleFirstOfTwo();
  } else {
    Settle(name);
  }
}

// A line that names a key answers the question for that key and nothing else.
WireRules::Verdict WireRules::HearNamed(std::string_view name, std::string_view line) {
  hasNamed_ = true;
  if (key_ && NamesTheKeyInHand(name)) {
    Remember(*key_);
    isLost_ = false;
    return Close();
  }
  if (!Settle(name)) {
    NoteSkipped(line);
  }
  return Verdict::Skip;
}

WireRules::Verdict WireRules::HearBare(std::string_view line) {
  if (!command_ || isLost_) {
    return Verdict::Skip;
  }
  if (!key_) {
    return Close();
  }
  return IsRefusal(line) ? HearRefusal() : HearBareValue(line);
}

// If a question was sent twice, both are refused, and the second refusal is not left for the next question.
WireRules::Verdict WireRules::HearRefusal() {
  return SettleFirstOfTwo() ? Verdict::Skip : Close();
}

// A value without its key needs proof: the same question, asked again, has to bring the same value.
WireRules::Verdict WireRules::HearBareValue(std::string_view line) {
  const bool isValue = StrictNumber(line).has_value();
  if (isValue && (answersBare_ || bareValue_ == line)) {
    answersBare_ = true;
    answersToCome_ = 1;  // this one
    return Close();
  }
  NoteSkipped(line);
  if (!isValue || hasNamed_) {
    return Verdict::Skip;
  }
  const bool isFirst = !bareValue_;
  bareValue_ = line;
  answersToCome_ += isFirst ? 1 : 0;
  return isFirst ? Verdict::AskAgain : Verdict::Skip;
}

void WireRules::TimeOut() {
  isLost_ = true;
  Disconnect();
}

void WireRules::Disconnect() {
  if (command_) {
    // Two equal late values would pass as the proof for the next question.
    isLost_ |= answersToCome_ > 1;
    lastGivenUp_ = key_;
    LetGo();
  }
}

std::optional<std::string> WireRules::AskForPlace() {
  skippedLine_.reset();
  if (auto key = KeyForPlace()) {
    TakeInHand(std::string{questionStart} + *key, key);
    return command_;
  }
  // When the answer to the last line comes, whatever was sent before it has been answered or never will be.
  if (lastGivenUp_ && std::ranges::count(owed_, *lastGivenUp_) == 1) {
    std::erase(owed_, *lastGivenUp_);
    TakeInHand(std::string{questionStart} + *lastGivenUp_, lastGivenUp_);
  }
  return std::nullopt;
}

WireRules::Verdict WireRules::Close() {
  --answersToCome_;
  LetGo();
  return Verdict::Answer;
}

// The key in front of the line's first "="; empty when the line names none.
std::string_view WireRules::NameIn(std::string_view line) const {
  const auto end = line.find('=');
  if (end == std::string_view::npos) {
    return {};
  }
  const auto name = Trimmed(line.substr(0, end));
  return IsKey(name) || IsKnown(name) ? name : std::string_view{};
}

// To the letter; or in another case, as long as that very spelling is not owed to an earlier question.
bool WireRules::NamesTheKeyInHand(std::string_view name) const {
  return key_ && (name == *key_ || (EqualIgnoringCase(name, *key_) && !IsOwed(name)));
}

bool WireRules::IsKnown(std::string_view name) const {
  return (key_ && EqualIgnoringCase(name, *key_)) || HoldsInAnyCase(owed_, name) ||
         HoldsInAnyCase(answered_, name);
}

bool WireRules::IsOwed(std::string_view key) const {
  return std::ranges::find(owed_, key) != owed_.end();
}

// False when nobody is owed such a line.
bool WireRules::Settle(std::string_view name) {
  auto found = std::ranges::find(owed_, name);
  if (found == owed_.end()) {
    found = std::ranges::find_if(owed_, [name](const auto& key) { return EqualIgnoringCase(key, name); });
  }
  if (found == owed_.end()) {
    return false;
  }
  owed_.erase(found);
  return true;
}

// The command in hand has been sent twice and had no answer yet; now it had the first one.
bool WireRules::SettleFirstOfTwo() {
  const bool isFirst = answersToCome_ > 1;
  answersToCome_ -= isFirst ? 1 : 0;
  return isFirst;
}

void WireRules::NoteSkipped(std::string_view line) {
  if (command_ && !skippedLine_) {
    skippedLine_ = line;
  }
}

void WireRules::Remember(const std::string& key) {
  std::erase(answered_, key);
  answered_.push_back(key);
}

void WireRules::TakeInHand(std::string command, std::optional<std::string> key) {
  command_ = std::move(command);
  key_ = std::move(key);
  answersToCome_ = 1;
  bareValue_.reset();
}

// A question is still owed the answers that have not come.
void WireRules::LetGo() {
  for (; key_ && answersToCome_ > 0; --answersToCome_) {
    owed_.push_back(*key_);
  }
  command_.reset();
  key_.reset();
}

std::optional<std::string> WireRules::KeyForPlace() const {
  const auto isOwed = [this](std::string_view key) { return HoldsInAnyCase(owed_, key); };
  const auto backwards = answered_ | std::views::reverse;
  const auto latest = std::ranges::find_if_not(backwards, isOwed);
  if (latest != backwards.end()) {
    return *latest;
  }
  const auto* const common = std::ranges::find_if_not(commonKeys, isOwed);
  return common != commonKeys.end() ? std::optional{std::string{*common}} : std::nullopt;
}

}  // namespace zolvane
