// Opening a settings file and reading each of its keys once, beside libraries that do the same. Both sides take
// turns within one run, so that "ratio" (our time for each unit of theirs) holds on a busy machine too.
//
// The libraries read the file once and look at it never again. The service looks at it with each reading, in
// case another program has changed it; "looks" is the part of our time that goes there.
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "folder.h"

namespace zolvane {
namespace {

struct Name {
  std::string Section;
  std::string Key;
};

struct Settings {
  std::string Text;
  std::vector<Name> Names;
};

// Copies of the sample, each with section names of its own. Without its comments: one library takes them for
// errors.
Settings CopiesOfTheSample(std::int64_t copies) {
  Settings settings;
  for (std::int64_t copy = 0; copy < copies; ++copy) {
    std::ifstream sample{ZOLVANE_SAMPLES_PATH "/Zolvane.ini", std::ios::binary};
    std::string section;
    for (std::string line; std::getline(sample, line);) {
      if (line.starts_with('[')) {
        section = line.substr(1, line.find(']') - 1) + (copy == 0 ? "" : '_' + std::to_string(copy));
        line = '[' + section + "]\r";
      } else if (const auto equals = line.find('='); equals != std::string::npos && !line.starts_with(';')) {
        settings.Names.push_back({section, line.substr(0, equals)});
      }
      settings.Text += line.starts_with(';') ? "" : line + '\n';
    }
  }
  return settings;
}

// Each reads all values and returns how long they are, so that it can be seen that both sides do.
std::size_t ReadByService(const std::string& path, const std::vector<Name>& names) {
  FileSettingsService service;
  std::size_t size = 0;
  for (const auto& [section, key] : names) {
    size += service.ReadValue(section, key, path, "")->size();
  }
  return size;
}

std::size_t ReadBySimpleIni(const std::string& path, const std::vector<Name>& names) {
  CSimpleIniA library{true};
  library.LoadFile(path.c_str());
  std::size_t size = 0;
  for (const auto& [section, key] : names) {
    size += std::string{library.GetValue(section.c_str(), key.c_str(), "")}.size();
  }
  return size;
}

std::size_t ReadByGKeyFile(const std::string& path, const std::vector<Name>& names) {
  const std::unique_ptr<GKeyFile, decltype(&g_key_file_free)> library{g_key_file_new(), g_key_file_free};
  g_key_file_load_from_file(library.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
  std::size_t size = 0;
  for (const auto& [section, key] : names) {
    const std::unique_ptr<gchar, decltype(&g_free)> value{
        g_key_file_get_value(library.get(), section.c_str(), key.c_str(), nullptr), g_free};
    size += value ? std::string_view{value.get()}.size() : 0;
  }
  return size;
}

std::size_t LookOnly(const std::string& path, const std::vector<Name>& names) {
  const auto file = OpenExchangedFile(path);
  file->Read();
  std::size_t current = 0;
  for (std::size_t look = 0; look < names.size(); ++look) {
    current += file->IsCurrent() ? 1 : 0;
  }
  return current;
}

using Reader = std::size_t (*)(const std::string& path, const std::vector<Name>& names);

class Timed {
 public:
  explicit Timed(Reader reader) : reader_{reader} {}

  std::size_t Run(const std::string& path, const std::vector<Name>& names) {
    const auto start = std::chrono::steady_clock::now();
    const std::size_t size = reader_(path, names);
    seconds_.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return size;
  }

  double Last() const { return seconds_.back(); }

  double Median() {
    const auto middle = seconds_.begin() + static_cast<std::ptrdiff_t>(seconds_.size() / 2);
    std::nth_element(seconds_.begin(), middle, seconds_.end());
    return *middle;
  }

 private:
  Reader reader_;
  std::vector<double> seconds_;
};

void EveryKeyOnce(benchmark::State& state, Reader library) {
  const Folder folder;
  const Settings settings = CopiesOfTheSample(state.range(0));
  const std::string path = folder.Put("Zolvane.ini", settings.Text);
  // A file that has just been changed could change again under the same time stamp, and is read again each time.
  std::this_thread::sleep_for(std::chrono::milliseconds{200});
  Timed ours{ReadByService};
  Timed theirs{library};
  Timed looks{LookOnly};
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    if (ours.Run(path, settings.Names) != theirs.Run(path, settings.Names)) {
      state.SkipWithError("the library reads other values");
      break;
    }
    state.SetIterationTime(ours.Last());
    looks.Run(path, settings.Names);
  }
  constexpr double millisecond = 1e-3;
  state.counters["bytes"] = static_cast<double>(settings.Text.size());
  state.counters["keys"] = static_cast<double>(settings.Names.size());
  state.counters["ours ms"] = ours.Median() / millisecond;
  state.counters["theirs ms"] = theirs.Median() / millisecond;
  state.counters["looks"] = looks.Median() / ours.Median();
  state.counters["ratio"] = ours.Median() / theirs.Median();
}
BENCHMARK_CAPTURE(EveryKeyOnce, SimpleIni, ReadBySimpleIni)
    ->ArgName("copies")
    ->Arg(1)
    ->Arg(11)
    ->Arg(110)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EveryKeyOnce, GKeyFile, ReadByGKeyFile)
    ->ArgName("copies")
    ->Arg(1)
    ->Arg(11)
    ->Arg(110)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
