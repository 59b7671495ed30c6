// The host's objects: object model, instrument link with scripted replies, message dialogue, window and
// status panel.
//
// Events: `get link`, `log LINE`, `dialogue available?`, `get dialogue`; `stop?`, `stop=false`, `hold=true`,
// `send COMMAND`; `dialogue style 0`, `dialogue title TEXT`, `dialogue message TEXT`, `dialogue show true`,
// `dialogue result?`; `changed=false`, `find panel`, `focus`; `status?`, `status=TEXT`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/host_attachment.h"
#include "host/host_object.h"
#include "host/host_window.h"
#include "support/fake_environment.h"
#include "support/journal.h"

namespace zolvane {

inline std::string FlagWord(bool flag) {
  return flag ? "true" : "false";
}

// What the link does with one command.
struct FakeReply {
  std::optional<std::string> Text;  // nothing leaves the caller's variable as it is
  bool Answered = true;
  bool RaisesStop = false;
};

inline FakeReply Answer(std::string text) {
  return {.Text = std::move(text)};
}
inline FakeReply NoAnswer() {
  return {.Text = std::nullopt, .Answered = false};
}

class FakeLink final : public InstrumentLink {
 public:
  explicit FakeLink(Journal& journal) : journal_{journal} {}

  // The replies to a command, one after the other; the last one stays. Other commands get DefaultReply.
  std::map<std::string, std::deque<FakeReply>> Replies;
  FakeReply DefaultReply = Answer("OK");

  bool StopFlag = false;
  bool HoldFlag = false;

  // Every command sent, in order.
  std::vector<std::string> Commands;

  // Called while a command is under way.
  std::function<void(const std::string& command)> WhileSending;

  std::optional<bool> Stop() override {
    return journal_.Fails("stop?") ? std::nullopt : std::optional{StopFlag};
  }

  Status SetStop(bool stop) override { return Set(StopFlag, stop, "stop="); }
  Status SetHold(bool hold) override { return Set(HoldFlag, hold, "hold="); }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    const std::string extra = number == 0 ? "" : " with " + std::to_string(number);
    if (journal_.Fails("send " + command + extra)) {
      return std::nullopt;
    }
    Commands.push_back(command);
    if (WhileSending) {
      WhileSending(command);
    }
    const FakeReply scripted = NextReply(command);
    reply = scripted.Text.value_or(reply);
    StopFlag = StopFlag || scripted.RaisesStop;
    return scripted.Answered;
  }

 private:
  Status Set(bool& flag, bool value, const std::string& event) {
    const Status outcome = journal_.Outcome(event + FlagWord(value));
    if (outcome.Ok()) {
      flag = value;
    }
    return outcome;
  }

  FakeReply NextReply(const std::string& command) {
    const auto found = Replies.find(command);
    if (found == Replies.end() || found->second.empty()) {
      return DefaultReply;
    }
    const FakeReply reply = found->second.front();
    if (found->second.size() > 1) {
      found->second.pop_front();
    }
    return reply;
  }

  Journal& journal_;
};

class FakeDialog final : public HostDialog {
 public:
  explicit FakeDialog(Journal& journal) : journal_{journal} {}

  // What the coming readings of the result give; the last one stays.
  std::deque<std::int16_t> Results{1};

  Status SetStyle(std::int16_t style) override {
    return journal_.Outcome("dialogue style " + std::to_string(style));
  }
  Status SetTitle(const std::string& title) override { return journal_.Outcome("dialogue title " + title); }
  Status SetMessage(const std::string& message) override {
    return journal_.Outcome("dialogue message " + message);
  }
  Status Show(bool show) override { return journal_.Outcome("dialogue show " + FlagWord(show)); }

  std::optional<std::int16_t> Result() override {
    if (journal_.Fails("dialogue result?")) {
      return std::nullopt;
    }
    const std::int16_t result = Results.front();
    if (Results.size() > 1) {
      Results.pop_front();
    }
    return result;
  }

 private:
  Journal& journal_;
};

class FakeHostObject final : public HostObject {
 public:
  explicit FakeHostObject(Journal& journal)
      : TheLink{std::make_shared<FakeLink>(journal)},
        Dialog{std::make_shared<FakeDialog>(journal)},
        journal_{journal} {}

  std::shared_ptr<FakeLink> TheLink;
  std::shared_ptr<FakeDialog> Dialog;
  bool OffersDialog = false;

  std::shared_ptr<InstrumentLink> Link() override { return journal_.Fails("get link") ? nullptr : TheLink; }

  Status WriteLogLine(const std::string& line) override { return journal_.Outcome("log " + line); }

  std::optional<bool> HostDialogAvailable() override {
    return journal_.Fails("dialogue available?") ? std::nullopt : std::optional{OffersDialog};
  }

  std::shared_ptr<HostDialog> MessageDialog() override {
    return journal_.Fails("get dialogue") ? nullptr : Dialog;
  }

 private:
  Journal& journal_;
};

class FakePanel final : public StatusPanel {
 public:
  explicit FakePanel(Journal& journal) : journal_{journal} {}

  std::string Shown;

  std::optional<std::string> Text() override {
    return journal_.Fails("status?") ? std::nullopt : std::optional{Shown};
  }

  Status SetText(const std::string& text) override {
    const Status outcome = journal_.Outcome("status=" + text);
    if (outcome.Ok()) {
      Shown = text;
    }
    return outcome;
  }

 private:
  Journal& journal_;
};

class FakeWindow final : public HostWindow {
 public:
  explicit FakeWindow(Journal& journal) : Panel{std::make_shared<FakePanel>(journal)}, journal_{journal} {}

  std::shared_ptr<FakePanel> Panel;  // empty: a window without the status bar
  std::optional<bool> Changed;

  Status SetChanged(bool changed) override {
    const Status outcome = journal_.Outcome("changed=" + FlagWord(changed));
    if (outcome.Ok()) {
      Changed = changed;
    }
    return outcome;
  }

  std::shared_ptr<StatusPanel> FindStatusPanel() override {
    return journal_.Fails("find panel") ? nullptr : Panel;
  }

  Status TakeFocus() override { return journal_.Outcome("focus"); }

 private:
  Journal& journal_;
};

// What a host gives the add-in's page, on one journal.
struct FakeHostObjects {
  Journal Calls;
  std::shared_ptr<FakeHostObject> Object = std::make_shared<FakeHostObject>(Calls);
  std::shared_ptr<FakeWindow> Window = std::make_shared<FakeWindow>(Calls);

  FakeLink& Link() const { return *Object->TheLink; }
};

// Everything around the add-in, on the same journal.
struct FakeHost : FakeHostObjects {
  FakeEnvironment Process{Calls};

  FakeSettings& Settings() { return *Process.Settings; }
  HostAttachment Attached() { return {.ObjectParent = Object, .FormParent = Window, .Panel = Window->Panel}; }
};

}  // namespace zolvane
