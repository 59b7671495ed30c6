// One whole host session, in the order that a real host keeps: create the add-in's class, ask for caption and
// page, hand over window and host object, load the page, let the user act, save, detach, release.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bench/host/bench_host.h"
#include "bench/host/page_user.h"
#include "bench/host/recorded_page.h"
#include "bench/host/results.h"
#include "bench/host/tracing.h"
#include "bench/job/actions.h"
#include "program/console.h"
#include "shell/add_in_module.h"
#include "shell/connect.h"

namespace zolvane {

// What a session does behind an action whose exit status is not 0.
enum class OnFailure : std::uint8_t { Stop, GoOn };

class Session {
 public:
  struct Events {
    // Asked between two actions: whether the user wants to end the session.
    std::function<bool()> IsInterrupted;

    // Called when an action has ended.
    std::function<void(const ActionResult& result)> Ended;

    // Called when the session ends before its last action.
    std::function<void(std::span<const Action> actions)> NotBegun;
  };

  // All outlive the session. Without a trace `trace` is null.
  Session(BenchHost& host, Console& console, TraceLog* trace);
  ~Session();

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Plays the whole session; call it once. Returns the worst exit status of all that happened; if it is not
  // 0, the user has been told why.
  int Play(std::span<const Action> actions, OnFailure onFailure, const Events& events);

 private:
  void Open();
  void Close();
  int PlayActions(std::span<const Action> actions, OnFailure onFailure, const Events& events);

  ActionResult Do(const Action& action);
  void Press(int button);
  ShownPage Shown() const;
  std::vector<std::string> ScriptLines();

  int TakeStatus();

  BenchHost& host_;
  Console& console_;
  TraceLog* trace_;
  std::shared_ptr<HostObject> object_;
  std::shared_ptr<HostWindow> window_;
  std::unique_ptr<Environment> tracedEnvironment_;
  RecordedPageFactory pages_;
  std::unique_ptr<PageViewFactory> tracedPages_;
  AddInModule module_;
  PageInUse page_;
  std::unique_ptr<Connect> connect_;
  std::shared_ptr<frmAddIn> form_;
  std::string caption_;
};

}  // namespace zolvane
