// Whole runs of the bench, as a user starts them, on a copy of the sample: an upload to the instrument inside
// the process and one over TCP. The upload without an instrument tells how much of that is reading and
// building.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <asio.hpp>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "bench/host/dry_run.h"
#include "instrument/simulator/instrument_server.h"
#include "page/page_controls.h"

namespace zolvane {
namespace {

class SampleFolder {
 public:
  SampleFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "operations-benchmark-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
    std::filesystem::copy_file(ZOLVANE_SAMPLES_PATH "/Zolvane.ini", path_ + "/Zolvane.ini");
  }
  ~SampleFolder() { std::filesystem::remove_all(path_); }
  SampleFolder(const SampleFolder&) = delete;
  SampleFolder& operator=(const SampleFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

bool RunsWell(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ZOLVANE_BENCH_PATH);
  std::vector<char*> words;
  for (auto& argument : arguments) {
    words.push_back(argument.data());
  }
  words.push_back(nullptr);
  pid_t process = 0;
  int status = 0;
  return ::posix_spawn(&process, ZOLVANE_BENCH_PATH, nullptr, nullptr, words.data(), environ) == 0 &&
         ::waitpid(process, &status, 0) == process && status == 0;
}

void UploadWithTheInstrumentInside(benchmark::State& state) {
  const SampleFolder folder;
  for (auto _ : state) {
    if (!RunsWell({"--folder", folder.Path(), "--yes", "--quiet", "upload"})) {
      state.SkipWithError("the upload failed");
    }
  }
}
BENCHMARK(UploadWithTheInstrumentInside)->UseRealTime()->Unit(benchmark::kMillisecond);

void UploadOverTcp(benchmark::State& state) {
  SimulatedInstrument instrument{{}};
  InstrumentServer server{instrument, {}};
  asio::io_context io;
  const auto place = server.ServeTcp(io, "127.0.0.1:0");
  std::thread serving{[&io] { io.run(); }};
  const SampleFolder folder;
  for (auto _ : state) {
    if (!RunsWell({"--folder", folder.Path(), "--link", place, "--yes", "--quiet", "upload"})) {
      state.SkipWithError("the upload failed");
    }
  }
  io.stop();
  serving.join();
}
BENCHMARK(UploadOverTcp)->UseRealTime()->Unit(benchmark::kMillisecond);

// Reading the configuration and building the script, sent to an instrument that costs nothing.
void UploadWithoutAnInstrument(benchmark::State& state) {
  const SampleFolder folder;
  for (auto _ : state) {
    benchmark::DoNotOptimize(CountCommands(folder.Path(), uploadButton));
  }
}
BENCHMARK(UploadWithoutAnInstrument)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
