// Plays one host session on given ends. Operations, rehearsals and looks at copies all use it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/host/action_tally.h"
#include "bench/host/bench_host.h"
#include "bench/host/results.h"
#include "bench/host/tracing.h"
#include "bench/job/actions.h"
#include "custody/disk/disk.h"
#include "instrument/links/bench_link.h"
#include "program/console.h"

namespace zolvane {

// What the add-in asked the settings service to write, and what came of it.
struct SettingWrite {
  std::string Section;
  std::string Key;
  std::string File;
  std::string Text;
  bool IsDone = false;
};

// Everything that a session reaches. All of it outlives the session.
struct SessionEnds {
  BenchHost::Setup Host;            // folder, files, answers to boxes
  std::shared_ptr<BenchLink> Link;  // not null
  Questioner* Terminal = nullptr;   // null: nobody is asked
  Console* Out = nullptr;           // null: nothing is printed
  TraceLog* Trace = nullptr;        // null: no trace
};

// Ends at which nothing happens: files on `disk`, no instrument, no output, every box affirmed. The folder is
// only a name. The disk outlives the session.
SessionEnds EndsOn(Disk& disk, const std::string& folder);

struct PlayedAction {
  ActionResult Result;               // of the action
  std::vector<SettingWrite> Writes;  // in their order, those of the page's loading included
  int ExitStatus = 0;                // of the whole session
};

// The page is loaded, the action done, the session closed.
PlayedAction Play(const SessionEnds& ends, const Action& action);

// What a press of the page's button is (uploadButton, ...); `file` is what a file dialogue answers.
Action PressOf(int button, std::optional<std::string> file = std::nullopt);

}  // namespace zolvane
