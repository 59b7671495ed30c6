#include "bench/host/session.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "bench/host/dry_run.h"
#include "bench/host/result_text.h"
#include "config/tables/current_records.h"
#include "config/text.h"
#include "operations/upload_script.h"
#include "text/joined.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// "#3" is 3.
std::optional<int> NumberedPosition(std::string_view entry) {
  int position = 0;
  const auto digits = entry.substr(std::min<std::size_t>(1, entry.size()));
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), position);
  const bool isNumber = parsed.ec == std::errc{} && parsed.ptr == digits.data() + digits.size();
  return entry.starts_with('#') && isNumber ? std::optional{position} : std::nullopt;
}

template <class Matches>
std::optional<int> FindEntry(const std::vector<ListEntry>& entries, Matches matches) {
  const auto found = std::ranges::find_if(entries, matches, &ListEntry::Text);
  return found == entries.end() ? std::nullopt : std::optional{static_cast<int>(found - entries.begin())};
}

std::string At(const Action& action) {
  return action.Place.empty() ? std::string{} : action.Place + ": ";
}

}  // namespace

Session::Session(BenchHost& host, Console& console, TraceLog* trace)
    : host_{host},
      console_{console},
      trace_{trace},
      object_{trace != nullptr ? Traced(host.Object(), *trace) : host.Object()},
      window_{trace != nullptr ? Traced(host.Window(), *trace) : host.Window()},
      tracedEnvironment_{trace != nullptr ? Traced(host.Environment(), *trace) : nullptr},
      tracedPages_{trace != nullptr ? Traced(pages_, *trace) : nullptr},
      module_{tracedEnvironment_ ? *tracedEnvironment_ : host.Environment(),
              tracedPages_ ? *tracedPages_ : static_cast<PageViewFactory&>(pages_)} {}

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

// What was written is made safe whenever something has ended.
int Session::TakeStatus() {
  host_.FlushSettings();
  if (trace_ != nullptr) {
    trace_->Flush();
  }
  return ExitStatusOf(host_.Now());
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
    worst = std::max(worst, ExitStatusOf(result.Happened));
    events.Ended(result);
  }
  if (worst == exit_status::done && events.IsInterrupted()) {
    console_.Error("interrupted, when all commands had been done");
    return exit_status::notDone;
  }
  return worst;
}

ActionResult Session::Do(const Action& action) {
  host_.Begin(action.File, At(action));
  ActionResult result{.Request = action, .Happened = {}};
  switch (action.Kind) {
    case ActionKind::ShowPage:
      result.Page = Shown();
      break;
    case ActionKind::PressButton:
      Press(action);
      break;
    case ActionKind::SelectEntry:
      Select(action);
      break;
    case ActionKind::SetCheck:
      Tick(action);
      break;
    case ActionKind::ShowScript:
      result.Script = ScriptLines();
      break;
  }
  TakeStatus();
  result.Happened = host_.Now();
  for (const auto& reason : ReasonsOf(result.Happened)) {
    console_.Error(Joined(At(action), Printable(action.Command), ": ", reason));
  }
  return result;
}

void Session::Press(const Action& action) {
  const auto& enabled = pages_.Shown().ButtonsEnabled;
  const auto index = static_cast<std::size_t>(action.Button);
  if (action.Button >= 0 && index < enabled.size() &&
      !Reacts(action, Joined(buttonRows[index].Name, " (", buttonRows[index].Caption, ")"), enabled[index])) {
    return;
  }
  const auto expected = CountCommands(host_.Environment().ProgramFolder(), action.Button);
  console_.ExpectCommands(expected);
  form_->PressButton(action.Button);
  console_.ExpectCommands(0);
  if (!host_.Now().WasCancelled) {
    host_.Now().Commands.Expected = expected;
    host_.Now().Commands.ExpectsSave = action.Button == uploadButton;
  }
}

void Session::Select(const Action& action) {
  const auto& row = RowOf(action.List);
  if (!Reacts(action, row.Name, pages_.Shown().Of(action.List).Enabled)) {
    return;
  }
  if (const auto position = PositionOf(action)) {
    PassOver(form_->UserSelects(action.List, *position));
    return;
  }
  host_.Now().WasMisused = true;
  console_.Error(Joined(At(action), row.Name, " has no entry ", Quoted(action.Entry),
                        "; the command page prints its entries"));
}

void Session::Tick(const Action& action) {
  if (Reacts(action, RowOf(action.Box).Name, pages_.Shown().Of(action.Box).Enabled)) {
    PassOver(form_->UserSetsCheck(action.Box, action.Value));
  }
}

bool Session::Reacts(const Action& action, std::string_view control, bool isEnabled) {
  if (!isEnabled) {
    host_.Now().WasDisabled = true;
    console_.Error(Joined(At(action), control, " is disabled and does not react"));
  }
  return isEnabled;
}

// The text counts before the position, and its case if it decides.
std::optional<int> Session::PositionOf(const Action& action) const {
  const auto& entries = pages_.Shown().Of(action.List).Entries;
  if (const auto exact = FindEntry(entries, [&](const auto& text) { return text == action.Entry; })) {
    return exact;
  }
  if (const auto position = NumberedPosition(action.Entry)) {
    const bool exists = *position >= 0 && static_cast<std::size_t>(*position) < entries.size();
    return exists ? position : std::nullopt;
  }
  return FindEntry(entries, [&](const auto& text) { return EqualIgnoringCase(text, action.Entry); });
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
