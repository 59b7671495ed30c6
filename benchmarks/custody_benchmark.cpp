// Whole runs of zolvane on a copy of the sample: what is looked at often, and what custody adds to an upload over TCP to
// an instrument that takes 5 ms for each line. Each line is asked for once before and once after, so an upload in custody
// takes about three times as long as the bare one.
#include <benchmark/benchmark.h>

#include <asio.hpp>
#include <filesystem>
#include <string>
#include <thread>

#include "instrument/simulator/instrument_server.h"
#include "programs.h"

namespace zolvane {
namespace {

void CheckTheSample(benchmark::State& state) {
  const SampleFolder folder;
  for (auto _ : state) {
    if (!RunsWell(ZOLVANE_PATH, {"--folder", folder.Path(), "--quiet", "check"})) {
      state.SkipWithError("the check found an error");
    }
  }
}
BENCHMARK(CheckTheSample)->UseRealTime()->Unit(benchmark::kMillisecond);

void CompareTheSample(benchmark::State& state) {
  const SampleFolder folder;
  const auto copy = folder.Path() + "/copy.ini";
  std::filesystem::copy_file(folder.Path() + "/Zolvane.ini", copy);
  for (auto _ : state) {
    if (!RunsWell(ZOLVANE_PATH, {"--folder", folder.Path(), "--quiet", "diff", "file", copy})) {
      state.SkipWithError("a copy differs");
    }
  }
}
BENCHMARK(CompareTheSample)->UseRealTime()->Unit(benchmark::kMillisecond);

void CompareTheWiresOfTheSample(benchmark::State& state) {
  const SampleFolder folder;
  const auto copy = folder.Path() + "/copy.ini";
  std::filesystem::copy_file(folder.Path() + "/Zolvane.ini", copy);
  for (auto _ : state) {
    if (!RunsWell(ZOLVANE_PATH, {"--folder", folder.Path(), "--quiet", "--wire", "diff", "file", copy})) {
      state.SkipWithError("a copy differs");
    }
  }
}
BENCHMARK(CompareTheWiresOfTheSample)->UseRealTime()->Unit(benchmark::kMillisecond);

void UploadOverTcp(benchmark::State& state, const char* program) {
  SimulatedInstrument instrument{{}};
  InstrumentServer server{instrument, {.Latency = std::chrono::milliseconds{5}}};
  asio::io_context io;
  const auto place = server.ServeTcp(io, "127.0.0.1:0");
  std::thread serving{[&io] { io.run(); }};
  const SampleFolder folder;
  for (auto _ : state) {
    if (!RunsWell(program, {"--folder", folder.Path(), "--link", place, "--yes", "--quiet", "upload"})) {
      state.SkipWithError("the upload failed");
    }
  }
  io.stop();
  serving.join();
}
BENCHMARK_CAPTURE(UploadOverTcp, Bare, ZOLVANE_BENCH_PATH)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UploadOverTcp, InCustody, ZOLVANE_PATH)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
