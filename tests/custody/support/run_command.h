// A whole command of zolvane, run in the process on ends that the test made.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "custody/disk/disk.h"
#include "custody/disk/witness.h"
#include "files/file_settings_service.h"
#include "instrument/links/bench_link.h"
#include "zolvane/command_line.h"
#include "zolvane/zolvane_program.h"

namespace zolvane {

using Words = std::vector<std::string>;

// What a command reaches.
struct CommandEnds {
  std::string Folder;
  Disk& Files;
  Witness& Who;
  std::shared_ptr<BenchLink> Link;  // null: no instrument is named
};

// Its words without --link and --folder, which are the test's. As from a process of its own.
inline Report RunCommandOn(const CommandEnds& ends, Words words, std::ostream& output, std::ostream& errors) {
  ForgetSeenFiles();
  words.insert(words.begin(), {"--folder", ends.Folder});
  auto options = std::get<CustodyOptions>(ParseCustodyOptions(words));
  options.Link = ends.Link != nullptr ? "lab" : "";
  Console console{output, errors, {.Program = programName, .NotesWidth = {}}};
  Report report{.Command = options.Command.front()};
  Workplace work{.Options = options,
                 .Files = ends.Files,
                 .Who = ends.Who,
                 .Link = ends.Link,
                 .Out = console,
                 .Result = report};
  RunReported(work, errors);
  return report;
}

}  // namespace zolvane
