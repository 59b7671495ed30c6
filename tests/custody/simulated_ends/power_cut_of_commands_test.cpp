// What a power cut leaves of a command, at whatever moment it comes: of the computer alone, or of the
// instrument, too. The configuration is as it was before or as it was to be, nothing that was promised is
// gone, nothing that is claimed is untrue, and undo and resume lead out of it.
//
// One step of the disk may leave hundreds of states that differ in files which nobody reads. All of them are
// read; commands go on from a part of them only, unless all are to be tried.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "custody/disk/crash_disk.h"
#include "custody/disk/sha256.h"
#include "custody/history/audit.h"
#include "custody/history/history.h"
#include "custody/record/record.h"
#include "custody/support/laboratory.h"
#include "custody/values/values_json.h"

namespace zolvane {
namespace {

const std::string labBackup = TextOf(PathOf(labFolder) / "old.bak");
const std::string labRecord = TextOf(PathOf(labFolder) / "record.html");

// The configuration with three other values on the wire, and one that never leaves the file.
std::string ChangedConfiguration() {
  auto text = Exchanged(LabConfiguration(), "STAGE,1612,", "STAGE,11612,");
  text = Exchanged(text, "MountHeight=164.35", "MountHeight=164.5");
  text = Exchanged(text, "2 ul,1.0315", "2 ul,1.0325");
  return Exchanged(text, "96-Well Flat", "96-Well Deep");
}

// The computer and the instrument at one moment.
struct Lab {
  MemoryDisk Disk;
  LabMemory Memory;

  void CopyFrom(const Lab& other) {
    CopyTo(Disk, other.Disk);
    Memory = other.Memory;
  }

  // Of a file; empty if it is not there.
  std::string BytesIn(const std::string& path) const {
    const auto file = Disk.Files().find(MemoryDisk::NameOnDisk(path));
    return file == Disk.Files().end() ? std::string{} : file->second;
  }

  std::string Configuration() const { return BytesIn(labFile); }

  void Must(const Words& words) {
    LabProgram program;
    EXPECT_EQ(Run(program, words), 0) << program.All();
  }

  int Run(LabProgram& program, const Words& words) {
    const auto instrument = std::make_shared<LabInstrument>(Memory);
    const int status = program.Run(Disk, instrument, words);
    Memory = instrument->Memory();
    return status;
  }
};

// ---- The commands, and what was there before each ----

void PutFileAndInstrument(Lab& lab, const std::string& file, const std::string& instrument) {
  lab.Disk.Put(labFile, file);
  lab.Memory = LabMemory::Saved(ScriptOf(instrument));
}

// The instrument holds the configuration, and the file is a newer one.
void PutNewerFile(Lab& lab) {
  PutFileAndInstrument(lab, LabConfiguration(), ChangedConfiguration());
  lab.Must({"--yes", "upload"});
  lab.Disk.Put(labFile, ChangedConfiguration());
}

void PutUploaded(Lab& lab) {
  PutNewerFile(lab);
  lab.Must({"--yes", "upload"});
}

// The program was killed in the middle of an upload.
void PutHalfUploaded(Lab& lab) {
  PutNewerFile(lab);
  const auto instrument = std::make_shared<LabInstrument>(lab.Memory);
  Lab killed;
  instrument->LinesLeft = 1 + lab.Memory.Holds.size() + 40;  // of all lines that ask, and some that tell
  instrument->IsCut = [&] { CopyTo(killed.Disk, lab.Disk); };
  LabProgram program;
  program.Run(lab.Disk, instrument, {"--yes", "upload"});
  ASSERT_FALSE(killed.Disk.Files().empty());
  for (const auto& [path, ignored] : std::map{lab.Disk.Files()}) {
    PassOver(lab.Disk.Remove(path));
  }
  CopyTo(lab.Disk, killed.Disk);
  lab.Memory = instrument->Memory();
}

struct CutCommand {
  const char* Name;
  std::string_view Action;
  Words Command;
  void (*Prepare)(Lab& lab);
  bool IsOfTheAddIn = true;  // which writes the configuration value by value
  bool MovesSides = true;    // configuration or instrument, so that undo takes it back
  bool SendsValues = false;  // so that resume goes on with it
  std::string OtherFile = {};

