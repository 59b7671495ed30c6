#include "custody/values/sides.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "bench/host/dry_run.h"
#include "bench/host/outcome.h"
#include "config/tables/current_records.h"
#include "config/text.h"
#include "custody/disk/disk.h"
#include "custody/values/file_fields.h"
#include "custody/values/play.h"
#include "files/paths.h"
#include "files/sectioned_text.h"
#include "host/instrument_link.h"
#include "operations/instrument_command.h"
#include "page/page_controls.h"
#include "text/joined.h"

namespace zolvane {
namespace {

void AddLine(Values& values, const SectionedText::SeenLine& line, const FileSection& section) {
  if (!section.NumberIn(line.Key)) {
    values.Add({.Name = NameOfPlace(line.Section, line.Key), .Text = line.Value});
    return;
  }
  const auto pieces = PiecesOf(line.Value);
  for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
    const auto* const field = section.FieldAt(piece);
    const auto title = field != nullptr ? field->Title : std::string_view{};
    values.Add({.Name = NameOfPlace(line.Section, line.Key, piece, title), .Text = pieces[piece]});
  }
}

// ---- Copies ----

// No such folder is ever looked for on the disk.
const std::string copyFolder = "/copy";

// What an upload would send now, with the files of the disk as they are.
WireFace LinesOn(MemoryDisk& disk) {
  WireFace face;
  const auto files = std::make_shared<FileSettingsService>(
      [&disk](const std::string& path) { return disk.OpenSettings(path); });
  RunDry(copyFolder, std::make_shared<DrySettings>(files), nullptr, [&](const OperationContext& context) {
    RefreshCurrentRecords(context.Config);
    face.Script = BuildUploadLines(context.Config, nullptr);
    face.InForce = context.Config.Current;
  });
  for (const auto& line : face.Script) {
    if (line.Value) {
      auto setting = SettingIn(Joined(settingStart, line.Key, " ", *line.Value));
      face.Lines.Add(setting ? *std::move(setting) : Value{.Name = line.Key, .Text = line.Value});
    }
  }
  return face;
}

std::string ProblemOf(const PlayedAction& played, std::string_view what) {
  const auto& tally = played.Result.Tally;
  return tally.WasDisabled        ? Joined("the page does not offer to ", what)
         : tally.ReadsFailed > 0  ? Joined("the add-in could not ", what, ": the file cannot be read")
         : tally.WritesFailed > 0 ? Joined("the add-in could not ", what, ": a value cannot be stored")
         : played.ExitStatus != 0 ? Joined("the add-in could not ", what)
                                  : std::string{};
}

WireFace FaceAfter(const std::string& configuration, const std::string& backup, const Action& action,
                   std::string_view what) {
  for (const auto* bytes : {&configuration, &backup}) {
    if (IsUtf16(*bytes)) {
      return {.Problem = "the file is a UTF-16 text; it has to be saved as UTF-8 or Windows-1252"};
    }
  }
  MemoryDisk disk;
  disk.Put(ConfigFileIn(copyFolder), configuration);
  if (action.File) {
    disk.Put(*action.File, backup);
  }
  const auto played = Play(EndsOn(disk, copyFolder), action);
  if (auto problem = ProblemOf(played, what); !problem.empty()) {
    return {.Problem = std::move(problem)};
  }
  return LinesOn(disk);
}

}  // namespace

Values FileFace(std::string_view file) {
  Values values{NameCase::Ignored};
  const FileSection* section = nullptr;
  SectionedText{std::string{file}}.VisitLines([&](const SectionedText::SeenLine& line) {
    if (line.Is == SectionedText::LineKind::Header) {
      section = &FileSectionOf(line.Section);
    } else if (line.Is == SectionedText::LineKind::Key && line.Counts) {
      AddLine(values, line, *section);
    }
  });
  return values;
}

WireFace WireFaceOfFile(const std::string& configuration) {
  return FaceAfter(configuration, {}, {.Kind = ActionKind::ShowPage}, "load the page");
}

WireFace WireFaceOfBackup(const std::string& configuration, const std::string& backup) {
  const auto file = copyFolder + "/backup.bak";
  return FaceAfter(configuration, backup, PressOf(importButton, file), "import the backup");
}

std::optional<std::string> HandOn(BenchLink& link, std::string command, Delivery& delivery) {
  std::string reply;
  const bool isAnswered = MetOnlyIf(link.SendCommand(command, reply, 0));
  delivery = link.LastDelivery();
  return isAnswered ? std::optional{std::move(reply)} : std::nullopt;
}

Value AskCalibration(InstrumentLink& link, const std::string& key) {
  auto command = Joined(questionStart, key);
  std::string reply;
  if (!MetOnlyIf(link.SendCommand(command, reply, 0))) {
    return {.Name = key, .Text = {}, .WasAnswered = false};
  }
  const auto text = StrippedReply(reply);
  if (text.find(syntaxErrorReply) != std::string::npos) {
    return {.Name = key, .Text = {}};
  }
  const auto name = key + "=";
  const bool isNamed = EqualIgnoringCase(std::string_view{text}.substr(0, name.size()), name);
  if (!isNamed && text.find('=') != std::string::npos) {
    return {.Name = key, .Text = {}, .WasAnswered = false};
  }
  const auto value = std::string_view{text}.substr(isNamed ? name.size() : 0);
  return {.Name = key, .Text = std::string{Trimmed(value)}};
}

Values WireFaceOfInstrument(InstrumentLink& link, std::span<const std::string> keys) {
  Values values;
  bool isAnswering = true;
  for (const auto& key : keys) {
    if (values.Find(key) == nullptr) {
      values.Add(isAnswering ? AskCalibration(link, key)
                             : Value{.Name = key, .Text = {}, .WasAnswered = false});
      isAnswering = values.Find(key)->WasAnswered;
    }
  }
  return values;
}

std::vector<std::string> NamesOf(const Values& values) {
  std::vector<std::string> names;
  std::ranges::transform(values.InOrder(), std::back_inserter(names), &Value::Name);
  return names;
}

}  // namespace zolvane
