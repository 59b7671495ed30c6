#include "bench/settings/hidden_copy_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zolvane {
namespace {

constexpr ByteRange wholeText{0, std::numeric_limits<std::size_t>::max()};

}  // namespace

bool HiddenCopy::Create(const SplicedText& text) {
  constexpr unsigned int asTheUserWants = 0666;
  return Make(asTheUserWants) && WriteRange(text, wholeText) && Stamp({}) && Sync();
}

bool HiddenCopy::Follow(const SplicedText& next, const FileHandle& visible, const FileState& visibleState) {
  if (MayBeChanged()) {
    const bool isComplete = CatchUp(next) && Stamp(visibleState.Modified);
    EndLease(file_);
    return isComplete && Sync();
  }
  Drop();
  constexpr unsigned int asYetForUsOnly = 0600;
  return Make(asYetForUsOnly) && WriteRange(next, wholeText) && GiveAttributes(visible, file_) &&
         Stamp(visibleState.Modified) && Sync();
}

FileHandle HiddenCopy::ChangePlaces(FileHandle former, const FileState& expected, ByteRange changed) {
  Unlock(file_);
  std::swap(file_, former);
  if (file_.IsOpen()) {
    state_ = StateOf(file_);
    isSettled_ = state_.IsSameAcrossExchange(expected);
    lag_ = changed;
  }
  return former;
}

void HiddenCopy::Drop() {
  if (!file_.IsOpen()) {
    return;
  }
  if (StateOfName(visible_.Folder, name_).IsSameFile(StateOf(file_))) {
    ::unlinkat(visible_.Folder.Number(), name_.c_str(), 0);
  }
  file_.Close();
}

// A long file name is cut so that its copy's name is not too long. Names that thereby become the same are
// told apart by their locks.
std::string HiddenCopy::NameOf(int number) const {
  constexpr std::size_t longestStart = 200;
  return '.' + visible_.Name.substr(0, longestStart) + ".bench-copy" +
         (number == 1 ? "" : std::to_string(number));
}

bool HiddenCopy::Make(unsigned int permissions) {
  constexpr int mostCopies = 32;
  int number = 1;
  while (number < mostCopies && RemoveLeftover(NameOf(number)) == Leftover::InUse) {
    ++number;
  }
  name_ = NameOf(number);
  file_ = OpenAt(visible_.Folder.Number(), name_, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, permissions);
  if (!file_.IsOpen()) {
    return false;
  }
  TryLock(file_);
  // The leftovers of several writers have several names.
  while (++number <= mostCopies && RemoveLeftover(NameOf(number)) != Leftover::Absent) {
  }
  return true;
}

HiddenCopy::Leftover HiddenCopy::RemoveLeftover(const std::string& name) const {
  const int folder = visible_.Folder.Number();
  const FileHandle file = OpenAt(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
  if (!file.IsOpen()) {
    return errno == ENOENT ? Leftover::Absent : Leftover::InUse;
  }
  const bool isLeftover = StateOf(file).IsRegular() && TryLock(file);
  return isLeftover && ::unlinkat(folder, name.c_str(), 0) == 0 ? Leftover::Removed : Leftover::InUse;
}

// Not when somebody has it open, has changed it since, or knows it by another name.
bool HiddenCopy::MayBeChanged() const {
  return file_.IsOpen() && isSettled_ && TryLease(file_) && StateOf(file_) == state_ && state_.Names == 1;
}

bool HiddenCopy::CatchUp(const SplicedText& next) {
  const ByteRange changed = next.Changed();
  const ByteRange lagBefore{lag_.From, std::min(lag_.To, changed.From)};
  const ByteRange lagBehind{std::max(lag_.From, changed.To), lag_.To};
  if (!WriteRange(next, lagBefore) || !WriteRange(next, changed) || !WriteRange(next, lagBehind)) {
    return false;
  }
  const auto size = static_cast<off_t>(next.Size());
  return StateOf(file_).Size == size || Retried([&] { return ::ftruncate(file_.Number(), size); }) == 0;
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
