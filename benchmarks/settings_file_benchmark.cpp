// What the settings-file service costs: an import of many records, single reads and writes, and changes
// inside a large section. "durable" is 1 where each write is made to survive a power cut, as the bench does
// it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "files/sectioned_text.h"
#include "folder.h"

namespace zolvane {
namespace {

std::string RecordKey(std::int64_t number) {
  return "Item" + std::to_string(number);
}

std::string Record(std::int64_t number) {
  return "\"Microplate number " + std::to_string(number) + ", 96 wells\",8,12,9,9,14.4,10.9,1,0,0.5";
}

std::string SectionOfRecords(std::string_view name, std::int64_t count) {
  std::string text = '[' + std::string{name} + "]\r\nInstalled=1\r\nWellVolume=200\r\n";
  for (std::int64_t number = 1; number <= count; ++number) {
    text += RecordKey(number) + '=' + Record(number) + "\r\n";
  }
  return text + "\r\n";
}

// Some sixty sections with the plates in their midst.
std::string InstalledSettings() {
  std::string text;
  for (int section = 0; section < 60; ++section) {
    text += section == 30 ? SectionOfRecords("PlateType", 0)
                          : SectionOfRecords("Section" + std::to_string(section), 20);
  }
  return text;
}

FileSettingsService ServiceWith(Durability durability) {
  return FileSettingsService{
      [durability](const std::string& path) { return OpenExchangedFile(path, {.Survives = durability}); }};
}

void CopyRecord(FileSettingsService& service, const std::string& source, const std::string& destination,
                const std::string& record) {
  for (const std::string_view key :
       {std::string_view{"Installed"}, std::string_view{"WellVolume"}, std::string_view{record}}) {
    const auto value = service.ReadValue("PlateType", key, source, "");
    PassOver(service.WriteValue("PlateType", key, destination, *value));
  }
}

void ImportOfRecords(benchmark::State& state) {
  const Folder folder;
  const std::string source = folder.Put("source.bak", SectionOfRecords("PlateType", state.range(0)));
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    state.PauseTiming();
    const std::string destination = folder.Put("Zolvane.ini", InstalledSettings());
    state.ResumeTiming();
    auto service = ServiceWith(state.range(1) == 1 ? Durability::EachWrite : Durability::OnFlush);
    for (std::int64_t number = 1; number <= state.range(0); ++number) {
      CopyRecord(service, source, destination, RecordKey(number));
    }
    PassOver(service.Flush());
  }
  state.counters["per record"] =
      benchmark::Counter(static_cast<double>(state.range(0)),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ImportOfRecords)
    ->ArgNames({"records", "durable"})
    ->ArgsProduct({{1000, 10'000, 20'000}, {0, 1}})
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void OneValueOfAnotherLength(benchmark::State& state) {
  const Folder folder;
  const std::string path = folder.Put("Zolvane.ini", SectionOfRecords("PlateType", state.range(0)));
  auto service = ServiceWith(state.range(1) == 1 ? Durability::EachWrite : Durability::OnFlush);
  std::mt19937 random{1};
  std::uniform_int_distribution<std::int64_t> anyRecord{1, state.range(0)};
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    const std::string value(20 + random() % 80, 'v');
    PassOver(service.WriteValue("PlateType", RecordKey(anyRecord(random)), path, value));
  }
}
BENCHMARK(OneValueOfAnotherLength)
    ->ArgNames({"records", "durable"})
    ->ArgsProduct({{100, 10'000}, {0, 1}})
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

void OneValueOfTheSameLength(benchmark::State& state) {
  const Folder folder;
  const std::string path = folder.Put("Zolvane.ini", InstalledSettings());
  auto service = ServiceWith(state.range(0) == 1 ? Durability::EachWrite : Durability::OnFlush);
  char digit = '0';
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
    PassOver(service.WriteValue("PlateType", "Installed", path, std::string(1, digit)));
  }
}
BENCHMARK(OneValueOfTheSameLength)
    ->ArgName("durable")
    ->Arg(0)
    ->Arg(1)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

void AValueThatIsThereAlready(benchmark::State& state) {
  const Folder folder;
  const std::string path = folder.Put("Zolvane.ini", InstalledSettings());
  FileSettingsService service;
  PassOver(service.WriteValue("PlateType", "Installed", path, "7"));
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    PassOver(service.WriteValue("PlateType", "Installed", path, "7"));
  }
}
BENCHMARK(AValueThatIsThereAlready);

void OneRead(benchmark::State& state) {
  const Folder folder;
  const std::string path = folder.Put("Zolvane.ini", SectionOfRecords("PlateType", state.range(0)));
  FileSettingsService service;
  PassOver(service.WriteValue("PlateType", "Installed", path, "7"));
  const std::string key = RecordKey(state.range(0));
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(service.ReadValue("PlateType", key, path, ""));
  }
}
BENCHMARK(OneRead)->ArgName("records")->Arg(100)->Arg(10'000);

void ReadingTheWholeFile(benchmark::State& state) {
  const std::string bytes = SectionOfRecords("PlateType", state.range(0));
  for (const auto& iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(SectionedText{bytes});
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(ReadingTheWholeFile)->ArgName("records")->Arg(100)->Arg(10'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zolvane

BENCHMARK_MAIN();
