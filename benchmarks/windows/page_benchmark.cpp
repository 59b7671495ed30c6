// What the page costs a host: from creating the class Connect until LoadDefaults has returned, against an empty
// window with the same controls. Prints the median of each in milliseconds and the ratio of the two, as a line of JSON.
#include <hestrion_cmds.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/bench_host.h"
#include "bench/windows/com/add_in_class.h"
#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_settings.h"
#include "instrument/links/link_factory.h"
#include "win32/unique_handle.h"

namespace zolvane {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int roundsByDefault = 200;
constexpr int warmUpRounds = 20;
constexpr double mostTimesTheEmptyWindow = 2.0;

// ---- The page in its host ----

class ComInUse {
 public:
  ComInUse() { OleInitialize(nullptr); }
  ~ComInUse() { OleUninitialize(); }
  ComInUse(const ComInUse&) = delete;
  ComInUse& operator=(const ComInUse&) = delete;
};

// The module and the sample configuration, as an installation leaves them.
class Installation {
 public:
  Installation()
      : path_{std::filesystem::temp_directory_path() /
              ("page-benchmark-" + std::to_string(GetCurrentProcessId()))} {
    std::filesystem::create_directories(path_);
    Copy(ZOLVANE_MODULE_PATH, "HZOCalibrateDevice.dll");
    Copy(ZOLVANE_SAMPLES_PATH "/Zolvane.ini", "Zolvane.ini");
  }
  ~Installation() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  std::string Folder() const { return path_.string(); }
  std::wstring Module() const { return (path_ / "HZOCalibrateDevice.dll").wstring(); }

 private:
  void Copy(const char* file, const char* name) const {
    std::filesystem::copy_file(file, path_ / name, std::filesystem::copy_options::overwrite_existing);
  }

  std::filesystem::path path_;
};

class Host {
 public:
  explicit Host(const std::string& folder) : setup_{.Folder = folder} {}

  ComPtr<IDispatch> Object() { return OfferHostObject(host_.Object()); }
  ComPtr<IDispatch> Window() { return OfferHostWindow(host_.Window()); }

 private:
  BenchHost::Setup setup_;
  std::ostringstream unread_;
  Console console_{unread_, unread_, {.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = {}}};
  InterruptFlag interrupt_;
  BenchHost host_{setup_, CreateLink("none", 5, interrupt_), nullptr, console_};
  OfferedSettings settings_{[this] { return host_.Process().CreateIniFileService(); }};
};

// ---- The empty window ----

struct FontPlan : LOGFONTW {
  friend bool operator==(const FontPlan& left, const FontPlan& right) {
    return left.lfHeight == right.lfHeight && left.lfWeight == right.lfWeight &&
           lstrcmpW(left.lfFaceName, right.lfFaceName) == 0;
  }
};

// A window as its creator describes it, taken from one that exists. Lists are empty.
struct WindowPlan {
  std::wstring ClassName;
  std::wstring Text;
  DWORD Style;
  DWORD ExtendedStyle;
  int Id;
  RECT Place;  // within the parent
  int Height;  // with the part that drops down
  FontPlan Font;
};

RECT PlaceOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, GetAncestor(window, GA_PARENT), reinterpret_cast<POINT*>(&place), 2);
  return place;
}

WindowPlan PlanOf(HWND window) {
  std::array<wchar_t, 256> className{};
  std::array<wchar_t, 256> text{};
  GetClassNameW(window, className.data(), static_cast<int>(className.size()));
  GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  WindowPlan plan{.ClassName = className.data(),
                  .Text = text.data(),
                  .Style = static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & ~DWORD{WS_DISABLED},
                  .ExtendedStyle = static_cast<DWORD>(GetWindowLongW(window, GWL_EXSTYLE)),
                  .Id = GetDlgCtrlID(window),
                  .Place = PlaceOf(window),
                  .Height = 0,
                  .Font = {}};
  plan.Height = plan.Place.bottom - plan.Place.top;
  if (lstrcmpiW(plan.ClassName.c_str(), L"COMBOBOX") == 0) {
    plan.Text.clear();
    RECT dropped{};
    SendMessageW(window, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
    plan.Height = dropped.bottom - dropped.top;
  }
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof(LOGFONTW), &plan.Font);
  return plan;
}

// The page's own, hidden window, the frame in it and the frame's controls; and the fonts in use, each once.
struct PagePlan {
  WindowPlan Page;
  WindowPlan Frame;
  std::vector<WindowPlan> Controls;
  std::vector<FontPlan> Fonts;
};

PagePlan PlanOfPage(HWND page, HWND frame) {
  PagePlan plan{.Page = PlanOf(page), .Frame = PlanOf(frame), .Controls = {}, .Fonts = {}};
  for (HWND control = GetWindow(frame, GW_CHILD); control != nullptr;
       control = GetWindow(control, GW_HWNDNEXT)) {
    plan.Controls.push_back(PlanOf(control));
    const auto& font = plan.Controls.back().Font;
    if (std::ranges::find(plan.Fonts, font) == plan.Fonts.end()) {
      plan.Fonts.push_back(font);
    }
  }
  return plan;
}

