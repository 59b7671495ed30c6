// Beside the visible file stands a second copy, hidden, one change behind it. A change is made to the hidden
// copy, which is then made durable and exchanged with the visible file in one step of the file system. So a
// change costs what it changes, not what the file holds, and the name always leads to a whole file. In memory,
// without waiting for a disk, a write takes 20 microseconds at every size; a new file for each write takes 45,
// 110 and 1000 with 20 KB, 200 KB and 2 MB.
//
// Four things could break that, and each has its guard:
//
// Another program changes the visible file between our look at it and the exchange. Nothing is therefore
// exchanged while another program has the file open for writing, which a lease tells; a program that opens it
// meanwhile has to wait, and is let go first. What came out of the exchange is compared with what was
// expected, and put back if it is something else, or if somebody waits.
//
// Where the system grants no leases a program may write into a state that has been replaced. Such a state is
// not removed but kept for the user.
//
// A program that opened the file before an exchange reads on in what has become the hidden copy. A copy is
// therefore changed only under a lease, which the system grants when nobody else has the file open; otherwise
// that file is left to its reader and a new copy is made.
//
// A power cut may undo an exchange that is not durable yet, and so make the hidden copy the visible file
// again. The folder is therefore made durable before the copy is touched again.
//
// Writers of this kind exclude each other by a lock on the folder.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <utility>

#include "files/exchanged_file.h"
#include "files/file_attributes_posix.h"
#include "files/file_handle_posix.h"
#include "files/file_state_posix.h"
#include "files/hidden_copy_posix.h"

