#include "files/hidden_copy_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <limits>
#include <system_error>

#include "files/file_attributes_posix.h"

namespace zolvane {
namespace {

constexpr ByteRange wholeText{0, std::numeric_limits<std::size_t>::max()};
constexpr unsigned int forUsOnly = 0600;

// On a copy: it is being changed by its owner. Such a file means nothing to the system.
constexpr unsigned int inPreparation = S_ISVTX;

std::string Hexadecimal(std::uint64_t number) {
  std::array<char, 16> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return {digits.data(), written.ptr};
}

// In the name of a copy that is not whole yet and was never visible.
constexpr std::string_view unfinished = "new-";

std::uint64_t NanosecondsOf(const std::timespec& time) {
  return (static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000) + static_cast<std::uint64_t>(time.tv_nsec);
}

std::vector<std::string> NamesThatStartWith(const std::string& start, const std::string& folder) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (std::filesystem::directory_iterator entry{folder, ignored}, end; !ignored && entry != end;
       entry.increment(ignored)) {
    if (const std::string name = entry->path().filename().string(); name.starts_with(start)) {
      names.push_back(name);
    }
  }
  return names;
}

// The last change was one of the content, and not of name or permissions.
bool WasWrittenLast(const FileState& state) {
  return state.Modified == state.Changed && (state.Mode & inPreparation) == 0;
}

}  // namespace

bool HiddenCopy::Create(const SplicedText& text) {
  constexpr unsigned int asTheUserWants = 0666;
  return Make(asTheUserWants, FileHandle{}) && WriteRange(text, wholeText) && Stamp({}) && Sync() &&
         GiveName();
}

bool HiddenCopy::Follow(const SplicedText& next, const FileHandle& visible, const FileState& visibleState) {
  if (MayBeChanged()) {
    const unsigned int permissions = state_.Mode & 07777U;
    const bool isComplete = SetPermissions(permissions | inPreparation) && CatchUp(next) &&
                            Stamp(visibleState.Modified) && SetPermissions(permissions);
    EndLease(file_);
    return isComplete && Sync();
  }
  Drop();
  return Make(forUsOnly, visible) && WriteRange(next, wholeText) && GiveAttributes(visible, file_) &&
         Stamp(visibleState.Modified) && Sync() && GiveName();
}

FileState HiddenCopy::ChangePlaces(FileHandle former, const FileState& state, bool isKnown,
                                   ByteRange changed) {
  const FileState nowVisible = StateOf(file_);
  file_ = std::move(former);
  wasVisible_ = true;
  state_ = state;
  isSettled_ = isKnown;
  lag_ = changed;
  return nowVisible;
}

void HiddenCopy::CameBack(const FileState& state) {
  wasVisible_ = true;
  state_ = state;
  isSettled_ = false;
}

void HiddenCopy::RescueChanges() {
  if (file_.IsOpen() && wasVisible_ && !StateOf(file_).IsSameAcrossExchange(state_)) {
    Drop();
  }
}

void HiddenCopy::Drop() {
  if (!file_.IsOpen()) {
    return;
  }
  if (wasVisible_) {
    DropFormer();
  } else if (StateOfName(visible_.Folder, name_).IsSameFile(StateOf(file_))) {
    Remove(name_);
  }
  if (!nameBefore_.empty()) {
    Remove(std::exchange(nameBefore_, {}));
  }
  file_.Close();
}

