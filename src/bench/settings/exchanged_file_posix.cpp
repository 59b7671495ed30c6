// Beside the visible file stands a second copy, hidden, one change behind it. A change is made to the hidden
// copy, which is then made durable and exchanged with the visible file in one step of the file system. So a
// change costs what it changes, not what the file holds, and the name always leads to a whole file.
//
// Three things could break that, and each has its guard:
//
// Another program changes the visible file between our look at it and the exchange. What came out of the
// exchange is therefore compared with what was expected, and put back if it is something else.
//
// A program that opened the file before an exchange reads on in what has become the hidden copy. A copy is
// therefore changed only under a lease, which the system grants when nobody else has the file open; otherwise
// that file is left to its reader and a new copy is made. (Who writes on into a file that was exchanged
// meanwhile writes into nowhere, as with every file that is replaced.)
//
// A power cut may undo an exchange that is not durable yet, and so make the hidden copy the visible file
// again. The folder is therefore made durable before the copy is touched again.
//
// The hidden copy is locked as long as its owner lives. One without lock was left behind and is removed by
// the next writer. Writers of this kind exclude each other by a lock on the folder.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <limits>
#include <utility>

#include "bench/settings/exchanged_file.h"

namespace zolvane {
namespace {

template <class Call>
auto Retried(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

class FileHandle {
 public:
  FileHandle() = default;
  explicit FileHandle(int number) : number_{number} {}
  FileHandle(FileHandle&& other) noexcept : number_{std::exchange(other.number_, -1)} {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(number_, other.number_);
    other.Close();
    return *this;
  }
  ~FileHandle() { Close(); }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  void Close() {
    if (IsOpen()) {
      ::close(std::exchange(number_, -1));
    }
  }

 private:
  int number_ = -1;
};

FileHandle OpenAt(int folder, const std::string& name, int flags, mode_t mode = 0) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return FileHandle{Retried([&] { return ::openat(folder, name.c_str(), flags | O_CLOEXEC, mode); })};
}

bool Control(const FileHandle& file, int command, int argument) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
  return ::fcntl(file.Number(), command, argument) == 0;
}

struct Instant {
  std::time_t Seconds = 0;
  long Nanoseconds = 0;

  friend bool operator==(const Instant&, const Instant&) = default;
};

Instant InstantOf(const timespec& time) {
  return {time.tv_sec, time.tv_nsec};
}

// What the system tells of a file. Two equal ones are the same state of the same file, if the file system's
// clock is fine enough.
struct FileState {
  bool Exists = false;
  mode_t Mode = 0;
  dev_t Device = 0;
  ino_t Number = 0;
  nlink_t Names = 0;
  off_t Size = 0;
  Instant Modified;
  Instant Changed;

  friend bool operator==(const FileState&, const FileState&) = default;

