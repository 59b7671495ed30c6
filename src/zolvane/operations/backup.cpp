#include "zolvane/operations/backup.h"

#include <optional>
#include <string_view>
#include <utility>

#include "custody/record/record.h"
#include "custody/values/sides.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"
#include "zolvane/operations/custody.h"
#include "zolvane/operations/evidence.h"
#include "zolvane/operations/kept_operation.h"
#include "zolvane/work/actions.h"

namespace zolvane {
namespace {

// Nothing if the history has lost some of it: a record of today does without.
std::optional<Moment> FoundBy(History& history, const std::vector<Operation>& operations, std::size_t place) {
  try {
    return KeptOf(history, operations, place).Found;
  } catch (const UsageError&) {
    return std::nullopt;
  }
}

// The last operation that changed something. Empty if what it found is lost.
std::optional<RecordedOperation> LastOperation(Custody& custody) {
  const auto operations = custody.Kept.Operations();
  const auto place = LastChange(operations);
  const auto found = place ? FoundBy(custody.Kept, operations, *place) : std::nullopt;
  if (!found) {
    return std::nullopt;
  }
  const auto& [begun, ended] = operations[*place];
  return RecordedOperation{.Number = begun->Sequence,
                           .Action = begun->Action,
                           .Outcome = ended == nullptr                   ? "not ended"
                                      : begun->Action == action::outside ? "seen"
                                                                         : ended->Outcome,
                           .Person = begun->Person,
                           .Reason = begun->Reason,
                           .Time = begun->Time,
                           .Found = {.Configuration = found->Configuration, .Instrument = found->Answers}};
}

class BackupOperation final : public CustodyOperation {
 public:
  explicit BackupOperation(std::string file) : file_{std::move(file)} {}

  std::string_view Action() const override { return action::backup; }

  void Look(Custody& custody) override {
    auto& work = custody.Work;
    custody.Found.Configuration = ReadConfiguration(work);
    custody.Intended.Configuration = custody.Found.Configuration;
    custody.LookAtTarget(file_);
    if (work.Link != nullptr) {
      custody.LookAtInstrument();
      const auto face = WireFaceOfFile(*custody.Found.Configuration);
      custody.Found.Answers = WireFaceOfInstrument(*work.Link, NamesOf(face.Lines));
      DemandAnswers(*custody.Found.Answers, *work.Link);
    }
  }

  void Show(Custody& /*custody*/) override {}

  Conclusion Act(Custody& custody) override {
    auto& files = custody.Work.Files;
    const auto record = WriteRecord(ContentOf(custody));
    const auto written =
        files.Replace(file_, record).Then([&] { return files.SyncFolder(FolderHolding(file_)); });
    Evidence evidence{custody};
    if (!written.Ok()) {
      evidence.Worsen(outcome::failed, files.FailureReason());
    }
    evidence.TakeFile(file_, record);
    evidence.TakeConfiguration();
    custody.Left.Answers = custody.Found.Answers;
    return evidence.Conclude();
  }

 private:
  RecordContent ContentOf(Custody& custody) const {
    const auto last = LastOperation(custody);
    const auto begun = custody.Kept.Entries().back();
    const auto file = custody.Work.ConfigFile();
    const auto checkpoint = custody.Kept.LastCheckpoint();
    return {.Person = begun.Person,
            .Reason = begun.Reason,
            .Machine = begun.Machine,
            .Program = begun.Program,
            .Version = begun.Version,
            .Time = begun.Time,
            .Offset = begun.Offset,
            .File = file,
            .Link = begun.Link,
            .Instrument = begun.Instrument,
            .Left = {.Configuration = *custody.Found.Configuration, .Instrument = custody.Found.Answers},
            .Last = last,
            .Findings = CheckConfiguration(*custody.Found.Configuration, file),
            .Checkpoint = checkpoint ? LinesOf(*checkpoint) : std::vector<std::string>{}};
  }

  std::string file_;
};

}  // namespace

void Backup(Workplace& work, const std::string& file) {
  BackupOperation operation{file};
  Operate(work, operation);
}

}  // namespace zolvane
