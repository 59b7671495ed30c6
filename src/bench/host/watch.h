// Watches what the add-in does to settings files and to the instrument: counts it, and
// complains about what fails.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "bench/host/action_tally.h"
#include "files/file_settings_service.h"
#include "host/ini_file_service.h"
#include "host/instrument_link.h"
#include "instrument/links/bench_link.h"

namespace zolvane {

class Watch {
 public:
  struct Events {
    // A line for the user.
    std::function<void(std::string_view text)> Complain;

    // A command has been sent, or could not be.
    std::function<void()> CommandEnded = [] {};

    // Asked while another program's lock is waited for: the user wants to stop.
    std::function<bool()> WantsToStop = [] { return false; };
  };

  explicit Watch(Events events,
                 const FileSettingsService::FileOpener& openFile = FileSettingsService::OpenFile);
  ~Watch();

  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  // What has happened since the last Begin. May be added to.
  ActionTally& Tally() { return tally_; }
  void Begin() { tally_ = {}; }

  // What the add-in is given. The watch outlives it.
  std::shared_ptr<IniFileService> Settings();
  std::shared_ptr<InstrumentLink> Watched(std::shared_ptr<BenchLink> link);

  Status AppendBlankLine(const std::string& file);

  // Makes what was written to the settings files safe against a power cut. A failure is reported and counted.
  void FlushSettings();

 private:
  class WatchedSettings;
  class WatchedLink;

  Status CountWrite(const Status& status, std::string_view what, std::string_view file);
  void CountFailedRead(std::string_view file);

  Events events_;
  std::shared_ptr<FileSettingsService> files_;
  ActionTally tally_;
};

}  // namespace zolvane
