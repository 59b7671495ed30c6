#include "bench/host/tracing.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>
#include <vector>

#include "host/forwarding.h"
#include "program/write_failure.h"
#include "text/json_text.h"

namespace zolvane {
namespace {

using Event = nlohmann::ordered_json;

Event OrNull(const auto& value) {
  return value ? Event(*value) : Event(nullptr);
}

// ---- The process and its dialogues ----

class TracingSettings final : public ForwardingSettings {
 public:
  TracingSettings(std::shared_ptr<IniFileService> inner, TraceLog& log)
      : ForwardingSettings{std::move(inner)}, log_{log} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    auto value = ForwardingSettings::ReadValue(section, key, file, fallback);
    if (log_.HoldsReads()) {
      log_.Write({{"event", "read"},
                  {"section", section},
                  {"key", key},
                  {"file", file},
                  {"default", fallback},
                  {"value", OrNull(value)}});
    }
    return value;
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    const Status status = ForwardingSettings::WriteValue(section, key, file, value);
    log_.Write({{"event", "write"},
                {"section", section},
                {"key", key},
                {"file", file},
                {"value", value},
                {"ok", status.Ok()}});
    return status;
  }

 private:
  TraceLog& log_;
};

class TracingDialogues final : public SystemDialogues {
 public:
  TracingDialogues(SystemDialogues& inner, TraceLog& log) : inner_{inner}, log_{log} {}

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    log_.Flush();
    const auto answer = inner_.ShowMessageBox(request);
    log_.Write({{"event", "message_box"},
                {"title", request.Title},
                {"style", request.Style},
                {"text", request.Text},
                {"answer", OrNull(answer)}});
    return answer;
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    auto chosen = inner_.ShowFileDialogue(kind, dialogue);
    log_.Write({{"event", "file_dialog"},
                {"kind", kind == FileDialogueKind::Open ? "open" : "save"},
                {"title", dialogue.Title},
                {"filter", dialogue.Filter},
                {"filter_index", dialogue.FilterIndex},
                {"default_extension", dialogue.DefaultExtension},
                {"flags", OrNull(dialogue.Flags)},
                {"file_name", dialogue.FileName},
                {"chosen", OrNull(chosen)}});
    return chosen;
  }

 private:
  SystemDialogues& inner_;
  TraceLog& log_;
};

class TracingEnvironment final : public ForwardingEnvironment {
 public:
  TracingEnvironment(Environment& inner, TraceLog& log)
      : ForwardingEnvironment{inner}, dialogues_{inner, log}, log_{log} {}

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    auto service = ForwardingEnvironment::CreateIniFileService();
    return service ? Traced(std::move(service), log_) : nullptr;
  }

  Status AppendBlankLine(const std::string& file) override {
    const Status status = ForwardingEnvironment::AppendBlankLine(file);
    if (status.Ok()) {
      log_.Write({{"event", "append_blank_line"}, {"file", file}});
    }
    return status;
  }

  void RunMessageLoopOnce() override {
    log_.Write({{"event", "yield"}});
    ForwardingEnvironment::RunMessageLoopOnce();
  }

  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest& request) override {
    return dialogues_.ShowMessageBox(request);
  }

  std::optional<std::string> ShowFileDialogue(FileDialogueKind kind, const FileDialogue& dialogue) override {
    return dialogues_.ShowFileDialogue(kind, dialogue);
  }

 private:
  TracingDialogues dialogues_;
  TraceLog& log_;
};

// ---- The host object ----

class TracingLink final : public ForwardingLink {
 public:
  TracingLink(std::shared_ptr<InstrumentLink> inner, TraceLog& log)
      : ForwardingLink{std::move(inner)}, log_{log} {}

  std::optional<bool> Stop() override {
    const auto stop = ForwardingLink::Stop();
    WriteFlag("stop", "get", OrNull(stop));
    return stop;
  }

  Status SetStop(bool stop) override {
    const Status status = ForwardingLink::SetStop(stop);
    WriteFlag("stop", "set", stop);
    return status;
  }

