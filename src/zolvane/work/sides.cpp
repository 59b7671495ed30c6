#include "zolvane/work/sides.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "custody/values/file_fields.h"
#include "custody/values/values_json.h"
#include "files/sectioned_text.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "text/whole_number.h"

namespace zolvane {
namespace {

constexpr std::string_view lastOperation = "@last";

[[noreturn]] void RefuseSide(const std::string& name, std::string_view reason) {
  throw UsageError{Joined(Quoted(name), " ", reason)};
}

// Tells the user where the history stops being readable.
void TellDamage(Workplace& work, const History& history) {
  if (history.IsTorn()) {
    work.Out.Note("the last line of the journal was not written to its end; it is no entry");
  }
  if (!history.Damage().empty()) {
    work.Result.Problem = Joined("the history is damaged: ", history.Damage());
    work.Out.Error(work.Result.Problem);
    work.Result.Worsen(exit_status::notDone);
  }
}

Side SideOfOperation(Workplace& work, const std::string& name) {
  constexpr std::string_view foundSuffix = ":found";
  const bool isFound = name.ends_with(foundSuffix);
  auto history = ReadHistory(work);
  const auto operation =
      OperationNamed(history, name.substr(0, name.size() - (isFound ? foundSuffix.size() : 0)));
  if (!isFound && operation.Ended == nullptr) {
    RefuseSide(name, "has not ended, and nobody knows what it left; \":found\" behind it is what it found");
  }
  const auto& entry = isFound ? *operation.Begun : *operation.Ended;
  return {.Name = name,
          .Configuration = KeptObject(history, isFound ? entry.FileBefore : entry.FileAfter),
          .IsKept = true,
          .Answers = KeptValues(history, isFound ? entry.Found : entry.Left)};
}

// An export writes every key of the page's settings but what is installed. The folder's own configuration is never
// taken for a backup, even if it is damaged.
bool IsBackup(const Workplace& work, const std::string& path, const std::string& bytes) {
  const SectionedText text{bytes};
  return !IsSameFile(path, work.ConfigFile()) && !text.Find("DeviceType", "Installed") &&
         !text.Find("CageType", "Installed");
}

bool HoldsSections(const std::string& bytes) {
  bool holdsAny = false;
  SectionedText{bytes}.VisitLines([&](const SectionedText::SeenLine& line) {
    holdsAny = holdsAny || (line.Is == SectionedText::LineKind::Header && IsKnownSection(line.Section));
  });
  return holdsAny;
}

Side SideOfFile(Workplace& work, const std::string& name) {
  const auto path = AbsolutePath(name);
  auto bytes = ReadFile(work.Files, path);
  if (!LooksLikeRecord(bytes)) {
    if (!IsUtf16(bytes) && !HoldsSections(bytes) && !IsSameFile(path, work.ConfigFile())) {
      RefuseSide(name, "is no configuration, no backup and no record");
    }
    const bool isBackup = IsBackup(work, path, bytes);
    return {.Name = name, .Configuration = std::move(bytes), .IsBackup = isBackup};
  }
  auto left = RecordIn(bytes, name).Left;
  return {.Name = name,
          .Configuration = std::move(left.Configuration),
          .IsKept = true,
          .Answers = std::move(left.Instrument)};
}

}  // namespace

void DemandFolder(Workplace& work, const std::string& folder) {
  // One that is there cannot be read as a file.
  if (work.Files.Read(folder).Is != DiskContent::State::Unreadable) {
    throw UsageError{Joined("there is no folder ", Quoted(folder))};
  }
}

Side SideNamed(Workplace& work, const std::string& name) {
  if (name == "file") {
    return {.Name = name, .Configuration = ReadConfiguration(work)};
  }
  if (name == instrumentSide) {
    DemandLink(work);
    return {.Name = name, .IsInstrument = true};
  }
  return name.starts_with('@') ? SideOfOperation(work, name) : SideOfFile(work, name);
}

Values FileFaceOf(const Side& side) {
  if (!side.Configuration) {
    RefuseSide(side.Name, "has no configuration");
  }
  return FileFace(*side.Configuration);
}

Values WireFaceOf(Workplace& work, const Side& side, const std::vector<std::string>& keys) {
  if (side.IsInstrument) {
    return WireFaceOfInstrument(DemandLink(work), keys);
  }
  if (side.Answers) {
    return *side.Answers;
  }
  if (!side.Configuration) {
    RefuseSide(side.Name, "has no configuration that could be sent");
  }
  auto face = side.IsBackup ? WireFaceOfBackup(ReadConfiguration(work), *side.Configuration)
                            : WireFaceOfFile(*side.Configuration);
  if (!face.Problem.empty()) {
    RefuseSide(side.Name, Joined("cannot be sent: ", face.Problem));
  }
  return std::move(face.Lines);
}

Operation OperationNamed(const History& history, const std::string& number) {
  const auto operations = history.Operations();
  if (number == lastOperation && !operations.empty()) {
    return operations.back();
  }
  const auto digits = std::string_view{number}.substr(number.starts_with('@') ? 1 : 0);
  const auto wanted = WholeNumberIn(digits, std::uint64_t{1}, std::numeric_limits<std::uint64_t>::max());
  for (const auto& operation : operations) {
    if (operation.Number() == wanted) {
      return operation;
    }
  }
  throw UsageError{
      Joined("the history has no operation ", Quoted(number), "; \"zolvane history\" lists them")};
}

std::optional<std::string> KeptObject(History& history, const std::string& name) {
  if (name.empty()) {
    return std::nullopt;
  }
  auto bytes = history.Object(name);
  if (!bytes) {
    throw UsageError{Joined("the history has lost what it kept as ", name)};
  }
  return bytes;
}

std::optional<Values> KeptValues(History& history, const std::string& name) {
  const auto text = KeptObject(history, name);
  return text ? ValuesIn(*text) : std::nullopt;
}

RecordContent RecordIn(const std::string& bytes, const std::string& name) {
  auto record = ReadRecord(bytes);
  if (!record.Content) {
    RefuseSide(name, record.Refusal);
  }
  return *std::move(record.Content);
}

History OpenHistory(Workplace& work) {
  History history{work.Files, work.Who, work.Options.Folder};
  if (!history.Open().Ok()) {
    throw UsageError{Joined("the history cannot be read: ", history.FailureReason())};
  }
  if (!history.Exists()) {
    DemandFolder(work, work.Options.Folder);
  }
  return history;
}

History ReadHistory(Workplace& work) {
  auto history = OpenHistory(work);
  if (!std::exchange(work.HasToldDamage, true)) {
    TellDamage(work, history);
  }
  return history;
}

}  // namespace zolvane
