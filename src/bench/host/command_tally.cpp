#include "bench/host/command_tally.h"

#include <array>
#include <cstdint>

#include "host/instrument_link.h"
#include "operations/instrument_command.h"

namespace zolvane {
namespace {

enum class Verdict : std::uint8_t { Accepted, UnknownKey, Unexpected, RefusedQuery };

bool Holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool IsSyntaxError(std::string_view reply) {
  return Holds(reply, syntaxErrorReply);
}

Verdict OfSetting(std::string_view reply) {
  return IsAcceptance(reply) ? Verdict::Accepted : Verdict::Unexpected;
}

Verdict OfQuestion(std::string_view reply) {
  return IsSyntaxError(reply) ? Verdict::UnknownKey
         : Holds(reply, "=")  ? Verdict::Accepted
                              : Verdict::Unexpected;
}

// Any text may be a status or a tag, and an instrument without a reader refuses the reader's commands.
Verdict OfQuery(std::string_view reply) {
  return reply.empty() || IsSyntaxError(reply) ? Verdict::RefusedQuery : Verdict::Accepted;
}

struct CommandKind {
  std::string_view Start;
  Verdict (*Judge)(std::string_view reply);
};

constexpr std::array<CommandKind, 3> commandKinds{{
    {settingStart, OfSetting},
    {questionStart, OfQuestion},
    {"", OfQuery},
}};

const CommandKind& KindOf(std::string_view command) {
  return *std::ranges::find_if(
      commandKinds, [command](const CommandKind& kind) { return command.starts_with(kind.Start); });
}

std::string KeyIn(std::string_view command) {
  const auto& kind = KindOf(command);
  const auto rest = command.substr(kind.Start.size());
  return std::string{kind.Start.empty() ? rest : rest.substr(0, rest.find(' '))};
}

}  // namespace

void CommandTally::Count(std::string_view command, bool isAnswered, std::string_view reply) {
  ++Sent;
  IsSaveSent |= command == saveLine;
  if (!isAnswered) {
    ++NotAnswered;
    FirstNotAnswered = FirstNotAnswered.value_or(KeyIn(command));
    return;
  }
  const auto text = JudgedReply(reply);
  const auto verdict = KindOf(command).Judge(text);
  if (verdict == Verdict::Accepted) {
    ++Accepted;
    IsSaveAccepted |= command == saveLine;
    return;
  }
  ++Refused;
  UnknownKeys += verdict == Verdict::UnknownKey ? 1 : 0;
  Unexpected += verdict == Verdict::Unexpected ? 1 : 0;
  if (!FirstRefused) {
    FirstRefused = {.Key = KeyIn(command), .Reply = text};
  }
}

}  // namespace zolvane