  Status SetHold(bool hold) override {
    const Status status = ForwardingLink::SetHold(hold);
    WriteFlag("hold", "set", hold);
    return status;
  }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    log_.Flush();
    const std::string sent = command;
    const auto ok = ForwardingLink::SendCommand(command, reply, number);
    log_.Write({{"event", "send"}, {"command", sent}, {"ok", ok.value_or(false)}, {"reply", reply}});
    return ok;
  }

 private:
  void WriteFlag(const char* flag, const char* op, const Event& value) {
    log_.Write({{"event", "link"}, {"flag", flag}, {"op", op}, {"value", value}});
  }

  TraceLog& log_;
};

// Traced once, when it is answered.
class TracingDialog final : public ForwardingDialog {
 public:
  TracingDialog(std::shared_ptr<HostDialog> inner, TraceLog& log)
      : ForwardingDialog{std::move(inner)}, log_{log} {}

  Status SetStyle(std::int16_t style) override {
    style_ = style;
    return ForwardingDialog::SetStyle(style);
  }

  Status SetTitle(const std::string& title) override {
    title_ = title;
    return ForwardingDialog::SetTitle(title);
  }

  Status SetMessage(const std::string& message) override {
    message_ = message;
    return ForwardingDialog::SetMessage(message);
  }

  Status Show(bool show) override {
    log_.Flush();
    isOpen_ = show;
    return ForwardingDialog::Show(show);
  }

  std::optional<std::int16_t> Result() override {
    const auto result = ForwardingDialog::Result();
    if (isOpen_ && result && *result >= 0) {
      isOpen_ = false;
      log_.Write({{"event", "host_dialog"},
                  {"title", title_},
                  {"style", style_},
                  {"text", message_},
                  {"answer", *result}});
    }
    return result;
  }

 private:
  TraceLog& log_;
  std::int16_t style_ = 0;
  std::string title_;
  std::string message_;
  bool isOpen_ = false;
};

class TracingObject final : public ForwardingObject {
 public:
  TracingObject(std::shared_ptr<HostObject> inner, TraceLog& log)
      : ForwardingObject{std::move(inner)}, log_{log} {}

  std::shared_ptr<InstrumentLink> Link() override {
    auto link = ForwardingObject::Link();
    return link ? std::make_shared<TracingLink>(std::move(link), log_) : nullptr;
  }

  Status WriteLogLine(const std::string& line) override {
    log_.Write({{"event", "log"}, {"line", line}});
    return ForwardingObject::WriteLogLine(line);
  }

  std::shared_ptr<HostDialog> MessageDialog() override {
    auto dialogue = ForwardingObject::MessageDialog();
    return dialogue ? std::make_shared<TracingDialog>(std::move(dialogue), log_) : nullptr;
  }

 private:
  TraceLog& log_;
};

// ---- The host window ----

class TracingPanel final : public ForwardingPanel {
 public:
  TracingPanel(std::shared_ptr<StatusPanel> inner, TraceLog& log)
      : ForwardingPanel{std::move(inner)}, log_{log} {}

  Status SetText(const std::string& text) override {
    log_.Write({{"event", "status"}, {"text", text}});
    return ForwardingPanel::SetText(text);
  }

 private:
  TraceLog& log_;
};

class TracingWindow final : public ForwardingWindow {
 public:
  TracingWindow(std::shared_ptr<HostWindow> inner, TraceLog& log)
      : ForwardingWindow{std::move(inner)}, log_{log} {}

  Status SetChanged(bool changed) override {
    log_.Write({{"event", "changed"}, {"value", changed}});
    return ForwardingWindow::SetChanged(changed);
  }

  std::shared_ptr<StatusPanel> FindStatusPanel() override {
    auto panel = ForwardingWindow::FindStatusPanel();
    return panel ? std::make_shared<TracingPanel>(std::move(panel), log_) : nullptr;
  }

 private:
  TraceLog& log_;
};

// ---- The page ----

class TracingPage final : public PageView {
 public:
  TracingPage(std::unique_ptr<PageView> inner, TraceLog& log) : inner_{std::move(inner)}, log_{log} {}

  Status ShowEntries(ListControl list, std::span<const ListEntry> entries) override {
    auto& items = items_[static_cast<std::size_t>(list)];
    items = Event::array();
    for (const auto& entry : entries) {
      items.push_back(EntryJson(entry));
    }
    WriteSet(RowOf(list).Name, "items", items);
    return inner_->ShowEntries(list, entries);
  }

