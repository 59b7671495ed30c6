#include "windows/host/faulty_run.h"

#include <filesystem>

#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

std::string PathOfBackup() {
  return ProgramFolder::OfThisRun().FileText("new.bak");
}
std::string PathOfSource() {
  return ProgramFolder::OfThisRun().FileText("old.bak");
}

void PrepareFiles() {
  Store(ProgramFolder::OfThisRun().Configuration(), "");
  Store(PathOfSource(), "");
  std::filesystem::remove(PathOfBackup());
}

// What the module does on its own, which no host sees.
bool IsHeard(const std::string& line) {
  return line.find(R"("event":"yield")") == std::string::npos &&
         line.find(R"("event":"append_blank_line")") == std::string::npos;
}

}  // namespace

std::optional<std::string> FileFor(const PlayedOperation& operation) {
  if (operation.Button == importButton) {
    return PathOfSource();
  }
  return operation.Button == exportButton ? std::optional{PathOfBackup()} : std::nullopt;
}

MemorySettings::MemorySettings() {
  const std::string text = SmallFileText();
  files_.emplace(ProgramFolder::OfThisRun().Configuration().string(), text);
  files_.emplace(PathOfSource(), text);
}

FaultyRun::FaultyRun(const PlayedOperation& operation) : Asked{operation} {
  PrepareFiles();
}

BenchHost::Setup FaultyRun::SetupFor(const PlayedOperation& operation) {
  return {.Folder = ProgramFolder::OfThisRun().Text(),
          .OffersDialog = operation.OffersDialog,
          .Answers = {.Listed = {}, .AffirmsRest = true}};
}

std::vector<std::string> FaultyRun::TakeTrace() {
  std::vector<std::string> lines;
  for (std::string line; std::getline(Trace, line);) {
    if (IsHeard(line)) {
      lines.push_back(line);
    }
  }
  return lines;
}

std::string FaultyRun::FileTexts() {
  std::string texts;
  for (const auto& file : {ProgramFolder::OfThisRun().Configuration().string(), PathOfBackup()}) {
    texts += Plain.Files->Bytes(file) + "\n---- on the disk:\n" + ContentOf(file) + "\n----\n";
  }
  return texts;
}

std::map<std::string, std::vector<std::size_t>> PlacesOfEachKind(const std::vector<HostCall>& calls) {
  std::map<std::string, std::vector<std::size_t>> places;
  for (std::size_t call = 0; call < calls.size(); ++call) {
    places[calls[call].Kind].push_back(call + 1);
  }
  return places;
}

}  // namespace zolvane
