#include "instrument/simulator/faulty_instrument.h"

#include "host/instrument_link.h"

namespace zolvane {
namespace {

using Faults = std::vector<const FaultRow*>;

LineEffect Affected(LineEffect effect, const Faults& faults) {
  for (const auto* fault : faults) {
    if (fault->Affect != nullptr) {
      fault->Affect(effect);
    }
  }
  return effect;
}

LineReply Disturbed(LineReply reply, const Faults& faults) {
  for (const auto* fault : faults) {
    if (fault->Disturb != nullptr) {
      fault->Disturb(reply);
    }
  }
  return reply;
}

}  // namespace

LineReply FaultyInstrument::Answer(const std::string& command) {
  const auto setting = SimulatedInstrument::SettingIn(command).value_or(SimulatedInstrument::Setting{});
  const LineEffect meant{.KeyBefore = keyBefore_,
                         .Key = std::string{setting.Key},
                         .Value = std::string{setting.Value},
                         .IsSaving = command == saveLine};
  const auto faults = faults_.FaultsOf(++lines_, meant.IsSaving ? "SAVE" : setting.Key);
  const auto answer = CarriedOut(command, Affected(meant, faults));
  if (!setting.Key.empty()) {
    keyBefore_ = setting.Key;
  }
  LineReply reply{.Command = command, .ReplyBefore = std::exchange(replyBefore_, answer.value_or(""))};
  if (answer) {
    reply.Lines = {*answer};
  }
  return answer ? Disturbed(std::move(reply), faults) : reply;
}

std::optional<std::string> FaultyInstrument::CarriedOut(const std::string& command,
                                                        const LineEffect& effect) {
  if (effect.IsRestarted) {
    instrument_.Restart();
  }
  if (effect.IsRefused || effect.IsOmitted) {
    return instrument_.Claim(effect.IsRefused ? syntaxErrorReply : "OK");
  }
  if (effect.Key.empty()) {
    return instrument_.Answer(command);
  }
  const auto answer = instrument_.Claim("OK");
  if (answer) {
    instrument_.Store(effect.Key, effect.Value);
  }
  return answer;
}

}  // namespace zolvane