  bool IsRegular() const { return Exists && S_ISREG(Mode); }
  bool IsSameFile(const FileState& other) const {
    return Exists && other.Exists && Device == other.Device && Number == other.Number;
  }
  // An exchange itself sets the time of change, so that cannot be compared across one.
  bool IsSameAcrossExchange(const FileState& other) const {
    return IsSameFile(other) && Size == other.Size && Modified == other.Modified;
  }
};

FileState StateFrom(int result, const struct stat& status) {
  if (result != 0) {
    return {};
  }
  return {true,
          status.st_mode,
          status.st_dev,
          status.st_ino,
          status.st_nlink,
          status.st_size,
          InstantOf(status.st_mtim),
          InstantOf(status.st_ctim)};
}

FileState StateOf(const FileHandle& file) {
  struct stat status {};
  return StateFrom(::fstat(file.Number(), &status), status);
}

FileState StateOfPath(const std::string& path) {
  struct stat status {};
  return StateFrom(::stat(path.c_str(), &status), status);
}

FileState StateOfName(const FileHandle& folder, const std::string& name) {
  struct stat status {};
  return StateFrom(::fstatat(folder.Number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW), status);
}

timespec Now() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

// A change so recent that another one could follow under the same time stamp cannot be told from it. File
// systems count in ticks of the system's clock, old ones in steps of two seconds.
bool IsOldEnough(const FileState& state) {
  const bool countsSeconds = state.Changed.Nanoseconds == 0 && state.Modified.Nanoseconds == 0;
  const long long milliseconds = countsSeconds ? 2500 : 50;
  const timespec now = Now();
  if (state.Changed.Seconds < now.tv_sec - 10 || state.Changed.Seconds > now.tv_sec) {
    return state.Changed.Seconds < now.tv_sec;
  }
  const long long seconds = now.tv_sec - state.Changed.Seconds;
  return seconds * 1000 + (now.tv_nsec - state.Changed.Nanoseconds) / 1'000'000 > milliseconds;
}

// Writing beyond the size limit of the process raises a signal that ends it. Here it shall only fail.
class SizeLimitSignalHeldOff {
 public:
  SizeLimitSignalHeldOff() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  SizeLimitSignalHeldOff(const SizeLimitSignalHeldOff&) = delete;
  SizeLimitSignalHeldOff& operator=(const SizeLimitSignalHeldOff&) = delete;
  ~SizeLimitSignalHeldOff() {
    if (sigismember(&before_, SIGXFSZ) == 1) {
      return;
    }
    constexpr timespec noWait{};
    Retried([&] { return ::sigtimedwait(&signal_, nullptr, &noWait); });
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t signal_{};
  sigset_t before_{};
};

// Waits for other writers of this kind. File systems without such locks are used without.
class FolderLock {
 public:
  explicit FolderLock(const FileHandle& folder) : folder_{folder.Number()} {
    Retried([this] { return ::flock(folder_, LOCK_EX); });
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock() { ::flock(folder_, LOCK_UN); }

 private:
  int folder_;
};

bool TryLock(const FileHandle& file) {
  return Retried([&] { return ::flock(file.Number(), LOCK_EX | LOCK_NB); }) == 0;
}

void Unlock(const FileHandle& file) {
  ::flock(file.Number(), LOCK_UN);
}

// True when nobody else has the file open. From then on until the lease is given back, whoever opens it
// waits: that can only be somebody who looked up the name before the last exchange, or who looks into hidden
// files. The system announces such a visitor by a signal; it gets one that is ignored unless asked for.
bool TryLease(const FileHandle& file) {
  return Control(file, F_SETSIG, SIGURG) && Control(file, F_SETLEASE, F_WRLCK);
}

void EndLease(const FileHandle& file) {
  Control(file, F_SETLEASE, F_UNLCK);
}

bool WriteAll(const FileHandle& file, std::size_t offset, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = Retried(
        [&] { return ::pwrite(file.Number(), bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
    if (written <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += static_cast<std::size_t>(written);
  }
  return true;
}

bool WriteRange(const FileHandle& file, const SplicedText& text, ByteRange range) {
  return text.VisitRange(
      range, [&file](std::size_t offset, std::string_view bytes) { return WriteAll(file, offset, bytes); });
}

std::optional<std::string> ReadAll(const FileHandle& file) {
  std::string bytes;
  constexpr std::size_t step = std::size_t{1} << 16;
  std::size_t size = 0;
  while (size <= largestSettingsFile) {
    bytes.resize(size + step);
    const auto count =
        Retried([&] { return ::pread(file.Number(), bytes.data() + size, step, static_cast<off_t>(size)); });
    if (count < 0) {
      return std::nullopt;
    }
    if (count == 0) {
      bytes.resize(size);
      return bytes;
    }
    size += static_cast<std::size_t>(count);
  }
  return std::nullopt;
}

// Owner and permissions. Only a privileged process can give a file to another owner; for others the group is
// kept where that is allowed, and the file becomes their own.
bool GiveAttributes(const FileHandle& from, const FileHandle& to) {
  struct stat wanted {};
  struct stat present {};
  if (::fstat(from.Number(), &wanted) != 0 || ::fstat(to.Number(), &present) != 0) {
    return false;
  }
  const bool hasOwner = wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid;
  if (!hasOwner && ::fchown(to.Number(), wanted.st_uid, wanted.st_gid) != 0 &&
      ::fchown(to.Number(), static_cast<uid_t>(-1), wanted.st_gid) != 0 && errno != EPERM) {
    return false;
  }
  constexpr mode_t permissions = 07777;
  const mode_t mode = wanted.st_mode & permissions;
  const bool hasMode = StateOf(to).Mode == wanted.st_mode;
  return hasMode || ::fchmod(to.Number(), mode) == 0;
}

// Where the path leads to, so that a link stays a link. The last part may be missing.
std::optional<std::filesystem::path> WithoutLinks(std::filesystem::path path) {
  constexpr int mostLinks = 40;
  for (int links = 0; links < mostLinks; ++links) {
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error)) {
      return path;
    }
    const auto target = std::filesystem::read_symlink(path, error);
    if (error) {
      return std::nullopt;
    }
    path = path.parent_path() / target;
  }
  return std::nullopt;
}

bool IsUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

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

std::optional<std::string> ReasonAgainstWriting(const std::string& path, const FileState& state) {
  if (state.Exists && !MayAccess(path, W_OK)) {
    return "cannot be written";
  }
  const auto file = WithoutLinks(path);
  const std::string folder = file && file->has_parent_path() ? file->parent_path().string() : ".";
  if (MayAccess(folder, R_OK | W_OK | X_OK)) {
    return std::nullopt;
  }
  return errno == ENOENT ? "is in a folder that does not exist" : "is in a folder that cannot be written";
}

constexpr ByteRange everything{0, std::numeric_limits<std::size_t>::max()};

class PosixExchangedFile final : public ExchangedFile {
 public:
  PosixExchangedFile(std::string path, const ExchangedFileOptions& options)
      : path_{std::move(path)}, options_{options} {}
  PosixExchangedFile(const PosixExchangedFile&) = delete;
  PosixExchangedFile& operator=(const PosixExchangedFile&) = delete;
  ~PosixExchangedFile() override {
    PassOver(Flush());
    DropCopy();
  }

  bool IsCurrent() override { return isSettled_ && StateOfPath(path_) == known_; }
  FileContent Read() override;
  WriteOutcome Write(std::string_view text, const Splice& change) override;
  Status Flush() override;

 private:
  enum class Leftover { Removed, InUse, Absent };

  FileContent ReadFrom(const FileHandle& file);
  void LetGo();

  bool OpenFolder();
  WriteOutcome OpenVisible();
  WriteOutcome Create(const SplicedText& next);
  WriteOutcome Replace(std::string_view text, const SplicedText& next);

  std::string CopyName(int number) const;
  bool MakeCopy(mode_t mode);
  Leftover RemoveLeftover(const std::string& name) const;
  void DropCopy();

  bool CopyMayBeChanged() const;
  bool WriteCopy(const SplicedText& next);
  bool CatchUp(const SplicedText& next);
  bool Stamp();
  bool SyncCopy() const;

  int Exchange() const;
  WriteOutcome ExchangeIn(std::string_view text, const SplicedText& next);
  WriteOutcome RenameIn(std::string_view text);
  WriteOutcome RenameToFreeName();
  bool ExpectedCameOut(std::string_view text) const;
  bool VisibleHolds(std::string_view text) const;
  void GiveBack() const;
  void BecomeVisible(ByteRange changed);
  void MakeNamesDurable();

  std::string path_;
  ExchangedFileOptions options_;

  FileState known_;         // of the visible file, as it was last read or written
  bool isSettled_ = false;  // a later change cannot look like `known_`

  FileHandle folder_;
  std::string name_;
  FileHandle visible_;  // open only from the first write on; is the file that `known_` tells of
  std::string copyName_;
  FileHandle copy_;
  FileState copyState_;         // as we left it
  bool copyIsSettled_ = false;  // a later change cannot look like `copyState_`
  ByteRange copyLag_;           // where the copy differs from the visible file, at most
  FileState stamped_;           // of the copy, when it was complete
  bool stampIsUnique_ = false;  // its time of modification is one that no change by others will have
  bool namesAreDurable_ = true;
};

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
  return content;
}

void PosixExchangedFile::LetGo() {
  DropCopy();
  visible_.Close();
  folder_.Close();
}

WriteOutcome PosixExchangedFile::Write(std::string_view text, const Splice& change) {
  const SizeLimitSignalHeldOff heldOff;
  if (!OpenFolder()) {
    return WriteOutcome::Failed;
  }
  WriteOutcome outcome = WriteOutcome::Changed;
  {
    const FolderLock lock{folder_};
    if (StateOfPath(path_) == known_) {
      const SplicedText next{text, change};
      outcome = known_.Exists ? Replace(text, next) : Create(next);
    }
  }
  if (outcome != WriteOutcome::Done) {
    LetGo();
    isSettled_ = isSettled_ && outcome != WriteOutcome::Changed;
  }
  return outcome;
}

Status PosixExchangedFile::Flush() {
  if (namesAreDurable_) {
    return Status::Success();
  }
  const FileHandle file = OpenAt(AT_FDCWD, path_, O_RDONLY);
  if (!file.IsOpen() || !OpenFolder() || Retried([&] { return ::fsync(file.Number()); }) != 0 ||
      Retried([this] { return ::fsync(folder_.Number()); }) != 0) {
    return Status::Failure();
  }
  namesAreDurable_ = true;
  return Status::Success();
}

bool PosixExchangedFile::OpenFolder() {
  if (folder_.IsOpen()) {
    return true;
  }
  const auto file = WithoutLinks(path_);
  if (!file || !file->has_filename()) {
    return false;
  }
  name_ = file->filename().string();
  const std::string folder = file->has_parent_path() ? file->parent_path().string() : ".";
  folder_ = OpenAt(AT_FDCWD, folder, O_RDONLY | O_DIRECTORY);
  return folder_.IsOpen();
}

// For writing, because it is the hidden copy after the next exchange. A file that we may not write fails
// here.
WriteOutcome PosixExchangedFile::OpenVisible() {
  if (visible_.IsOpen()) {
    return WriteOutcome::Done;
  }
  visible_ = OpenAt(folder_.Number(), name_, O_RDWR | O_NOFOLLOW);
  if (!visible_.IsOpen()) {
    return errno == ENOENT || errno == ELOOP ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  return StateOf(visible_) == known_ ? WriteOutcome::Done : WriteOutcome::Changed;
}

WriteOutcome PosixExchangedFile::Create(const SplicedText& next) {
  constexpr mode_t asTheUserWants = 0666;
  if (!MakeCopy(asTheUserWants) || !WriteRange(copy_, next, everything) || !Stamp() || !SyncCopy()) {
    return WriteOutcome::Failed;
  }
  const WriteOutcome outcome = RenameToFreeName();
  if (outcome == WriteOutcome::Done) {
    BecomeVisible(everything);
  }
  return outcome;
}

WriteOutcome PosixExchangedFile::Replace(std::string_view text, const SplicedText& next) {
  if (const WriteOutcome opened = OpenVisible(); opened != WriteOutcome::Done) {
    return opened;
  }
  if (!WriteCopy(next)) {
    return WriteOutcome::Failed;
  }
  return options_.KeepsCopy ? ExchangeIn(text, next) : RenameIn(text);
}

// A long file name is cut so that its copy's name is not too long. Names that thereby become the same are
// told apart by their locks.
std::string PosixExchangedFile::CopyName(int number) const {
  constexpr std::size_t longestStart = 200;
  return '.' + name_.substr(0, longestStart) + ".bench-copy" + (number == 1 ? "" : std::to_string(number));
}

bool PosixExchangedFile::MakeCopy(mode_t mode) {
  constexpr int mostCopies = 32;
  int number = 1;
  while (number < mostCopies && RemoveLeftover(CopyName(number)) == Leftover::InUse) {
    ++number;
  }
  copyName_ = CopyName(number);
  copy_ = OpenAt(folder_.Number(), copyName_, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
  if (!copy_.IsOpen()) {
    return false;
  }
  TryLock(copy_);
  // The leftovers of several writers have several names.
  while (++number <= mostCopies && RemoveLeftover(CopyName(number)) != Leftover::Absent) {
  }
  return true;
}

PosixExchangedFile::Leftover PosixExchangedFile::RemoveLeftover(const std::string& name) const {
  const FileHandle file = OpenAt(folder_.Number(), name, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
  if (!file.IsOpen()) {
    return errno == ENOENT ? Leftover::Absent : Leftover::InUse;
  }
  const bool isLeftover = StateOf(file).IsRegular() && TryLock(file);
  return isLeftover && ::unlinkat(folder_.Number(), name.c_str(), 0) == 0 ? Leftover::Removed
                                                                          : Leftover::InUse;
}

void PosixExchangedFile::DropCopy() {
  if (!copy_.IsOpen()) {
    return;
  }
  if (StateOfName(folder_, copyName_).IsSameFile(StateOf(copy_))) {
    ::unlinkat(folder_.Number(), copyName_.c_str(), 0);
  }
  copy_.Close();
}

// Not when somebody has it open, has changed it since, or knows it by another name.
bool PosixExchangedFile::CopyMayBeChanged() const {
  return copy_.IsOpen() && copyIsSettled_ && TryLease(copy_) && StateOf(copy_) == copyState_ &&
         copyState_.Names == 1;
}

bool PosixExchangedFile::WriteCopy(const SplicedText& next) {
  if (CopyMayBeChanged()) {
    const bool isComplete = CatchUp(next) && Stamp();
    EndLease(copy_);
    return isComplete && SyncCopy();
  }
  DropCopy();
  constexpr mode_t asYetForUsOnly = 0600;
  return MakeCopy(asYetForUsOnly) && WriteRange(copy_, next, everything) && GiveAttributes(visible_, copy_) &&
         Stamp() && SyncCopy();
}

bool PosixExchangedFile::CatchUp(const SplicedText& next) {
  const ByteRange changed = next.Changed();
  const ByteRange lagBefore{copyLag_.From, std::min(copyLag_.To, changed.From)};
  const ByteRange lagBehind{std::max(copyLag_.From, changed.To), copyLag_.To};
  if (!WriteRange(copy_, next, lagBefore) || !WriteRange(copy_, next, changed) ||
      !WriteRange(copy_, next, lagBehind)) {
    return false;
  }
  const auto size = static_cast<off_t>(next.Size());
  return StateOf(copy_).Size == size || Retried([&] { return ::ftruncate(copy_.Number(), size); }) == 0;
}

// The time of modification is taken from the fine clock. A change by another program gets the time of a clock
// tick and so another one, even within the same tick.
bool PosixExchangedFile::Stamp() {
  timespec now = Now();
  if (InstantOf(now) == known_.Modified) {
    now.tv_nsec = (now.tv_nsec + 1) % 1'000'000'000;
  }
  const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, now};
  if (::futimens(copy_.Number(), times.data()) != 0) {
    return false;
  }
  stamped_ = StateOf(copy_);
  stampIsUnique_ = stamped_.Modified == InstantOf(now);
  return stamped_.Exists;
}

bool PosixExchangedFile::SyncCopy() const {
  return options_.Survives == Durability::OnFlush ||
         Retried([this] { return ::fdatasync(copy_.Number()); }) == 0;
}

int PosixExchangedFile::Exchange() const {
  return ::renameat2(folder_.Number(), copyName_.c_str(), folder_.Number(), name_.c_str(), RENAME_EXCHANGE);
}

WriteOutcome PosixExchangedFile::ExchangeIn(std::string_view text, const SplicedText& next) {
  TryLock(visible_);  // under the copy's name it must be locked from the first moment
  if (Exchange() != 0) {
    if (IsUnsupported(errno)) {
      options_.KeepsCopy = false;
      return RenameIn(text);
    }
    return errno == ENOENT ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  if (!ExpectedCameOut(text)) {
    GiveBack();
    return WriteOutcome::Changed;
  }
  BecomeVisible(next.Changed());
  return WriteOutcome::Done;
}

// Between the look and the renaming another program's change can be lost: such a file system offers nothing
// better.
WriteOutcome PosixExchangedFile::RenameIn(std::string_view text) {
  if (StateOfPath(path_) != known_ || !VisibleHolds(text)) {
    return WriteOutcome::Changed;
  }
  if (::renameat(folder_.Number(), copyName_.c_str(), folder_.Number(), name_.c_str()) != 0) {
    return WriteOutcome::Failed;
  }
  visible_.Close();
  BecomeVisible(everything);
  return WriteOutcome::Done;
}

WriteOutcome PosixExchangedFile::RenameToFreeName() {
  const int folder = folder_.Number();
  int result = ::renameat2(folder, copyName_.c_str(), folder, name_.c_str(), RENAME_NOREPLACE);
  if (result != 0 && IsUnsupported(errno)) {
    result = ::linkat(folder, copyName_.c_str(), folder, name_.c_str(), 0);
    if (result == 0) {
      ::unlinkat(folder, copyName_.c_str(), 0);
    }
  }
  if (result != 0) {
    return errno == EEXIST ? WriteOutcome::Changed : WriteOutcome::Failed;
  }
  return WriteOutcome::Done;
}

bool PosixExchangedFile::ExpectedCameOut(std::string_view text) const {
  return StateOfName(folder_, copyName_).IsSameAcrossExchange(known_) && VisibleHolds(text);
}

// The file that looks as it did when it was read also has the bytes that it had then.
bool PosixExchangedFile::VisibleHolds(std::string_view text) const {
  return isSettled_ || ReadAll(visible_) == text;
}

// Another program's state is under the copy's name and has to be the visible one again. Should yet another
// one come out when it is put back, then that is the newer one, and so on until the one comes out that was
// put in last.
void PosixExchangedFile::GiveBack() const {
  FileState putIn = stamped_;
  FileState cameOut = StateOfName(folder_, copyName_);
  bool isDone = false;
  while (!isDone && Exchange() == 0) {
    const FileState expected = std::exchange(putIn, cameOut);
    cameOut = StateOfName(folder_, copyName_);
    isDone = cameOut.IsSameAcrossExchange(expected);
  }
}

// The copy bears the visible name now; what was visible, if it is still open, is the copy.
void PosixExchangedFile::BecomeVisible(ByteRange changed) {
  Unlock(copy_);
  std::swap(visible_, copy_);
  if (copy_.IsOpen()) {
    copyState_ = StateOf(copy_);
    copyIsSettled_ = isSettled_ && copyState_.IsSameAcrossExchange(known_);
    copyLag_ = changed;
  }
  const FileState now = StateOf(visible_);
  const bool isOurs = now.IsSameAcrossExchange(stamped_);
  known_ = isOurs ? now : stamped_;
  isSettled_ = isOurs && stampIsUnique_;
  MakeNamesDurable();
}

void PosixExchangedFile::MakeNamesDurable() {
  namesAreDurable_ = options_.Survives == Durability::EachWrite &&
                     Retried([this] { return ::fsync(folder_.Number()); }) == 0;
  if (!namesAreDurable_ && options_.Survives == Durability::EachWrite) {
    DropCopy();
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
