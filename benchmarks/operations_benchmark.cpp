// Whole runs of the bench, as a user starts them, on a copy of the sample: an upload to the instrument inside
// the process and one over TCP. The upload without an instrument tells how much of that is reading and
// building.
#include <benchmark/benchmark.h>

#include <asio.hpp>
#include <thread>

#include "bench/host/dry_run.h"
#include "instrument/simulator/instrument_server.h"
#include "page/page_controls.h"
#include "programs.h"

namespace zolvane {
namespace {

void UploadWithTheInstrumentInside(benchmark::State& state) {
  const SampleFolder folder;
  for (auto _ : state) {
    if (!RunsWell(ZOLVANE_BENCH_PATH, {"--folder", folder.Path(), "--yes", "--quiet", "upload"})) {
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
    if (!RunsWell(ZOLVANE_BENCH_PATH,
                  {"--folder", folder.Path(), "--link", place, "--yes", "--quiet", "upload"})) {
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
