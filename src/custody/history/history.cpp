#include "custody/history/history.h"

#include <algorithm>
#include <map>
#include <utility>

#include "custody/disk/sha256.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

constexpr std::size_t identityBytes = 16;

std::string Digits(std::size_t width, long long number) {
  const auto text = std::to_string(number);
  return std::string(width - std::min(width, text.size()), '0') + text;
}

// "2026-03-14T09:26:53.589Z"
std::string TimeText(Witness::Time time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{time - day};
  return Joined(Digits(4, static_cast<int>(date.year())), "-", Digits(2, static_cast<unsigned>(date.month())),
                "-", Digits(2, static_cast<unsigned>(date.day())), "T", Digits(2, clock.hours().count()), ":",
                Digits(2, clock.minutes().count()), ":", Digits(2, clock.seconds().count()), ".",
                Digits(3, clock.subseconds().count()), "Z");
}

}  // namespace

History::History(Disk& disk, Witness& witness, const std::string& folder)
    : disk_{disk}, witness_{witness}, place_{PlaceOfHistory(folder)} {}

Status History::Fail(std::string reason) {
  failureReason_ = std::move(reason);
  return Status::Failure();
}

Status History::Passed(Status status) {
  if (!status.Ok()) {
    failureReason_ = disk_.FailureReason();
  }
  return status;
}

// ---- Reading ----

Status History::Open() {
  using State = DiskContent::State;
  const auto content = disk_.Read(place_.Journal);
  journal_ = content.Is == State::Present ? ReadJournal(content.Bytes) : Journal{};
  if (content.Is == State::Unreadable) {
    return Fail(Joined(Quoted(place_.Journal), " ", content.Reason));
  }
  if (disk_.Read(place_.Folder).Is == State::Present) {
    return Fail(Joined(Quoted(place_.Folder), " is no folder"));
  }
  if (!Exists() && journal_.Defects.empty() && HasObjects()) {
    journal_.Defects.push_back(
        {.Line = 1, .Text = "it is missing, and the objects of the history are there"});
  }
  return Status::Success();
}

Status History::OpenForRecording(const Waiting& waiting) {
  Wait wait{waiting, longestWaitForHistory};
  std::string holder;
  while (!(lock_ = disk_.Lock(place_.Folder, holder))) {
    if (holder.empty()) {
      return Fail(disk_.FailureReason());
    }
    if (!wait.GoesOn()) {
      return Fail(Joined(Quoted(place_.Folder), " is in use by ", holder));
    }
  }
  return Open();
}

std::string History::Damage() const {
  if (journal_.Defects.empty()) {
    return {};
  }
  const auto& defect = journal_.Defects.front();
  return Joined("line ", std::to_string(defect.Line), ": ", defect.Text);
}

std::vector<Operation> History::Operations() const {
  std::vector<Operation> operations;
  std::map<std::uint64_t, std::size_t> places;
  for (const auto& entry : journal_.Entries) {
    if (entry.IsEnd()) {
      operations[places.at(entry.Of)].Ended = &entry;
    } else {
      places[entry.Sequence] = operations.size();
      operations.push_back({&entry, nullptr});
    }
  }
  return operations;
}

std::optional<Checkpoint> History::LastCheckpoint() const {
  if (journal_.Hashes.empty()) {
    return std::nullopt;
  }
  return Checkpoint{journal_.Identity, journal_.Hashes.size() - 1, journal_.Hashes.back()};
}

std::optional<std::string> History::Object(std::string_view name) const {
  return ReadObject(disk_, place_, name);
}

// ---- Recording ----

std::optional<std::string> History::SetAside() {
  constexpr int mostNames = 100;
  for (int number = 1; number <= mostNames; ++number) {
    auto path = Joined(place_.Folder, ".damaged-", std::to_string(number));
    if (disk_.Rename(place_.Folder, path).Ok()) {
      journal_ = {};
      isDurable_ = false;
      return path;
    }
  }
  PassOver(Fail(disk_.FailureReason()));
  return std::nullopt;
}

Status History::PutFile(const std::string& path, std::string_view bytes) {
  return Passed(disk_.Replace(path, bytes));
}

// A folder is nothing that could be read as a file.
bool History::HasObjects() const {
  return disk_.Read(place_.Objects).Is == DiskContent::State::Unreadable;
}

// The journal lasts before there is a folder of objects: one without a journal says that somebody removed it.
Status History::MakePlace() {
  const Status status = Exists() && HasObjects()
                            ? Status::Success()
                            : Passed(disk_.MakeFolder(place_.Folder))
                                  .Then([&] { return Exists() ? Status::Success() : StartJournal(); })
                                  .Then([&] { return Passed(disk_.SyncFolder(place_.Folder)); });
  return status.Then([&] { return Passed(disk_.MakeFolder(place_.Objects)); });
}

