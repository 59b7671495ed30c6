#include "custody/transfer/twin_link.h"

#include <utility>

#include "custody/values/sides.h"
#include "host/instrument_link.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

std::string ReplyFor(const std::string& key, const std::optional<std::string>& text) {
  return text ? Joined(key, "=", *text) : std::string{syntaxErrorReply};
}

// Commands that change nothing in the instrument.
bool IsQuestion(std::string_view command) {
  return command.starts_with(questionStart) || command.starts_with("STATUS") ||
         command.starts_with("RFID READ");
}

}  // namespace

TwinLink::TwinLink(const Values& known, std::shared_ptr<BenchLink> original, const InterruptFlag& interrupt)
    : BenchLink{interrupt}, original_{std::move(original)} {
  for (const auto& value : known.InOrder()) {
    if (value.WasAnswered) {
      replies_.emplace(Joined(questionStart, value.Name), ReplyFor(value.Name, value.Text));
    }
  }
}

std::optional<std::string> TwinLink::Exchange(const std::string& command, Delivery& delivery) {
  if (const auto setting = SettingIn(command)) {
    Store(setting->Name, setting->Text.value_or(""));
    return "OK";
  }
  if (command.starts_with(settingStart)) {
    return "OK";  // SAVE
  }
  if (command.starts_with(questionStart)) {
    asked_.push_back(command.substr(questionStart.size()));
  }
  const auto known = replies_.find(command);
  return known != replies_.end() ? known->second : Ask(command, delivery);
}

void TwinLink::Store(const std::string& key, const std::string& text) {
  const auto command = Joined(questionStart, key);
  const auto known = replies_.find(command);
  if (known == replies_.end() || known->second == syntaxErrorReply) {
    guesses_.push_back(
        Joined("the instrument may not know the key ", Printable(key), "; it is assumed to store it"));
  }
  replies_.insert_or_assign(command, ReplyFor(key, text));
}

std::optional<std::string> TwinLink::Ask(const std::string& command, Delivery& delivery) {
  if (original_ && IsQuestion(command)) {
    auto reply = HandOn(*original_, command, delivery);
    return reply ? std::optional{replies_.emplace(command, *std::move(reply)).first->second} : std::nullopt;
  }
  guesses_.push_back(
      Joined("nobody asked the instrument ", Quoted(command), ", and it is taken to refuse it"));
  return replies_.emplace(command, syntaxErrorReply).first->second;
}

}  // namespace zolvane
