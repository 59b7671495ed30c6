#include "instrument/links/simulated_link.h"

#include <algorithm>
#include <string_view>

#include "host/instrument_link.h"
#include "instrument/links/stream_link.h"
#include "text/joined.h"

namespace zolvane {
namespace {

bool Answers(std::string_view line, std::string_view command) {
  return !command.starts_with(questionStart) || line.find(syntaxErrorReply) != std::string_view::npos ||
         line.starts_with(Joined(command.substr(questionStart.size()), "="));
}

}  // namespace

std::optional<std::string> SimulatedLink::Exchange(const std::string& command, Delivery& delivery) {
  const auto reply = answering_.Answer(command);
  const auto line = std::ranges::find_if(reply.Lines, [&](const auto& text) { return text != command; });
  if (line == reply.Lines.end() || line->size() > longestReply || reply.IsLate || reply.IsClosing ||
      reply.LacksEnd) {
    return std::nullopt;
  }
  if (!Answers(*line, command)) {
    delivery.SkippedLine = *line;
    return std::nullopt;
  }
  return *line;
}

}  // namespace zolvane