std::optional<std::string> History::PutObject(std::string_view bytes) {
  auto name = Sha256Hex(bytes);
  if (name.empty()) {
    PassOver(Fail("the system computes no SHA-256"));
    return std::nullopt;
  }
  if (Object(name)) {
    return name;
  }
  if (auto damage = DamageOfObject(bytes); !damage.empty()) {
    PassOver(Fail(std::move(damage)));
    return std::nullopt;
  }
  const Status status = MakePlace().Then([&] { return PutFile(place_.Object(name), bytes); });
  return status.Ok() ? std::optional{std::move(name)} : std::nullopt;
}

std::string History::DamageOfObject(std::string_view bytes) const {
  const auto name = Sha256Hex(bytes);
  const bool isDamaged =
      disk_.Read(place_.Object(name)).Is == DiskContent::State::Present && !ReadObject(disk_, place_, name);
  return isDamaged ? Joined("object ", name, " does not hold what its name says") : std::string{};
}

// The next line must not be appended to a part of one.
Status History::SetTornLineAside() {
  if (!IsTorn()) {
    return Status::Success();
  }
  if (!PutObject(journal_.Torn)) {
    return Status::Failure();
  }
  const auto content = disk_.Read(place_.Journal);
  if (content.Bytes.substr(std::min(content.Bytes.size(), journal_.WholeSize)) != journal_.Torn) {
    return Fail(Joined(Quoted(place_.Journal), " was changed by another program"));
  }
  return Passed(disk_.SyncFolder(place_.Objects))
      .Then([&] { return PutFile(place_.Journal, content.Bytes.substr(0, journal_.WholeSize)); })
      .Then([&] { return Passed(disk_.SyncFolder(place_.Folder)); })
      .Then([&] {
        journal_.Torn.clear();
        return Status::Success();
      });
}

Status History::StartJournal() {
  const auto line = IdentityLine(HexOf(witness_.RandomBytes(identityBytes)));
  return PutFile(place_.Journal, line + '\n').Then([&] {
    journal_ = ReadJournal(line + '\n');
    return Status::Success();
  });
}

// What the entry speaks of lasts before it does. The names around it are made to last once: a program that
// was killed may have left them without.
Status History::MakeNamesDurable() {
  const Status status = Passed(disk_.SyncFolder(place_.Objects));
  if (!status.Ok() || isDurable_) {
    return status;
  }
  isDurable_ =
      Passed(disk_.SyncFolder(place_.Folder).Then([&] { return disk_.SyncFolder(place_.Parent); })).Ok();
  return isDurable_ ? Status::Success() : Status::Failure();
}

Status History::Prepare() {
  if (!lock_ || isBroken_ || !journal_.Defects.empty()) {
    return Fail(Joined(Quoted(place_.Journal), !lock_      ? " is not open for recording"
                                               : isBroken_ ? " could not be written before"
                                                           : " is damaged"));
  }
  return MakePlace().Then([&] { return SetTornLineAside(); }).Then([&] { return MakeNamesDurable(); });
}

// What an operation begins it has to end, and its end keeps objects: there must be room for them before.
Status History::TryObject() {
  return Passed(disk_.TryReplacing(place_.Object("trial")));
}

Status History::Append(Entry entry) {
  entry.Sequence = journal_.Hashes.size() + 1;
  entry.Previous = journal_.Hashes.back();
  const auto now = witness_.Now();
  entry.Time = TimeText(now);
  entry.Offset = witness_.Offset().count();
  entry.Machine = witness_.Machine();
  if (entry.Person.empty()) {
    entry.Person = witness_.Person();
  }
  const auto line = LineOf(entry);
  const Status status =
      Passed(disk_.Append(place_.Journal, line + '\n').Then([&] { return disk_.SyncFile(place_.Journal); }));
  isBroken_ = !status.Ok();
  if (status.Ok()) {
    journal_.Entries.push_back(std::move(entry));
    journal_.Hashes.push_back(Sha256Hex(line));
  }
  return status;
}

std::optional<std::uint64_t> History::Begin(Entry entry) {
  entry.Of = 0;
  const Status status =
      Prepare().Then([&] { return TryObject(); }).Then([&] { return Append(std::move(entry)); });
  return status.Ok() ? std::optional{journal_.Entries.back().Sequence} : std::nullopt;
}

Status History::End(std::uint64_t number, Entry entry) {
  const auto& entries = journal_.Entries;
  const auto begun = std::ranges::find(entries, number, &Entry::Sequence);
  const auto isEnd = [number](const Entry& later) { return later.Of == number; };
  if (begun == entries.end() || begun->IsEnd() || std::any_of(begun, entries.end(), isEnd)) {
    return Fail(Joined("operation ", std::to_string(number), " is not one that was begun and has not ended"));
  }
  entry.Of = number;
  return Prepare().Then([&] { return Append(std::move(entry)); });
}

}  // namespace zolvane
