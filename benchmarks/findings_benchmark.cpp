// What `check` and `diff` cost: on the sample, and on configurations of many records.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "custody/findings/findings.h"
#include "custody/values/sides.h"
#include "custody/values/values.h"

namespace zolvane {
namespace {

std::string Sample() {
  std::ifstream file{ZOLVANE_SAMPLES_PATH "/Zolvane.ini", std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{}};
}

void CheckTheSample(benchmark::State& state) {
  const auto sample = Sample();
  for (auto _ : state) {
    benchmark::DoNotOptimize(CheckConfiguration(sample, "Zolvane.ini"));
  }
}
BENCHMARK(CheckTheSample)->Unit(benchmark::kMillisecond);

void CompareTheSample(benchmark::State& state) {
  const auto sample = Sample();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Compare(FileFace(sample), FileFace(sample)));
  }
}
BENCHMARK(CompareTheSample)->Unit(benchmark::kMillisecond);

void CompareTheWiresOfTheSample(benchmark::State& state) {
  const auto sample = Sample();
  for (auto _ : state) {
    benchmark::DoNotOptimize(Compare(WireFaceOfFile(sample).Lines, WireFaceOfFile(sample).Lines));
  }
}
BENCHMARK(CompareTheWiresOfTheSample)->Unit(benchmark::kMillisecond);

// Heads, tips, plates and nests, as many of each.
std::string WithRecords(std::int64_t count) {
  const auto section = [&](const std::string& name, const std::string& rest) {
    std::string text = "[" + name + "]\r\nInstalled=1\r\n";
    for (std::int64_t item = 1; item <= count / 4; ++item) {
      text += "Item" + std::to_string(item) + "=\"" + std::to_string(item) + "\"," + rest + "\r\n";
    }
    return text;
  };
  return section("HeadType", "SERIALDILUTE,1,300,1,8,1,0,0,0,1,1,1,1,1,1,8_CH,0,\"T\"") +
         section("TipType", "SERIALDILUTE,1,1,1,1,0,1,1,1,1,1,0,0,0,1,0,0,\"\"") +
         section("PlateType", "P,1,1,1,1,1,1,1,1,R,1,1,1,0,0,0,0,0,0,0") +
         section("NestType", "NEST8,\"A\",8_CH,1,1,1,1.00,\"B\",8_CH,1,1,1,1.00,\"C\",8_CH,1,1,1,1.00");
}

void CompareManyRecords(benchmark::State& state) {
  const auto configuration = WithRecords(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Compare(FileFace(configuration), FileFace(configuration)));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(CompareManyRecords)
    ->RangeMultiplier(10)
    ->Range(1000, 100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

void CheckManyRecords(benchmark::State& state) {
  const auto configuration = WithRecords(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(CheckConfiguration(configuration, "Zolvane.ini"));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(CheckManyRecords)
    ->RangeMultiplier(10)
    ->Range(1000, 100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
