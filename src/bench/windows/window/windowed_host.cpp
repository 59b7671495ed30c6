#include "bench/windows/window/windowed_host.h"

#include <string>
#include <utility>

#include "bench/host/question_dialog.h"
#include "bench/windows/window/message_window.h"

namespace zolvane {
namespace {

class WindowedDialog final : public QuestionDialog {
 public:
  WindowedDialog(HWND owner, std::function<void(const Question&)> opened)
      : owner_{owner}, opened_{std::move(opened)} {}

  Status Show(bool show) override {
    window_ = show ? std::make_unique<MessageWindow>(owner_, Asked()) : nullptr;
    if (show) {
      opened_(Asked());
    }
    return Status::Success();
  }

  std::optional<std::int16_t> Result() override {
    return window_ ? window_->Result() : std::optional<std::int16_t>{std::int16_t{0}};
  }

 private:
  HWND owner_;
  std::function<void(const Question&)> opened_;
  std::unique_ptr<MessageWindow> window_;
};

class WindowedObject final : public HostObject {
 public:
  explicit WindowedObject(WindowedHostSetup setup) : setup_{std::move(setup)} {}

  std::shared_ptr<InstrumentLink> Link() override { return setup_.Link; }

  Status WriteLogLine(const std::string& line) override {
    setup_.Window->AppendLog(line);
    return Status::Success();
  }

  std::optional<bool> HostDialogAvailable() override { return setup_.OffersDialog; }

  std::shared_ptr<HostDialog> MessageDialog() override {
    return std::make_shared<WindowedDialog>(setup_.Window->Handle(), setup_.MessageOpened);
  }

 private:
  WindowedHostSetup setup_;
};

class WindowedPanel final : public StatusPanel {
 public:
  WindowedPanel(MainWindow& window, std::function<void(const std::string&)> told)
      : window_{window}, told_{std::move(told)} {}

  std::optional<std::string> Text() override { return text_; }

  Status SetText(const std::string& text) override {
    text_ = text;
    window_.ShowStatus(text);
    told_(text);
    return Status::Success();
  }

 private:
  MainWindow& window_;
  std::function<void(const std::string&)> told_;
  std::string text_;
};

class WindowedWindow final : public HostWindow {
 public:
  WindowedWindow(MainWindow& window, std::function<void(const std::string&)> told)
      : window_{window}, panel_{std::make_shared<WindowedPanel>(window, std::move(told))} {}

  Status SetChanged(bool changed) override {
    window_.ShowChanged(changed);
    return Status::Success();
  }

  std::shared_ptr<StatusPanel> FindStatusPanel() override { return panel_; }

  Status TakeFocus() override {
    SetFocus(window_.Handle());
    return Status::Success();
  }

 private:
  MainWindow& window_;
  std::shared_ptr<StatusPanel> panel_;
};

}  // namespace

std::shared_ptr<HostObject> MakeWindowedObject(WindowedHostSetup setup) {
  return std::make_shared<WindowedObject>(std::move(setup));
}

std::shared_ptr<HostWindow> MakeWindowedWindow(MainWindow& window,
                                               std::function<void(const std::string&)> told) {
  return std::make_shared<WindowedWindow>(window, std::move(told));
}

}  // namespace zolvane