namespace zolvane {
namespace {

// Writing beyond the size limit of the process raises a signal that ends it. Here it shall only fail.
class SizeLimitSignalHeldOff {
 public:
  SizeLimitSignalHeldOff() : isNeeded_{HasSizeLimit()} {
    if (isNeeded_) {
      sigemptyset(&signal_);
      sigaddset(&signal_, SIGXFSZ);
      ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
  }
  SizeLimitSignalHeldOff(const SizeLimitSignalHeldOff&) = delete;
  SizeLimitSignalHeldOff& operator=(const SizeLimitSignalHeldOff&) = delete;
  ~SizeLimitSignalHeldOff() {
    if (!isNeeded_ || sigismember(&before_, SIGXFSZ) == 1) {
      return;
    }
    constexpr timespec noWait{};
    Retried([&] { return ::sigtimedwait(&signal_, nullptr, &noWait); });
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  static bool HasSizeLimit() {
    rlimit limit{};
    return ::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
  }

  bool isNeeded_;
  sigset_t signal_{};
  sigset_t before_{};
};

bool MayAccess(const std::string& path, int access) {
  return ::faccessat(AT_FDCWD, path.c_str(), access, AT_EACCESS) == 0;
}

std::optional<std::string> ReasonAgainstReading(const std::string& path, const FileState& state) {
  if (S_ISDIR(state.Mode)) {
    return "is a folder";
  }
  if (!state.IsRegular()) {
    return "is not an ordinary file";
  }
  if (static_cast<std::uintmax_t>(state.Size) > largestSettingsFile) {
    return "is too large for a settings file";
  }
  return MayAccess(path, R_OK) ? std::nullopt : std::optional<std::string>{"cannot be read"};
}

// In a folder where everybody may only replace what is his own.
bool IsProtectedFromUs(const FileState& folder, const FileState& file) {
  const auto user = ::geteuid();
  return (folder.Mode & S_ISVTX) != 0 && user != 0 && folder.Owner != user && file.Owner != user;
}

// Tried out on a file without a name. A file system that has no such files is believed.
bool AttributesCanBeKept(const std::string& file, const std::string& folder) {
  const FileHandle visible = OpenAt(AT_FDCWD, file, O_RDONLY | O_NONBLOCK);
  const FileHandle trial = OpenAt(AT_FDCWD, folder, O_TMPFILE | O_RDWR, 0600);
  return !visible.IsOpen() || !trial.IsOpen() || GiveAttributes(visible, trial);
}

std::optional<std::string> ReasonAgainstWriting(const std::string& path, const FileState& state) {
  if (state.Exists && !MayAccess(path, W_OK)) {
    return "cannot be written";
  }
  const auto file = WithoutLinks(path);
  const std::string folder = file ? FolderOf(*file) : ".";
  if (!MayAccess(folder, R_OK | W_OK | X_OK)) {
    return errno == ENOENT ? "is in a folder that does not exist" : "is in a folder that cannot be written";
  }
  if (state.Exists && IsProtectedFromUs(StateOfPath(folder), state)) {
    return "belongs to somebody else, in a folder where only the owner may replace it";
  }
  if (state.Exists && !AttributesCanBeKept(path, folder)) {
    return "has a group, an access list or an attribute that would be lost";
  }
  return std::nullopt;
}

class PosixExchangedFile final : public ExchangedFile {
 public:
  PosixExchangedFile(std::string path, const ExchangedFileOptions& options)
      : path_{std::move(path)}, options_{options} {}
  PosixExchangedFile(const PosixExchangedFile&) = delete;
  PosixExchangedFile& operator=(const PosixExchangedFile&) = delete;
  ~PosixExchangedFile() override { PassOver(Flush()); }

  bool IsCurrent() override;
  FileContent Read() override;
  WriteOutcome Write(std::string_view text, const Splice& change) override;
  Status Flush() override;
  std::vector<std::string> TakeRescued() override { return copy_.TakeRescued(); }

 private:
  FileContent ReadFrom(const FileHandle& file);
  FileState Look();
  void LetGo();

  bool OpenFolder();
  WriteOutcome WriteLocked(std::string_view text, const SplicedText& next);
  WriteOutcome OpenVisible();
  WriteOutcome Create(const SplicedText& next);
  WriteOutcome Replace(std::string_view text, const SplicedText& next);

  int Exchange() const;
  WriteOutcome ExchangeIn(std::string_view text, const SplicedText& next);
  WriteOutcome RenameIn(std::string_view text);
  bool VisibleHolds(std::string_view text) const;
  bool SomebodyWaits() const { return isLeased_ && !HoldsLease(visible_); }
  void GiveBack();
  void BecomeVisible(const FileState& formerState, ByteRange changed);
  void MakeNamesDurable();

  std::string path_;
  ExchangedFileOptions options_;

  FileState known_;         // of the visible file, as it was last read or written
  bool isSettled_ = false;  // a later change cannot look like `known_`

  FileHandle
      looked_;  // what the path led to at the last look along it; opened neither for reading nor writing
  std::chrono::steady_clock::time_point nextLook_;

  FilePlace place_;
  FileHandle visible_;  // open during a write only; is the file that `known_` tells of
  bool isLeased_ = false;
  HiddenCopy copy_{place_, options_.Survives};
  bool namesAreDurable_ = true;
};

bool PosixExchangedFile::IsCurrent() {
  return isSettled_ && (known_.Exists ? Look() : StateOfPath(path_)) == known_;
}

// Every change of a file, its replacement and its removal show in the file itself, and to ask an open handle
// costs a third of a look along the path. Only the path knows when a folder above, or a link, has been
// changed for another one; it is therefore looked along again after a while, and before each write.
FileState PosixExchangedFile::Look() {
  constexpr std::chrono::milliseconds untilNextLook{10};
  const auto now = std::chrono::steady_clock::now();
  if (!looked_.IsOpen() || now >= nextLook_) {
    looked_ = OpenAt(AT_FDCWD, path_, O_PATH);
    nextLook_ = now + untilNextLook;
  }
  return StateOf(looked_);
}

FileContent PosixExchangedFile::Read() {
  LetGo();
  known_ = {};
  isSettled_ = false;
  if (path_.find('\0') != std::string::npos) {
    return {};
  }
  if (const FileState state = StateOfPath(path_); state.Exists && !state.IsRegular()) {
    return {};  // opening a pipe or a device could wait, or do something
  }
  const FileHandle file = OpenAt(AT_FDCWD, path_, O_RDONLY);
  if (!file.IsOpen()) {
    isSettled_ = errno == ENOENT || errno == ENOTDIR;
    return {isSettled_ ? FileContent::State::Missing : FileContent::State::Unreadable, {}};
  }
  return ReadFrom(file);
}

// A file that is being changed under our eyes is read again. If that does not end, the last attempt is
// returned and does not count as current.
FileContent PosixExchangedFile::ReadFrom(const FileHandle& file) {
  constexpr int mostAttempts = 10;
  FileContent content;
  for (int attempt = 0; attempt < mostAttempts && !known_.Exists; ++attempt) {
    const FileState before = StateOf(file);
    auto bytes = before.IsRegular() ? ReadAll(file) : std::nullopt;
    if (!bytes) {
      return {};
    }
    content = {FileContent::State::Present, std::move(*bytes)};
    if (StateOf(file) == before) {
      known_ = before;
      isSettled_ = IsOldEnough(before);
    }
  }
  content.IsBeingWritten = TryLeaseAgainstWriters(file) == LeaseAnswer::Refused;
  return content;
}

void PosixExchangedFile::LetGo() {
  looked_.Close();
  copy_.Drop();
  visible_.Close();
  place_.Folder.Close();
}

WriteOutcome PosixExchangedFile::Write(std::string_view text, const Splice& change) {
  const SizeLimitSignalHeldOff heldOff;
  if (!OpenFolder()) {
    return WriteOutcome::Failed;
  }
  const WriteOutcome outcome = WriteLocked(text, SplicedText{text, change});
  visible_.Close();
  if (outcome == WriteOutcome::Changed || outcome == WriteOutcome::Failed) {
    LetGo();
    isSettled_ = isSettled_ && outcome != WriteOutcome::Changed;
  }
  return outcome;
}

WriteOutcome PosixExchangedFile::WriteLocked(std::string_view text, const SplicedText& next) {
  const FolderLock lock{place_.Folder};
  if (lock.IsRefused()) {
    return WriteOutcome::Locked;
  }
  if (StateOfPath(path_) != known_) {
    return WriteOutcome::Changed;
  }
  return known_.Exists ? Replace(text, next) : Create(next);
}

Status PosixExchangedFile::Flush() {
  copy_.RescueChanges();
  if (namesAreDurable_) {
    return Status::Success();
  }
  const FileHandle file = OpenAt(AT_FDCWD, path_, O_RDONLY);
  if (!file.IsOpen() || !OpenFolder() || !MakeDurable(file) || !MakeDurable(place_.Folder)) {
    return Status::Failure();
  }
  namesAreDurable_ = true;
  return Status::Success();
}

bool PosixExchangedFile::OpenFolder() {
  if (place_.Folder.IsOpen()) {
    return true;
  }
  const auto file = WithoutLinks(path_);
  if (!file || !file->has_filename()) {
    return false;
  }
  place_ = {.Folder = OpenAt(AT_FDCWD, FolderOf(*file), O_RDONLY | O_DIRECTORY),
            .FolderPath = FolderOf(*file),
            .Name = file->filename().string()};
  return place_.Folder.IsOpen();
}

// With the lease, if there is one. The permission to write needs to be looked at only once: a change of
// it is a change of the file.
WriteOutcome PosixExchangedFile::OpenVisible() {
  const int folder = place_.Folder.Number();
  visible_ = OpenAt(folder, place_.Name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  if (!visible_.IsOpen()) {
    return errno == ENOENT || errno == ELOOP ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  if (!copy_.Exists() && ::faccessat(folder, place_.Name.c_str(), W_OK, AT_EACCESS) != 0) {
    return errno == ENOENT ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  const LeaseAnswer lease = TryLeaseAgainstWriters(visible_);
  isLeased_ = lease == LeaseAnswer::Granted;
  if (lease == LeaseAnswer::Refused) {
    return WriteOutcome::InUse;
  }
  return StateOf(visible_) == known_ ? WriteOutcome::Done : WriteOutcome::Changed;
}

WriteOutcome PosixExchangedFile::Create(const SplicedText& next) {
  if (!copy_.Create(next)) {
    return WriteOutcome::Failed;
  }
  if (!RenameToFree(place_.Folder.Number(), copy_.Name(), place_.Name)) {
    return errno == EEXIST ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  BecomeVisible({}, {});
  return WriteOutcome::Done;
}

WriteOutcome PosixExchangedFile::Replace(std::string_view text, const SplicedText& next) {
  if (const WriteOutcome opened = OpenVisible(); opened != WriteOutcome::Done) {
    return opened;
  }
  if (!copy_.Follow(next, visible_, known_)) {
    return WriteOutcome::Failed;
  }
  const WriteOutcome outcome = options_.KeepsCopy ? ExchangeIn(text, next) : RenameIn(text);
  if (outcome == WriteOutcome::InUse) {
    copy_.Drop();
  }
  return outcome;
}

int PosixExchangedFile::Exchange() const {
  const int folder = place_.Folder.Number();
  return ::renameat2(folder, copy_.Name().c_str(), folder, place_.Name.c_str(), RENAME_EXCHANGE);
}

WriteOutcome PosixExchangedFile::ExchangeIn(std::string_view text, const SplicedText& next) {
  TryLock(visible_);  // under the copy's name it must be locked from the first moment
  if (SomebodyWaits()) {
    return WriteOutcome::InUse;
  }
  if (Exchange() != 0) {
    if (IsUnsupported(errno)) {
      options_.KeepsCopy = false;
      return RenameIn(text);
    }
    return errno == ENOENT ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  const FileState cameOut = StateOfName(place_.Folder, copy_.Name());
  if (SomebodyWaits()) {
    GiveBack();
    return WriteOutcome::InUse;
  }
  if (!cameOut.IsSameAcrossExchange(known_) || !VisibleHolds(text)) {
    GiveBack();
    return WriteOutcome::Changed;
  }
  BecomeVisible(cameOut, next.Changed());
  return WriteOutcome::Done;
}

// Between the look and the renaming another program's change can be lost: such a file
// system offers nothing better.
WriteOutcome PosixExchangedFile::RenameIn(std::string_view text) {
  if (SomebodyWaits()) {
    return WriteOutcome::InUse;
  }
  if (StateOfPath(path_) != known_ || !VisibleHolds(text)) {
    return WriteOutcome::Changed;
  }
  const int folder = place_.Folder.Number();
  if (::renameat(folder, copy_.Name().c_str(), folder, place_.Name.c_str()) != 0) {
    return WriteOutcome::Failed;
  }
  visible_.Close();
  BecomeVisible({}, {});
  return WriteOutcome::Done;
}

// The file that looks as it did when it was read also has the bytes that it had then.
bool PosixExchangedFile::VisibleHolds(std::string_view text) const {
  return isSettled_ || ReadAll(visible_) == text;
}

// Another program's state is under the copy's name and has to be the visible one again. Should yet another
// one come out when it is put back, then that is the newer one, and so on until the one comes out that was
// put in last. A visible file that is moved away meanwhile is given back, too.
void PosixExchangedFile::GiveBack() {
  constexpr int mostAttempts = 1000;
  FileState putIn = copy_.Whole();
  FileState cameOut = StateOfName(place_.Folder, copy_.Name());
  bool isDone = false;
  for (int attempt = 0; attempt < mostAttempts && !isDone; ++attempt) {
    if (Exchange() == 0) {
      const FileState expected = std::exchange(putIn, cameOut);
      cameOut = StateOfName(place_.Folder, copy_.Name());
      isDone = cameOut.IsSameAcrossExchange(expected);
    } else {
      isDone = errno != ENOENT || RenameToFree(place_.Folder.Number(), copy_.Name(), place_.Name);
    }
  }
  copy_.CameBack(cameOut);
}

// The copy bears the visible name now. What was visible, if it is still open, is the
// copy, and `changed` behind.
void PosixExchangedFile::BecomeVisible(const FileState& formerState, ByteRange changed) {
  looked_.Close();
  if (isLeased_ && visible_.IsOpen()) {
    EndLease(visible_);
  }
  const FileState now = copy_.ChangePlaces(std::move(visible_), formerState, isSettled_, changed);
  const bool isOurs = now.IsSameAcrossExchange(copy_.Whole());
  known_ = isOurs ? now : copy_.Whole();
  isSettled_ = isOurs && copy_.WholeIsUnique();
  MakeNamesDurable();
}

void PosixExchangedFile::MakeNamesDurable() {
  namesAreDurable_ = options_.Survives == Durability::EachWrite && MakeDurable(place_.Folder);
  if (!namesAreDurable_ && options_.Survives == Durability::EachWrite) {
    copy_.Drop();
  }
}

}  // namespace

std::unique_ptr<ExchangedFile> OpenExchangedFile(const std::string& path,
                                                 const ExchangedFileOptions& options) {
  return std::make_unique<PosixExchangedFile>(path, options);
}

std::optional<std::string> ReasonFileIsInaccessible(const std::string& path, FileUse use) {
  errno = 0;
  const FileState state = StateOfPath(path);
  if (!state.Exists && errno != ENOENT) {
    return "cannot be reached";
  }
  if (!state.Exists && use == FileUse::ReadOnly) {
    return "does not exist";
  }
  if (auto reason = state.Exists ? ReasonAgainstReading(path, state) : std::nullopt) {
    return reason;
  }
  return use == FileUse::ReadAndWrite ? ReasonAgainstWriting(path, state) : std::nullopt;
}

}  // namespace zolvane
