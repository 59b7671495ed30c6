// The bench's side of a host session: the environment, the host object and the window that the add-in is
// given. It does what the add-in asks, tells the user about it, and keeps count of what happened.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "bench/host/action_tally.h"
#include "bench/job/box_answers.h"
#include "files/file_settings_service.h"
#include "host/environment.h"
#include "host/host_object.h"
#include "host/host_window.h"
#include "instrument/links/bench_link.h"
#include "program/console.h"

namespace zolvane {

struct HostState;

class BenchHost {
 public:
  struct Setup {
    std::string Folder;  // the program folder, absolute
    bool OffersDialog = false;
    BoxAnswers::Setup Answers{};
    std::function<bool()> WantsToStop = [] { return false; };  // asked while another program is waited for

    // The settings files, and why one that was chosen in a file dialogue cannot be used: those of the system,
    // unless copies take their place.
    FileSettingsService::FileOpener OpenFile = FileSettingsService::OpenFile;
    std::function<std::optional<std::string>(const std::string& path, FileUse use)> ReasonUnusable =
        CheckUsable;

    // What the add-in is given for the settings service; it may look on, or do something else.
    std::function<std::shared_ptr<IniFileService>(std::shared_ptr<IniFileService> settings)> Wrapped =
        [](auto settings) { return settings; };
  };

  // The link is not null. The terminal, which may be null, and the console outlive the host.
  BenchHost(const Setup& setup, std::shared_ptr<BenchLink> link, Questioner* terminal, Console& console);
  ~BenchHost();

  BenchHost(const BenchHost&) = delete;
  BenchHost& operator=(const BenchHost&) = delete;

  // ---- What the add-in is given. None of it outlives the host.

  zolvane::Environment& Environment() { return *environment_; }
  std::shared_ptr<HostObject> Object() { return object_; }
  std::shared_ptr<HostWindow> Window() { return window_; }

  // ---- What the bench asks

  // The user's next command begins: its file dialogue answers `file`, and every
  // complaint begins with `place`.
  void Begin(std::optional<std::string> file = std::nullopt, std::string place = {});

  // What has happened since then. The bench may add to it.
  ActionTally& Tally();

  // How many commands the button will send if all goes well; 0 for a button that sends none.
  std::size_t CountCommands(int button) const;

  // Makes what was written to the settings files safe against a power cut. A failure is reported and counted.
  void FlushSettings();

  const std::string& StatusText() const;

  // The window's "Changed"; empty until it is set.
  std::optional<bool> Changed() const;

 private:
  std::unique_ptr<HostState> state_;
  std::unique_ptr<zolvane::Environment> environment_;
  std::shared_ptr<HostObject> object_;
  std::shared_ptr<HostWindow> window_;
};

}  // namespace zolvane
