#include "windows/support/hosted_page.h"

#include <array>
#include <stdexcept>

#include "files/file_settings_service.h"
#include "text/joined.h"
#include "win32/text.h"

namespace zolvane {
namespace {

class NotedSettings final : public FileSettingsService {
 public:
  explicit NotedSettings(Journal& journal) : journal_{journal} {}

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    return journal_.Outcome(Joined("write [", section, "] ", key)).Then([&] {
      return FileSettingsService::WriteValue(section, key, file, value);
    });
  }

 private:
  Journal& journal_;
};

const ProgramFolder& FolderWith(const std::string& configuration) {
  const auto& folder = ProgramFolder::OfThisRun();
  Store(folder.Configuration(), configuration);
  return folder;
}

}  // namespace

HostedPage::HostedPage(const std::string& configuration)
    : folder_{FolderWith(configuration)},
      settings_{[this] { return std::make_shared<NotedSettings>(host_.Calls); }},
      window_{CreateWindowExW(WS_EX_CONTROLPARENT, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600,
                              nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)},
      session_{std::make_unique<ComSession>(folder_.Module().Create(), OfferHostObject(host_.Object),
                                            OfferHostWindow(host_.Window))},
      frame_{session_->Frame()} {
  host_.Link().DefaultReply = Answer("");
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