  friend void PrintTo(const CutCommand& command, std::ostream* out) { *out << command.Name; }
};

std::vector<CutCommand> CutCommands() {
  return {
      {.Name = "FirstUpload",
       .Action = "upload",
       .Command = {"--yes", "upload"},
       .Prepare = [](Lab& lab) { PutFileAndInstrument(lab, ChangedConfiguration(), LabConfiguration()); },
       .SendsValues = true},
      {.Name = "Upload",
       .Action = "upload",
       .Command = {"--yes", "upload"},
       .Prepare = PutNewerFile,
       .SendsValues = true},
      {.Name = "Download",
       .Action = "download",
       .Command = {"--yes", "download"},
       .Prepare = [](Lab& lab) { PutFileAndInstrument(lab, LabConfiguration(), ChangedConfiguration()); }},
      {.Name = "Query",
       .Action = "query",
       .Command = {"query"},
       .Prepare =
           [](Lab& lab) {
             PutFileAndInstrument(lab, Exchanged(LabConfiguration(), "Default=first=", "Default=none="),
                                  LabConfiguration());
           }},
      {.Name = "Import",
       .Action = "import",
       .Command = {"--yes", "import", labBackup},
       .Prepare =
           [](Lab& lab) {
             PutFileAndInstrument(lab, LabConfiguration(), LabConfiguration());
             lab.Must({"export", labBackup});
             lab.Disk.Put(labFile, ChangedConfiguration());
           },
       .OtherFile = labBackup},
      {.Name = "Export",
       .Action = "export",
       .Command = {"--yes", "--despite", "exists", "export", labBackup},
       .Prepare =
           [](Lab& lab) {
             PutFileAndInstrument(lab, LabConfiguration(), LabConfiguration());
             lab.Must({"export", labBackup});
             lab.Disk.Put(labFile, ChangedConfiguration());
           },
       .MovesSides = false,
       .OtherFile = labBackup},
      {.Name = "Backup",
       .Action = "backup",
       .Command = {"--despite", "exists", "backup", labRecord},
       .Prepare =
           [](Lab& lab) {
             PutUploaded(lab);
             lab.Must({"backup", labRecord});
           },
       .IsOfTheAddIn = false,
       .MovesSides = false,
       .OtherFile = labRecord},
      {.Name = "Restore",
       .Action = "restore",
       .Command = {"--instrument", "restore", labRecord},
       .Prepare =
           [](Lab& lab) {
             PutFileAndInstrument(lab, LabConfiguration(), LabConfiguration());
             lab.Must({"backup", labRecord});
             lab.Disk.Put(labFile, ChangedConfiguration());
             lab.Must({"--yes", "upload"});
           },
       .IsOfTheAddIn = false,
       .SendsValues = true,
       .OtherFile = labRecord},
      {.Name = "Undo",
       .Action = "undo",
       .Command = {"undo"},
       .Prepare = PutUploaded,
       .IsOfTheAddIn = false,
       .SendsValues = true},
      {.Name = "UndoOfADownload",
       .Action = "undo",
       .Command = {"undo"},
       .Prepare =
           [](Lab& lab) {
             PutFileAndInstrument(lab, LabConfiguration(), ChangedConfiguration());
             lab.Must({"--yes", "download"});
           },
       .IsOfTheAddIn = false,
       .SendsValues = true},
      {.Name = "Resume",
       .Action = "resume",
       .Command = {"resume"},
       .Prepare = PutHalfUploaded,
       .IsOfTheAddIn = false,
       .SendsValues = true},
  };
}

// ---- The states ----

class PowerCutOf : public testing::TestWithParam<CutCommand> {
 protected:
  void SetUp() override {
    GetParam().Prepare(Before);
    Whole.CopyFrom(Before);
    Whole.Must(GetParam().Command);
    History history{Before.Disk, Witness, labFolder};
    ASSERT_TRUE(history.Open().Ok());
    CountBefore = history.Entries().size();
    LastCheckpoint = history.LastCheckpoint();
    const auto operations = history.Operations();
    IsWholeBefore = std::ranges::all_of(operations, [](const auto& one) { return one.Ended != nullptr; });
  }

  void PlayWithPowerCuts() {
    const auto instrument = std::make_shared<LabInstrument>(Before.Memory);
    CrashDisk disk{Before.Disk, [&](MemoryDisk& after) { Visit(after, instrument->Memory()); }};
    auto memory = Before.Memory;
    instrument->Took = [&](const std::string&) {
      if (memory != instrument->Memory()) {
        memory = instrument->Memory();
        disk.ShowAgain();
        disk.ShowStates();
      }
    };
    Disk = &disk;
    EXPECT_EQ(Program.Run(disk, instrument, GetParam().Command), 0) << Program.All();
    disk.ShowAgain();
    disk.ShowStates();
  }

  std::size_t CountOfStates() const { return states_.size(); }
  std::size_t CountOfGoneOn() const { return goneOn_; }

 private:
  // A configuration that the add-in writes is at any moment what its last write made it.
  bool MayBeConfiguration(const std::string& bytes) const {
    return bytes == Before.Configuration() || bytes == Whole.Configuration() ||
           (GetParam().IsOfTheAddIn && bytes == Disk->Seen().Read(labFile).Bytes);
  }

  bool ClaimsRecord() const {
    return Program.Output.str().find("recorded as operation") != std::string::npos;
  }

