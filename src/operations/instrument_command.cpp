#include "operations/instrument_command.h"

#include "config/text.h"

namespace zolvane {
namespace {

// Each of the three calls asks for the link again: the host may exchange it in between.
bool SendThroughLink(const HostAttachment& host, std::string& command, std::string& reply) {
  if (const auto link = host.Link()) {
    PassOver(link->SetStop(false));
  }
  if (const auto link = host.Link()) {
    PassOver(link->SetHold(true));
  }
  const auto link = host.Link();
  return link && MetOnlyIf(link->SendCommand(command, reply, 0));
}

}  // namespace

void SendInstrumentCommand(const OperationContext& context, std::string command, std::string& reply,
                           bool& ok) {
  ok = SendThroughLink(context.Host, command, reply);
  if (!ok) {
    const auto message = context.Host.StatusText() +
                         "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'";
    context.Page.ShowMessage(message, message_style::okOnly, "Communication Error");
  }
}

std::string StrippedReply(std::string_view reply) {
  return Replaced(reply, lineBreak, "");
}

std::string JudgedReply(std::string_view reply) {
  constexpr std::string_view blanks = " \t\r\n";
  const auto text = StrippedReply(reply);
  const auto first = text.find_first_not_of(blanks);
  return first == std::string::npos ? std::string{}
                                    : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

bool IsAcceptance(std::string_view reply) {
  return JudgedReply(reply) == "OK";
}

}  // namespace zolvane
