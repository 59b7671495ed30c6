#include "windows/support/hosted_page.h"

#include <array>
#include <optional>
#include <stdexcept>

#include "files/file_settings_service.h"
#include "win32/text.h"

namespace zolvane {
namespace {

class ShownLink final : public InstrumentLink {
 public:
  explicit ShownLink(std::shared_ptr<PageHost> host) : host_{std::move(host)} {}

  std::optional<bool> Stop() override { return false; }
  Status SetStop(bool) override { return Status::Success(); }
  Status SetHold(bool) override { return Status::Success(); }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t) override {
    host_->OnCommand(command);
    reply.clear();
    return true;
  }

 private:
  std::shared_ptr<PageHost> host_;
};

class ShownObject final : public HostObject {
 public:
  explicit ShownObject(std::shared_ptr<PageHost> host) : host_{std::move(host)} {}

  std::shared_ptr<InstrumentLink> Link() override { return std::make_shared<ShownLink>(host_); }
  Status WriteLogLine(const std::string&) override { return Status::Success(); }
  std::optional<bool> HostDialogAvailable() override { return false; }
  std::shared_ptr<HostDialog> MessageDialog() override { return nullptr; }

 private:
  std::shared_ptr<PageHost> host_;
};

class ShownPanel final : public StatusPanel {
 public:
  explicit ShownPanel(std::shared_ptr<PageHost> host) : host_{std::move(host)} {}

  std::optional<std::string> Text() override { return host_->Status; }

  Status SetText(const std::string& text) override {
    host_->Status = text;
    return Status::Success();
  }

 private:
  std::shared_ptr<PageHost> host_;
};

class ShownWindow final : public HostWindow {
 public:
  explicit ShownWindow(std::shared_ptr<PageHost> host) : host_{std::move(host)} {}

  Status SetChanged(bool) override { return Status::Success(); }
  std::shared_ptr<StatusPanel> FindStatusPanel() override { return std::make_shared<ShownPanel>(host_); }

  Status TakeFocus() override {
    ++host_->FocusRequests;
    return Status::Success();
  }

 private:
  std::shared_ptr<PageHost> host_;
};

class CountedSettings final : public FileSettingsService {
 public:
  explicit CountedSettings(std::shared_ptr<PageHost> host) : host_{std::move(host)} {}

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    ++host_->Writes;
    return host_->RefusesWrites ? Status::Failure()
                                : FileSettingsService::WriteValue(section, key, file, value);
  }

 private:
  std::shared_ptr<PageHost> host_;
};

const ProgramFolder& FolderWith(const std::string& configuration) {
  const auto& folder = ProgramFolder::OfThisRun();
  Store(folder.Configuration(), configuration);
  return folder;
}

}  // namespace

HostedPage::HostedPage(const std::string& configuration)
    : folder_{FolderWith(configuration)},
      settings_{[host = host_] { return std::make_shared<CountedSettings>(host); }},
      window_{CreateWindowExW(WS_EX_CONTROLPARENT, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600,
                              nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)},
      session_{std::make_unique<ComSession>(folder_.Module().Create(),
                                            OfferHostObject(std::make_shared<ShownObject>(host_)),
                                            OfferHostWindow(std::make_shared<ShownWindow>(host_)))},
      frame_{session_->Frame()} {
  if (SetParent(frame_, window_) == nullptr) {
    throw std::runtime_error{"the host cannot take the page's frame"};
  }
  SetWindowPos(frame_, HWND_TOP, 10, 10, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
  SetActiveWindow(window_);
  UpdateWindow(window_);
}

HostedPage::~HostedPage() {
  session_ = nullptr;
  DestroyWindow(window_);
}

std::string HostedPage::Stored(const std::string& section, const std::string& key) {
  const auto file = ProgramFolder::OfThisRun().FileText("Zolvane.ini");
  return *FileSettingsService{}.ReadValue(section, key, file, "missing");
}

std::string CaptionOf(HWND window) {
  std::array<wchar_t, 256> text{};
  GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  return Utf8(text.data());
}

std::wstring ClassOf(HWND window) {
  std::array<wchar_t, 64> name{};
  GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  return name.data();
}

RECT PlaceOf(HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
  return place;
}

}  // namespace zolvane