// Who can write into it, or has done so, keeps it.
void HiddenCopy::DropFormer() {
  file_ = OpenAt(visible_.Folder.Number(), name_, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  const bool isInUse = TryLeaseAgainstWriters(file_) == LeaseAnswer::Refused;
  const FileState now = StateOf(file_);
  if (!now.IsSameFile(state_)) {
    return;
  }
  if (!now.IsSameAcrossExchange(state_)) {
    Rescue(name_);
  } else if (!isInUse) {
    Remove(name_);
  }
}

void HiddenCopy::Remove(const std::string& name) const {
  ::unlinkat(visible_.Folder.Number(), name.c_str(), 0);
}

// A long file name is cut so that its copy's name is not too long.
std::string HiddenCopy::NameOf(std::uint64_t ours, std::uint64_t visible) const {
  return StartOfNames() + Hexadecimal(ours) + '-' + Hexadecimal(visible);
}

std::string HiddenCopy::StartOfNames() const {
  constexpr std::size_t longestStart = 200;
  return '.' + visible_.Name.substr(0, longestStart) + ".bench-copy-";
}

// A file without a name, where there are such, leaves nothing behind when its owner is killed.
bool HiddenCopy::Make(unsigned int permissions, const FileHandle& visible) {
  if (!std::exchange(leftoversAreRemoved_, true)) {
    RemoveLeftovers();
  }
  wasVisible_ = false;
  file_ = OpenAt(visible_.Folder.Number(), ".", O_TMPFILE | O_RDWR, permissions);
  if (!file_.IsOpen() && !MakeWithName(permissions)) {
    return false;
  }
  TryLock(file_);
  name_ = NameOf(IdentityOf(file_), IdentityOf(visible));
  return true;
}

// The file has to exist before a name can tell which one it is. It gets that name before anything is written.
bool HiddenCopy::MakeWithName(unsigned int permissions) {
  const int folder = visible_.Folder.Number();
  const std::string start = StartOfNames().append(unfinished);
  const std::string first = start + Hexadecimal(NanosecondsOf(TimeNow()));
  file_ = OpenAt(folder, first, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, permissions);
  if (!file_.IsOpen()) {
    return false;
  }
  nameBefore_ = start + Hexadecimal(IdentityOf(file_));
  if (RenameToFree(folder, first, nameBefore_)) {
    return true;
  }
  nameBefore_ = first;
  Drop();
  return false;
}

bool HiddenCopy::GiveName() {
  const int folder = visible_.Folder.Number();
  if (!nameBefore_.empty()) {
    const std::string before = std::exchange(nameBefore_, {});
    return RenameToFree(folder, before, name_);
  }
  const std::string itself = "/proc/self/fd/" + std::to_string(file_.Number());
  return ::linkat(AT_FDCWD, itself.c_str(), folder, name_.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

void HiddenCopy::RemoveLeftovers() {
  for (const std::string& name : NamesThatStartWith(StartOfNames(), visible_.FolderPath)) {
    RemoveLeftover(name);
  }
}

// One of the two files that its name tells of, and nobody has it any more.
void HiddenCopy::RemoveLeftover(const std::string& name) {
  const FileHandle file = OpenAt(visible_.Folder.Number(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  const FileState state = StateOf(file);
  const std::string_view numbers = std::string_view{name}.substr(StartOfNames().size());
  const std::string number = Hexadecimal(IdentityOf(file));
  const bool isOurs =
      state.IsRegular() && (numbers.starts_with(number + '-') || numbers.ends_with('-' + number));
  if (!isOurs || !TryLock(file) || TryLeaseAgainstWriters(file) == LeaseAnswer::Refused) {
    return;
  }
  if (WasWrittenLast(StateOf(file)) && !numbers.starts_with(unfinished)) {
    Rescue(name);
  } else {
    Remove(name);
  }
}

void HiddenCopy::Rescue(const std::string& name) {
  constexpr int mostNames = 1000;
  for (int number = 1; number <= mostNames; ++number) {
    const std::string kept = visible_.Name + ".kept-" + std::to_string(number);
    if (RenameToFree(visible_.Folder.Number(), name, kept)) {
      rescued_.push_back(visible_.FolderPath + '/' + kept);
      return;
    }
    if (errno != EEXIST) {
      return;
    }
  }
}

// Not when somebody has it open, has changed it since, or knows it by another name. A lease can only be
// had through the only handle.
bool HiddenCopy::MayBeChanged() {
  if (!file_.IsOpen() || !isSettled_ || state_.Names != 1) {
    return false;
  }
  FileHandle writable = OpenAt(visible_.Folder.Number(), name_, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
  if (!writable.IsOpen()) {
    return false;
  }
  file_ = std::move(writable);
  if (TryLeaseAgainstAll(file_) == LeaseAnswer::Granted && StateOf(file_) == state_) {
    wasVisible_ = false;
    return true;
  }
  EndLease(file_);
  return false;
}

bool HiddenCopy::CatchUp(const SplicedText& next) {
  const ByteRange changed = next.Changed();
  const ByteRange lagBefore{lag_.From, std::min(lag_.To, changed.From)};
  const ByteRange lagBehind{std::max(lag_.From, changed.To), lag_.To};
  const auto size = static_cast<off_t>(next.Size());
  return WriteRange(next, lagBefore) && WriteRange(next, changed) && WriteRange(next, lagBehind) &&
         (state_.Size <= size || Retried([&] { return ::ftruncate(file_.Number(), size); }) == 0);
}

bool HiddenCopy::SetPermissions(unsigned int permissions) const {
  return ::fchmod(file_.Number(), permissions) == 0;
}

bool HiddenCopy::WriteRange(const SplicedText& text, ByteRange range) const {
  return text.VisitRange(
      range, [this](std::size_t offset, std::string_view bytes) { return WriteAll(file_, offset, bytes); });
}

// The time of modification is taken from the fine clock. A change by another program gets the time of a clock
// tick and so another one, even within the same tick.
bool HiddenCopy::Stamp(const Instant& former) {
  std::timespec now = TimeNow();
  if (InstantOf(now) == former) {
    now.tv_nsec = (now.tv_nsec + 1) % 1'000'000'000;
  }
  const std::array<std::timespec, 2> times{std::timespec{0, UTIME_OMIT}, now};
  if (::futimens(file_.Number(), times.data()) != 0) {
    return false;
  }
  whole_ = StateOf(file_);
  wholeIsUnique_ = whole_.Modified == InstantOf(now);
  return whole_.Exists;
}

bool HiddenCopy::Sync() const {
  return survives_ == Durability::OnFlush || Retried([this] { return ::fdatasync(file_.Number()); }) == 0;
}

}  // namespace zolvane