HWND Create(const WindowPlan& plan, const wchar_t* className, HWND parent) {
  const HWND window = CreateWindowExW(
      plan.ExtendedStyle, className, plan.Text.c_str(), plan.Style, plan.Place.left, plan.Place.top,
      plan.Place.right - plan.Place.left, plan.Height, parent,
      reinterpret_cast<HMENU>(static_cast<LONG_PTR>(plan.Id)), GetModuleHandleW(nullptr), nullptr);
  return window != nullptr ? window : throw std::runtime_error{"a window of the empty page was refused"};
}

// Created by direct calls, with a class of this program that leaves everything to the system.
class EmptyWindow {
 public:
  explicit EmptyWindow(const PagePlan& plan) : page_{Create(plan.Page, emptyClass, nullptr)} {
    for (const auto& font : plan.Fonts) {
      fonts_.emplace_back(CreateFontIndirectW(&font));
    }
    const HWND frame = Create(plan.Frame, emptyClass, page_);
    for (const auto& control : plan.Controls) {
      const auto font = std::ranges::find(plan.Fonts, control.Font) - plan.Fonts.begin();
      const HWND window = Create(control, control.ClassName.c_str(), frame);
      SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_[static_cast<std::size_t>(font)].Get()),
                   FALSE);
    }
  }
  ~EmptyWindow() { DestroyWindow(page_); }
  EmptyWindow(const EmptyWindow&) = delete;
  EmptyWindow& operator=(const EmptyWindow&) = delete;

  HWND Page() const { return page_; }
  HWND Frame() const { return GetWindow(page_, GW_CHILD); }

  static void RegisterClass() {
    WNDCLASSEXW description{};
    description.cbSize = sizeof(description);
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    description.lpszClassName = emptyClass;
    RegisterClassExW(&description);
  }

 private:
  static constexpr const wchar_t* emptyClass = L"PageBenchmarkEmptyWindow";

  std::vector<UniqueFont> fonts_;
  HWND page_;
};

// ---- Measuring ----

// What making the object takes. Its end does not count.
template <class Make>
double TimeOf(const Make& make) {
  const auto begin = Clock::now();
  [[maybe_unused]] const auto made = make();
  return Milliseconds{Clock::now() - begin}.count();
}

double Median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::ranges::nth_element(times, middle);
  return *middle;
}

class Benchmark {
 public:
  Benchmark() {
    EmptyWindow::RegisterClass();
    const ComSession session{module_.Create(), object_, window_};
    long page = 0;
    session.Form()->get_hwnd(&page);
    plan_ = PlanOfPage(reinterpret_cast<HWND>(static_cast<LONG_PTR>(page)), session.Frame());
    CheckEmptyWindow();
  }

  double PageTime() const {
    return TimeOf([this] { return ComSession{module_.Create(), object_, window_}; });
  }
  double EmptyWindowTime() const {
    return TimeOf([this] { return EmptyWindow{plan_}; });
  }

  std::size_t ControlCount() const { return plan_.Controls.size(); }

 private:
  // A window that lacks something would be a measure that nothing can keep to, or one that everything can.
  void CheckEmptyWindow() const {
    const EmptyWindow empty{plan_};
    const auto copy = PlanOfPage(empty.Page(), empty.Frame());
    const bool isSame =
        std::ranges::equal(copy.Controls, plan_.Controls, [](const auto& left, const auto& right) {
          return left.ClassName == right.ClassName && left.Text == right.Text && left.Style == right.Style &&
                 left.Id == right.Id && EqualRect(&left.Place, &right.Place) != FALSE &&
                 left.Font == right.Font;
        });
    if (plan_.Controls.empty() || !isSame) {
      throw std::runtime_error{"the empty window is not like the page"};
    }
  }

  ComInUse com_;
  Installation installation_;
  Host host_{installation_.Folder()};
  AddInFile module_{installation_.Module()};
  ComPtr<IDispatch> object_ = host_.Object();
  ComPtr<IDispatch> window_ = host_.Window();
  PagePlan plan_;
};

void Run(int rounds) {
  const Benchmark benchmark;
  std::vector<double> pageTimes;
  std::vector<double> emptyTimes;
  for (int round = -warmUpRounds; round < rounds; ++round) {
    const double emptyTime = benchmark.EmptyWindowTime();
    const double pageTime = benchmark.PageTime();
    if (round >= 0) {
      emptyTimes.push_back(emptyTime);
      pageTimes.push_back(pageTime);
    }
  }
  const double page = Median(pageTimes);
  const double empty = Median(emptyTimes);
  std::cout << R"({"page_ready_ms":)" << page << R"(,"empty_window_ms":)" << empty << R"(,"ratio":)"
            << page / empty << R"(,"most":)" << mostTimesTheEmptyWindow << R"(,"controls":)"
            << benchmark.ControlCount() << R"(,"rounds":)" << rounds << "}\n";
}

int RoundsOf(std::span<char*> arguments) {
  if (arguments.size() < 2) {
    return roundsByDefault;
  }
  const std::string_view text{arguments[1]};
  int rounds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rounds);
  if (error != std::errc{} || end != text.data() + text.size() || rounds < 1) {
    throw std::runtime_error{"usage: page-benchmark [ROUNDS]"};
  }
  return rounds;
}

}  // namespace
}  // namespace zolvane

int main(int count, char** arguments) {
  try {
    zolvane::Run(zolvane::RoundsOf({arguments, static_cast<std::size_t>(count)}));
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
  }
}
