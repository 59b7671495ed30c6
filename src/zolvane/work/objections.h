// What speaks against going on. Somebody lets it pass, or nothing is changed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/disk/seal.h"
#include "custody/history/entry.h"
#include "custody/history/history.h"
#include "zolvane/work/workplace.h"

namespace zolvane {

namespace objection_code {
inline constexpr std::string_view findings = "findings";
inline constexpr std::string_view otherInstrument = "other-instrument";
inline constexpr std::string_view unfinished = "unfinished";
inline constexpr std::string_view notABackup = "not-a-backup";
inline constexpr std::string_view cutOff = "cut-off";
inline constexpr std::string_view otherDevice = "other-device";
inline constexpr std::string_view changed = "changed";
inline constexpr std::string_view exists = "exists";
inline constexpr std::string_view historyDamaged = "history-damaged";
inline constexpr std::string_view unreadable = "unreadable";  // a verdict that counts as proven
inline constexpr std::string_view rounded = "rounded";        // the same
}  // namespace objection_code

// The comments that close a backup: this line, the three of a checkpoint, and a seal.
inline constexpr std::string_view checkpointHeading = "; Checkpoint of the history of operations:";
inline constexpr SealForm backupSeal{.Before = "; SHA-256 of all bytes before this line: ", .Behind = "\r\n"};

// An operation and those that resumed it, by the numbers of the first and the last.
struct OperationRange {
  std::uint64_t First = 0;
  std::uint64_t Last = 0;

  bool Contains(std::uint64_t number) const { return First <= number && number <= Last; }
};

// Ends a command: nothing was changed, because of the objections in the report.
struct Refusal {};

// One line for people, with both values and the code.
std::string ObjectionText(const Objection& objection);

// Whether --despite names the code.
bool IsLetPass(const CustodyOptions& options, std::string_view code);

// Throws UsageError if there is no such code.
void DemandPassable(const std::string& code);

// The codes, for the help.
std::string PassableHelp();

// Whatever speaks against is put to the user: --despite lets it pass, or who sits at the terminal. Otherwise
// throws Refusal. All of it is in the report then. Returns what was let pass.
std::vector<Objection> Settle(Workplace& work, const std::vector<Objection>& objections);

// ---- What is looked for ----

using Objections = std::vector<Objection>;

void Object(Objections& objections, std::string_view code, std::string expected, std::string actual);

// Objects to the errors among the report's findings.
void ObjectToFindings(const Workplace& work, Objections& objections);

// `stage` is what the instrument says of itself.
void ObjectToInstrument(const History& history, const std::string& configuration, const std::string& stage,
                        Objections& objections);

// The operation that is about to begin. `OtherFile` is the hash of the file that an import reads.
struct NextOperation {
  std::string_view Action;
  std::string OtherFile{};
};

// Objects to operations that have not ended, except those that the next one undoes or resumes (`about`) or repeats.
// It repeats one that sends nothing if it has the same action and, for an import, the same hash of the file. An undo
// or a resume passes over operations that change neither side as well.
void ObjectToUnfinished(const History& history, const NextOperation& next, Objections& objections,
                        const std::optional<OperationRange>& about = {});

// A file to import: cut off, changed since it was exported, or of another device. `exported` is what an export of the
// configuration that the import would change would be, `device` the name of the device in force.
void ObjectToBackup(const History& history, const std::string& file, const std::string& backup,
                    const std::string& exported, const std::string& device, Objections& objections);

// The configuration as an import of the backup would leave it, and what its findings call that file.
std::string AfterImport(const Workplace& work, const std::string& file, const std::string& backup,
                        const std::string& configuration);
std::string NameAfterImport(const Workplace& work);

// Objects to a file that is no backup at all, or else as ObjectToBackup does.
void ObjectToImport(const Workplace& work, const History& history, const std::string& file,
                    const std::string& backup, const std::string& configuration, Objections& objections);

}  // namespace zolvane
