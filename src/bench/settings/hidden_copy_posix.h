// The second copy of a file, hidden beside it, in which the next state of the file is made ready.
//
// It is locked as long as its owner lives. One without lock was left behind and is removed by the next writer.
#pragma once

#include <string>

#include "bench/settings/exchanged_file.h"
#include "bench/settings/file_handle_posix.h"
#include "bench/settings/file_state_posix.h"
#include "bench/settings/splice.h"

namespace zolvane {

// Where a file stands. The folder is open as long as anything is done there.
struct FilePlace {
  FileHandle Folder;
  std::string Name;
};

class HiddenCopy {
 public:
  // `visible` is the place of the file, and outlives its copy. No copy is made yet.
  HiddenCopy(const FilePlace& visible, Durability survives) : visible_{visible}, survives_{survives} {}
  HiddenCopy(const HiddenCopy&) = delete;
  HiddenCopy& operator=(const HiddenCopy&) = delete;
  ~HiddenCopy() { Drop(); }

  // Each makes it hold the whole text, durably if each write is to be. After a failure it is of no use.
  bool Create(const SplicedText& text);
  // With the attributes of the visible file. A copy that nobody else knows is changed where it has to be.
  bool Follow(const SplicedText& next, const FileHandle& visible, const FileState& visibleState);

  const std::string& Name() const { return name_; }

  // As it was once it held the whole text. It has a time of modification that no change by others will have, if
  // the file system keeps such times.
  const FileState& Whole() const { return whole_; }
  bool WholeIsUnique() const { return wholeIsUnique_; }

  // It bears the visible name now: gives its file away and goes on with the one that was visible, if `former` is
  // open. That one lags behind by `changed`, and is left alone from now on unless it is as `expected`.
  FileHandle ChangePlaces(FileHandle former, const FileState& expected, ByteRange changed);

  void Drop();

 private:
  enum class Leftover { Removed, InUse, Absent };

  std::string NameOf(int number) const;
  bool Make(unsigned int permissions);
  Leftover RemoveLeftover(const std::string& name) const;

  bool MayBeChanged() const;
  bool CatchUp(const SplicedText& next);
  bool WriteRange(const SplicedText& text, ByteRange range) const;
  bool Stamp(const Instant& former);
  bool Sync() const;

  const FilePlace& visible_;
  Durability survives_;

  std::string name_;
  FileHandle file_;
  FileState state_;         // as we left it
  bool isSettled_ = false;  // a later change cannot look like `state_`
  ByteRange lag_;           // where it differs from the visible file, at most
  FileState whole_;
  bool wholeIsUnique_ = false;
};

}  // namespace zolvane