  void Visit(MemoryDisk& after, const LabMemory& memory) {
    for (const auto& left : {memory, memory.Restarted()}) {
      if (HasFailure() || !states_.insert(FingerprintOf(after, left)).second) {
        continue;
      }
      Lab state;
      CopyTo(state.Disk, after);
      state.Memory = left;
      Check(state);
      if (HasFailure()) {
        Tell(state);
      }
    }
  }

  std::string FingerprintOf(const MemoryDisk& disk, const LabMemory& memory) const {
    std::string all = ClaimsRecord() ? "!" : "";
    for (const auto& folder : disk.Folders()) {
      all += folder + '\n';
    }
    for (const auto& [path, bytes] : disk.Files()) {
      all += Joined(path, "=", std::to_string(bytes.size()), "=", bytes);
    }
    return Sha256Hex(all + MemoryText(memory));
  }

  static std::string MemoryText(const LabMemory& memory) {
    std::string all;
    for (const auto* held : {&memory.Holds, &memory.Keeps}) {
      for (const auto& [key, text] : *held) {
        all.append(key).append("=").append(text).append("\n");
      }
      all += "\n";
    }
    return all;
  }

  // For people, of the first state that is not as it should be.
  static void Tell(Lab& state) {
    std::string files;
    for (const auto& [path, bytes] : state.Disk.Files()) {
      files += Joined("  ", path, ", ", std::to_string(bytes.size()), " bytes\n");
    }
    const auto journal = TextOf(PathOf(labFolder) / "Zolvane.history" / "journal.jsonl");
    ADD_FAILURE() << "The files after the power cut:\n"
                  << files << state.Disk.Read(journal).Bytes << state.Configuration();
  }

  void Check(Lab& state) {
    History history{state.Disk, Witness, labFolder};
    ASSERT_TRUE(history.Open().Ok()) << history.FailureReason();
    ASSERT_EQ(history.Damage(), "");
    ExpectWholeHistory(state);
    ASSERT_TRUE(MayBeConfiguration(state.Configuration())) << state.Configuration();
    const auto operations = history.Operations();
    const Operation* ours = nullptr;
    if (!operations.empty() && operations.back().Begun->Action == GetParam().Action &&
        operations.back().Number() > CountBefore + 1) {
      ours = &operations.back();
    }
    const bool hasMoved = state.Configuration() != Before.Configuration() ||
                          (state.Memory != Before.Memory && state.Memory != Before.Memory.Restarted()) ||
                          state.BytesIn(GetParam().OtherFile) != Before.BytesIn(GetParam().OtherFile);
    ASSERT_TRUE(ours != nullptr || !hasMoved) << "something was changed before it was recorded";
    const bool isOver = ours != nullptr && ours->Ended != nullptr;
    ASSERT_TRUE(isOver || !ClaimsRecord());
    if (isOver && ours->Ended->Outcome == "done") {
      ExpectTrue(history, *ours->Ended, state);
    }
    if (HasFatalFailure() || !IsGoneOnFrom(state, operations)) {
      return;
    }
    ++goneOn_;
    TakeBack(state, ours != nullptr, operations);
    Resume(state, ours != nullptr, isOver);
    RunAgain(state, (ours != nullptr && !isOver) || !IsWholeBefore);
  }

  // With all that was promised: what was there before, and what the command has said.
  void ExpectWholeHistory(Lab& state) {
    std::vector<Checkpoint> promised;
    for (const auto& checkpoint : {LastCheckpoint, Program.Result.Checkpoint}) {
      if (checkpoint) {
        promised.push_back(*checkpoint);
      }
    }
    const auto audit = Audit(state.Disk, labFolder, promised);
    const bool isThere = audit.Exists || promised.empty();
    ASSERT_TRUE(isThere && (!audit.Exists || (audit.IsIntact && audit.IsComplete)) &&
                (promised.empty() || audit.IsAnchored))
        << testing::PrintToString(audit.Problems);
  }

  // Whoever reads "done" finds it so.
  static void ExpectTrue(History& history, const Entry& end, Lab& state) {
    ASSERT_EQ(history.Object(end.FileAfter), state.Configuration());
    if (GetParam().SendsValues && !end.Left.empty()) {
      const auto left = ValuesIn(history.Object(end.Left).value_or(""));
      ASSERT_TRUE(left);
      for (const auto& value : left->InOrder()) {
        ASSERT_EQ(state.Memory.Holds.at(value.Name), value.Text.value_or("")) << value.Name;
        ASSERT_EQ(state.Memory.Keeps.at(value.Name), value.Text.value_or("")) << value.Name;
      }
    }
    if (end.Action == "export") {
      ASSERT_EQ(history.Object(end.OtherFiles.front().After), state.BytesIn(GetParam().OtherFile));
    } else if (end.Action == "backup") {
      ASSERT_TRUE(ReadRecord(state.BytesIn(GetParam().OtherFile)).Content);
    }
  }

