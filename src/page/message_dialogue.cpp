#include "page/message_dialogue.h"

#include "config/conversions.h"
#include "config/text.h"

namespace zolvane {
namespace {

void Log(HostObject* host, const std::string& line) {
  if (host != nullptr) {
    PassOver(host->WriteLogLine("******* Message dialogue : " + line));
  }
}

// Polls without pause, with the message loop running in between, so that the host stays responsive. A result
// that cannot be read ends the wait; a dialogue that the host did not give has none.
std::int16_t WaitForResult(HostProcess& process, HostDialog* dialogue) {
  const auto read = [dialogue] { return dialogue != nullptr ? dialogue->Result() : std::nullopt; };
  std::int16_t answer = 0;
  std::optional<std::int16_t> result;
  do {
    process.RunMessageLoopOnce();
    result = read();
    AssignIf(answer, result);
  } while (result && *result < 0);
  AssignIf(answer, read());
  return answer;
}

std::int16_t ShowInHostDialogue(HostProcess& process, HostObject& host, const std::string& message,
                                std::int16_t style, const std::string& title) {
  const auto dialogue = host.MessageDialog();
  if (dialogue) {
    PassOver(dialogue->SetStyle(style));
    PassOver(dialogue->SetTitle(title));
    PassOver(dialogue->SetMessage(message));
    PassOver(dialogue->Show(true));
  }
  return WaitForResult(process, dialogue.get());
}

// The caller's style is added to the icon, not merged with it.
std::int16_t ShowInMessageBox(SystemDialogues& dialogues, const std::string& message, std::int32_t style,
                              const std::string& title) {
  const auto answer = dialogues.ShowMessageBox(
      {.Text = message,
       .Style = style + message_style::bringToForeground + message_style::exclamationIcon,
       .Title = title});
  return static_cast<std::int16_t>(answer.value_or(0));
}

}  // namespace

std::int16_t ShowMessage(Environment& environment, HostObject* log, const std::string& message,
                         std::int16_t style, const std::string& title, HostObject* host,
                         std::int16_t extraStyle) {
  Log(log, title + " [" + Replaced(message, lineBreak, ", ") + "]");
  const bool hasDialogue = host != nullptr && MetOnlyIf(host->HostDialogAvailable());
  const auto answer = hasDialogue ? ShowInHostDialogue(environment, *host, message, style, title)
                                  : ShowInMessageBox(environment, message, style + extraStyle, title);
  Log(log, "button selected : " + WholeText(answer));
  return answer;
}

}  // namespace zolvane
