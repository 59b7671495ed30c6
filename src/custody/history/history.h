// What was found and what was left by each operation, kept beside the configuration in the folder
// `Zolvane.history`. docs/format-history.md tells what is kept, how, and what of it survives a power cut at
// which moment.
//
// Whatever is read may have been changed by anybody: it is believed up to the first line that does not fit,
// and an object only if it is what its name says.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/disk/disk.h"
#include "custody/disk/witness.h"
#include "custody/history/checkpoint.h"
#include "custody/history/entry.h"
#include "custody/history/history_place.h"
#include "custody/history/journal.h"
#include "files/waiting.h"
#include "host/status.h"

namespace zolvane {

inline constexpr std::chrono::seconds longestWaitForHistory{10};

// Both entries belong to the history and last until it is read or written again.
struct Operation {
  const Entry* Begun = nullptr;
  const Entry* Ended = nullptr;  // null: it was begun and has not ended

  std::uint64_t Number() const { return Begun->Sequence; }
};

class History {
 public:
  // The history of the configuration in that folder. Reads nothing yet. The disk and the witness outlive it.
  History(Disk& disk, Witness& witness, const std::string& folder);

  // Reads the history; makes and changes nothing. One that is not there is empty. Fails if it cannot be read
  // at all; if it is damaged, it succeeds and has the entries up to there.
  Status Open();

  // Keeps other programs out of the history until this object ends, then opens it. Waits for them; fails if
  // that takes too long, and says who has it.
  Status OpenForRecording(const Waiting& waiting = {});

  // Why the last call that failed did, as a sentence without its full stop.
  const std::string& FailureReason() const { return failureReason_; }

  bool Exists() const { return !journal_.Identity.empty(); }

  // Where the journal stops to be readable ("line 7: it does not follow from the line before"); empty if
  // nowhere.
  std::string Damage() const;

  // The journal ends in a line that was not written to its end. The next entry sets it aside, as an object.
  bool IsTorn() const { return !journal_.Torn.empty(); }

  const std::vector<Entry>& Entries() const { return journal_.Entries; }
  std::vector<Operation> Operations() const;

  // Nothing if the history is empty.
  std::optional<Checkpoint> LastCheckpoint() const;

  // ---- For who opened it for recording ----

  // Gives a damaged history another name, and puts an empty one in its place. Returns the path that it has now;
  // nullopt on failure, see FailureReason.
  std::optional<std::string> SetAside();

  // Keeps the bytes; durable with the next entry at the latest. Returns their name; nullopt on failure, see
  // FailureReason.
  std::optional<std::string> PutObject(std::string_view bytes);

  // The bytes of that name. Nothing if they are missing or are not what the name says.
  std::optional<std::string> Object(std::string_view name) const;

  // Whether the object of these bytes is there and damaged: "object 5e88... does not hold what its name says". Empty
  // if not.
  std::string DamageOfObject(std::string_view bytes) const;

  // Writes the entry that begins an operation; it is on the disk on return. Returns its number, which is that of the
  // operation; nullopt on failure, see FailureReason.
  std::optional<std::uint64_t> Begin(Entry entry);

  // Writes the end of operation `number`; it is on the disk on return.
  Status End(std::uint64_t number, Entry entry);

 private:
  Status Fail(std::string reason);
  Status Passed(Status status);
  Status PutFile(const std::string& path, std::string_view bytes);
  bool HasObjects() const;
  Status MakePlace();
  Status SetTornLineAside();
  Status StartJournal();
  Status MakeNamesDurable();
  Status Prepare();
  Status TryObject();
  Status Append(Entry entry);

  Disk& disk_;
  Witness& witness_;
  HistoryPlace place_;
  std::unique_ptr<DiskLock> lock_;
  Journal journal_;
  bool isDurable_ = false;  // the names of the journal and of the folders last
  bool isBroken_ = false;   // a write failed, so that nobody knows what the journal ends in
  std::string failureReason_;
};

}  // namespace zolvane