  // States that differ in what is read: each of them; of the others some.
  bool IsGoneOnFrom(Lab& state, const std::vector<Operation>& operations) {
    constexpr std::size_t sampled = 151;
    const auto ended = operations.empty() || operations.back().Ended == nullptr ? 0 : 1;
    auto read = Joined(std::to_string(operations.size()), std::to_string(ended), MemoryText(state.Memory));
    for (const auto& [path, bytes] : state.Disk.Files()) {
      if (path.find("Zolvane.history") == std::string::npos) {
        read += Joined(path, bytes == Before.BytesIn(path)  ? " before "
                             : bytes == Whole.BytesIn(path) ? " after "
                                                            : " between ");
      }
    }
    return read_.insert(Sha256Hex(read)).second || TriesAll() || states_.size() % sampled == 0;
  }

  // ---- Going on ----

  void TakeBack(const Lab& from, bool isOurs, const std::vector<Operation>& operations) {
    Lab state;
    state.CopyFrom(from);
    LabProgram undo;
    const int status = state.Run(undo, {"undo"});
    const bool hasSomething = std::ranges::any_of(operations, [](const auto& operation) {
      return operation.Begun->Action != "export" && operation.Begun->Action != "backup";
    });
    ASSERT_EQ(status, hasSomething ? 0 : 2) << undo.All();
    if ((isOurs && GetParam().MovesSides) || !IsWholeBefore) {
      ASSERT_EQ(state.Configuration(), IsWholeBefore ? Before.Configuration() : ChangedConfiguration())
          << undo.All();
      ASSERT_EQ(state.Memory, IsWholeBefore ? Before.Memory : LabMemory::Saved(Before.Memory.Keeps))
          << undo.All();
    }
    ExpectSettled(state, status);
  }

  void Resume(const Lab& from, bool isOurs, bool isOver) {
    Lab state;
    state.CopyFrom(from);
    LabProgram resume;
    const int status = state.Run(resume, {"resume"});
    const bool goesOn = (isOurs || !IsWholeBefore) && !isOver && GetParam().SendsValues;
    ASSERT_EQ(status, goesOn ? 0 : 2) << resume.All();
    ASSERT_EQ(state.Configuration(), goesOn ? Whole.Configuration() : from.Configuration());
    ASSERT_EQ(state.Memory, goesOn ? Whole.Memory : from.Memory) << resume.All();
    ExpectSettled(state, status);
  }

  // The same command again leads to where it led without a power cut.
  void RunAgain(const Lab& from, bool isUnfinished) {
    if (GetParam().Action == "undo" || GetParam().Action == "resume") {
      return;
    }
    Lab state;
    state.CopyFrom(from);
    LabProgram again;
    auto words = GetParam().Command;
    if (isUnfinished) {
      words.insert(words.begin(), {"--despite", "unfinished"});
    }
    const int status = state.Run(again, words);
    ASSERT_EQ(status, 0) << again.All();
    ASSERT_EQ(state.Memory, Whole.Memory);
    // The add-in goes on from what it has already written.
    const bool hasWritten = GetParam().IsOfTheAddIn && from.Configuration() != Before.Configuration();
    ASSERT_TRUE(hasWritten || state.Configuration() == Whole.Configuration()) << state.Configuration();
    ExpectSettled(state, status);
  }

  // Whatever was unfinished is over, and the history whole.
  void ExpectSettled(Lab& state, int status) {
    ExpectWholeHistory(state);
    History history{state.Disk, Witness, labFolder};
    ASSERT_TRUE(history.Open().Ok());
    for (const auto& operation : history.Operations()) {
      ASSERT_TRUE(status != 0 || operation.Ended != nullptr) << "operation " << operation.Number();
    }
  }

 protected:
  Lab Before;
  Lab Whole;  // after the command without a power cut
  FakeWitness Witness;
  std::size_t CountBefore = 0;
  bool IsWholeBefore = true;
  std::optional<Checkpoint> LastCheckpoint;
  LabProgram Program;
  CrashDisk* Disk = nullptr;

 private:
  std::set<std::string> states_;
  std::set<std::string> read_;
  std::size_t goneOn_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Commands, PowerCutOf, testing::ValuesIn(CutCommands()),
                         [](const auto& command) { return std::string{command.param.Name}; });

TEST_P(PowerCutOf, LeavesNothingUntrueAndAWayOut) {
  const auto begin = std::chrono::steady_clock::now();
  PlayWithPowerCuts();
  const auto time =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  std::cout << "  " << CountOfStates() << " states, gone on from " << CountOfGoneOn() << ", " << time.count()
            << " ms\n";
  EXPECT_GT(CountOfStates(), 20U);
}

}  // namespace
}  // namespace zolvane
