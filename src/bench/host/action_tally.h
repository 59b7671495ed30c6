// What happened while a command of the user was carried out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bench/host/command_tally.h"
#include "bench/job/box_answers.h"
#include "host/dialogues.h"

namespace zolvane {

struct ShownMessage {
  std::string Title;
  std::string Text;
  std::int32_t Answer = 0;  // the button
};

struct ActionTally {
  CommandTally Commands;
  std::size_t ValuesWritten = 0;
  std::size_t ValuesChanged = 0;  // of those written; the others were there already
  std::size_t WritesFailed = 0;
  std::size_t ReadsFailed = 0;     // of settings
  std::size_t CharactersLost = 0;  // written as "?", because a file's encoding lacks them
  std::vector<ShownMessage> Messages;
  std::optional<std::string> ChosenFile;
  bool WasStopped = false;    // the add-in read a raised stop flag
  bool WasCancelled = false;  // by the answer to a box or a file dialogue
  bool WasRefused = false;    // the add-in showed its stop sign
  bool WasDisabled = false;   // the control did not react
  bool WasMisused = false;    // an entry, an answer or a file that does not fit

  // A box of that style has been answered; empty: it could not be shown. Some systems answer a box that has
  // OK alone with Cancel when Escape closes it. Nothing could be refused there.
  void TakeAnswer(std::int32_t style, std::optional<std::int32_t> button) {
    WasCancelled |= button && IsDeclining(*button) && ButtonsOf(style).size() > 1;
    WasRefused |= HasIcon(style, message_style::stopIcon);
  }
};

}  // namespace zolvane
