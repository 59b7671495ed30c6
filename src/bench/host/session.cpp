#include "bench/host/session.h"

#include <algorithm>
#include <stdexcept>

#include "bench/host/outcome.h"
#include "bench/host/result_text.h"
#include "config/tables/current_records.h"
#include "config/text.h"
#include "operations/upload_script.h"
#include "text/joined.h"
#include "text/usage_error.h"

namespace zolvane {

Session::Session(BenchHost& host, Console& console, TraceLog* trace)
    : host_{host},
      console_{console},
      trace_{trace},
      object_{trace != nullptr ? Traced(host.Object(), *trace) : host.Object()},
      window_{trace != nullptr ? Traced(host.Window(), *trace) : host.Window()},
      tracedEnvironment_{trace != nullptr ? Traced(host.Environment(), *trace) : nullptr},
      tracedPages_{trace != nullptr ? Traced(pages_, *trace) : nullptr},
      module_{tracedEnvironment_ ? *tracedEnvironment_ : host.Environment(),
              tracedPages_ ? *tracedPages_ : static_cast<PageViewFactory&>(pages_)},
      page_{.Shown = [this] { return pages_.Shown(); },
            .Press = [this](int button) { Press(button); },
            .Select = [this](auto list, int position) { PassOver(form_->UserSelects(list, position)); },
            .SetCheck = [this](auto box, int value) { PassOver(form_->UserSetsCheck(box, value)); }} {}

Session::~Session() = default;

int Session::Play(std::span<const Action> actions, OnFailure onFailure, const Events& events) {
  Open();
  const int opening = TakeStatus();
  const int acting = PlayActions(actions, onFailure, events);
  host_.Begin();
  Close();
  return std::max({opening, acting, TakeStatus()});
}

void Session::Open() {
  host_.Begin();
  connect_ = std::make_unique<Connect>(module_);
  const bool isCreated = connect_->Class_Initialize().Ok();
  caption_ = connect_->IAddIn_Caption().value_or("");
  form_ = connect_->IAddIn_Form();
  if (!isCreated || !form_) {
    throw std::runtime_error{"the add-in's page could not be created"};
  }
  form_->IAddInForm_FormParent(window_);
  form_->IAddInForm_ObjectParent(object_);
  form_->IAddInForm_LoadDefaults();
}

void Session::Close() {
  form_->IAddInForm_SaveChanges();
  form_->IAddInForm_ObjectParent(nullptr);
  form_ = nullptr;
  connect_ = nullptr;
}

// What was written is made safe after each action.
int Session::TakeStatus() {
  host_.FlushSettings();
  if (trace_ != nullptr) {
    trace_->Flush();
  }
  return ExitStatusOf(host_.Tally());
}

int Session::PlayActions(std::span<const Action> actions, OnFailure onFailure, const Events& events) {
  int worst = exit_status::done;
  for (std::size_t done = 0; done < actions.size(); ++done) {
    const bool isInterrupted = events.IsInterrupted();
    if (isInterrupted || (worst != exit_status::done && onFailure == OnFailure::Stop)) {
      const auto why =
          isInterrupted ? "interrupted" : Joined("stopped after ", Quoted(actions[done - 1].Command));
      console_.Error(NotBegunText(why, actions.subspan(done), actions.size()));
      events.NotBegun(actions.subspan(done));
      return std::max(worst, exit_status::notDone);
    }
    const auto result = Do(actions[done]);
    worst = std::max(worst, ExitStatusOf(result.Tally));
    events.Ended(result);
  }
  if (worst == exit_status::done && events.IsInterrupted()) {
    console_.Error("interrupted, when all commands had been done");
    return exit_status::notDone;
  }
  return worst;
}

ActionResult Session::Do(const Action& action) {
  host_.Begin(action.File, action.At());
  ActionResult result{.Request = action};
  if (action.Kind == ActionKind::ShowPage) {
    result.Page = Shown();
  } else if (action.Kind == ActionKind::ShowScript) {
    result.Script = ScriptLines();
  } else {
    UsePage(page_, action, host_.Tally(), [this](const std::string& text) { console_.Error(text); });
  }
  TakeStatus();
  result.Tally = host_.Tally();
  for (const auto& reason : ReasonsOf(result.Tally)) {
    console_.Error(Joined(action.At(), Printable(action.Command), ": ", reason));
  }
  return result;
}

void Session::Press(int button) {
  const auto expected = host_.CountCommands(button);
  console_.ExpectCommands(expected);
  form_->PressButton(button);
  console_.ExpectCommands(0);
  if (!host_.Tally().WasCancelled) {
    host_.Tally().Commands.Expected = expected;
    host_.Tally().Commands.ExpectsSave = button == uploadButton;
  }
}

ShownPage Session::Shown() const {
  return {
      .Caption = caption_, .Page = pages_.Shown(), .Status = host_.StatusText(), .Changed = host_.Changed()};
}

// The records in force stay as they are: only an upload replaces them.
std::vector<std::string> Session::ScriptLines() {
  Configuration copy = module_.Config();
  RefreshCurrentRecords(copy);
  return copy.Settings.SplitText(lineBreak, BuildUploadScript(copy, nullptr));
}

}  // namespace zolvane
