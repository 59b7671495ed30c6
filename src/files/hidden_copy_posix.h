// The second copy of a file, hidden beside it, in which the next state of the file is made ready.
//
// Its name tells which two files change places, so that nothing else under such a name is ever taken for one.
// It is locked as long as its owner lives; one without lock was left behind and is removed by the next
// writer. What another program wrote into a copy that had been the visible file is not removed: it gets a
// name of its own beside the file ("Zolvane.ini.kept-1").
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "files/exchanged_file.h"
#include "files/file_handle_posix.h"
#include "files/file_state_posix.h"
#include "files/splice.h"

namespace zolvane {

// Where a file stands. The folder is open as long as anything is done there.
struct FilePlace {
  FileHandle Folder;
  std::string FolderPath;
  std::string Name;
};

class HiddenCopy {
 public:
  // `visible` is the place of the file, and outlives its copy. No copy is made yet.
  HiddenCopy(const FilePlace& visible, Durability survives) : visible_{visible}, survives_{survives} {}
  HiddenCopy(const HiddenCopy&) = delete;
  HiddenCopy& operator=(const HiddenCopy&) = delete;
  ~HiddenCopy() { Drop(); }

  bool Exists() const { return file_.IsOpen(); }

  // Each makes it hold the whole text, durably if each write is to be. After a failure it is of no use.
  bool Create(const SplicedText& text);
  // With the attributes of the visible file. A copy that nobody else knows is changed where it has to be.
  bool Follow(const SplicedText& next, const FileHandle& visible, const FileState& visibleState);

  const std::string& Name() const { return name_; }

  // As it was once it held the whole text. It has a time of modification that no change by others will have,
  // if the file system keeps such times.
  const FileState& Whole() const { return whole_; }
  bool WholeIsUnique() const { return wholeIsUnique_; }

  // It bears the visible name now, and what was visible bears its own, or is gone if `former` is not open.
  // Goes on with `former`, which is in `state` and lags behind by `changed`; it is left alone from now on
  // unless its content is known for sure. Returns the state of what is visible now.
  FileState ChangePlaces(FileHandle former, const FileState& state, bool isKnown, ByteRange changed);

  // It bore the visible name for a moment. What bears its own name now, it or another state that was visible
  // meanwhile, is in `state`.
  void CameBack(const FileState& state);

  // Keeps what another program has written into it since it was the visible file.
  void RescueChanges();

  void Drop();

  std::vector<std::string> TakeRescued() { return std::exchange(rescued_, {}); }

 private:
  std::string StartOfNames() const;
  std::string NameOf(std::uint64_t ours, std::uint64_t visible) const;
  bool Make(unsigned int permissions, const FileHandle& visible);
  bool MakeWithName(unsigned int permissions);
  bool GiveName();
  void RemoveLeftovers();
  void RemoveLeftover(const std::string& name);
  void Rescue(const std::string& name);
  void Remove(const std::string& name) const;
  void DropFormer();

  bool MayBeChanged();
  bool CatchUp(const SplicedText& next);
  bool WriteRange(const SplicedText& text, ByteRange range) const;
  bool SetPermissions(unsigned int permissions) const;
  bool Stamp(const Instant& former);
  bool Sync() const;

  const FilePlace& visible_;
  Durability survives_;

  std::string name_;
  std::string nameBefore_;  // until it is whole; empty where a file needs none
  FileHandle file_;
  bool wasVisible_ = false;  // since then others may have it open, and may write into it
  FileState state_;          // as it was when it ceased to be visible
  bool isSettled_ = false;   // a later change cannot look like `state_`
  ByteRange lag_;            // where it differs from the visible file, at most
  FileState whole_;
  bool wholeIsUnique_ = false;
  bool leftoversAreRemoved_ = false;
  std::vector<std::string> rescued_;
};

}  // namespace zolvane