  Status ShowAddedEntry(ListControl list, const ListEntry& entry) override {
    auto& items = items_[static_cast<std::size_t>(list)];
    items.push_back(EntryJson(entry));
    WriteSet(RowOf(list).Name, "items", items);
    return inner_->ShowAddedEntry(list, entry);
  }

  Status ShowSelection(ListControl list, int index) override {
    WriteSet(RowOf(list).Name, "selection", index);
    return inner_->ShowSelection(list, index);
  }

  Status ShowListColour(ListControl list, std::uint32_t systemColour) override {
    WriteSet(RowOf(list).Name, "back_color", systemColour);
    return inner_->ShowListColour(list, systemColour);
  }

  Status ShowListEnabled(ListControl list, bool enabled) override {
    WriteSet(RowOf(list).Name, "enabled", enabled);
    return inner_->ShowListEnabled(list, enabled);
  }

  Status ShowCheck(CheckControl box, int value) override {
    WriteSet(RowOf(box).Name, "value", value);
    return inner_->ShowCheck(box, value);
  }

  Status ShowCheckEnabled(CheckControl box, bool enabled) override {
    WriteSet(RowOf(box).Name, "enabled", enabled);
    return inner_->ShowCheckEnabled(box, enabled);
  }

  Status ShowButtonEnabled(int button, bool enabled) override {
    WriteSet(buttonRows.at(static_cast<std::size_t>(button)).Name, "enabled", enabled);
    return inner_->ShowButtonEnabled(button, enabled);
  }

  Status ShowPumpText(std::string_view text) override {
    WriteSet(pumpLabel.Name, "text", text);
    return inner_->ShowPumpText(text);
  }

  std::int32_t WindowHandle() const override { return inner_->WindowHandle(); }
  std::int32_t FrameHandle() const override { return inner_->FrameHandle(); }
  void Close() override { inner_->Close(); }

 private:
  void WriteSet(std::string_view control, const char* property, const Event& value) {
    log_.Write({{"event", "control"}, {"name", control}, {"property", property}, {"value", value}});
  }

  std::unique_ptr<PageView> inner_;
  TraceLog& log_;
  std::array<Event, listRows.size()> items_;
};

class TracingPageFactory final : public PageViewFactory {
 public:
  TracingPageFactory(PageViewFactory& inner, TraceLog& log) : inner_{inner}, log_{log} {}

  std::unique_ptr<PageView> CreatePageView(PageEvents& events) override {
    auto page = inner_.CreatePageView(events);
    return page ? std::make_unique<TracingPage>(std::move(page), log_) : nullptr;
  }

 private:
  PageViewFactory& inner_;
  TraceLog& log_;
};

}  // namespace

void TraceLog::Write(const Event& event) {
  if (output_) {
    errno = 0;
    NoteFailure(static_cast<bool>(output_ << JsonText(event) << '\n'));
  }
}

bool TraceLog::Flush() {
  if (output_) {
    errno = 0;
    NoteFailure(static_cast<bool>(output_.flush()));
  }
  return !failure_;
}

void TraceLog::NoteFailure(bool isGood) {
  if (!isGood) {
    failure_ = LastWriteFailure();
  }
}

std::shared_ptr<IniFileService> Traced(std::shared_ptr<IniFileService> settings, TraceLog& log) {
  return std::make_shared<TracingSettings>(std::move(settings), log);
}

std::unique_ptr<Environment> Traced(Environment& environment, TraceLog& log) {
  return std::make_unique<TracingEnvironment>(environment, log);
}

std::unique_ptr<SystemDialogues> Traced(SystemDialogues& dialogues, TraceLog& log) {
  return std::make_unique<TracingDialogues>(dialogues, log);
}

std::shared_ptr<HostObject> Traced(std::shared_ptr<HostObject> object, TraceLog& log) {
  return std::make_shared<TracingObject>(std::move(object), log);
}

std::shared_ptr<HostWindow> Traced(std::shared_ptr<HostWindow> window, TraceLog& log) {
  return std::make_shared<TracingWindow>(std::move(window), log);
}

std::unique_ptr<PageViewFactory> Traced(PageViewFactory& views, TraceLog& log) {
  return std::make_unique<TracingPageFactory>(views, log);
}

}  // namespace zolvane
