#include "instrument/simulator/instrument_memory.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

#include "files/json_file.h"
#include "files/waiting.h"
#include "text/byte_text.h"
#include "text/joined.h"
#include "text/json_text.h"
#include "text/listed.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

// ---- The document ----

constexpr std::string_view emptyDocument = "{}\n";
constexpr std::string_view documentEnd = "\n}\n";

std::string MemberText(std::string_view key, std::string_view value) {
  return Joined("\n  ", JsonText(TextOfBytes(key)), ": ", JsonText(TextOfBytes(value)));
}

void AppendMember(std::string& members, std::string_view key, std::string_view value) {
  AddListed(members, ",", MemberText(key, value));
}

// A reply of two lines would answer two commands.
std::string OneLineOf(const std::string& file, const std::string& text) {
  auto bytes = BytesOfText(text);
  if (bytes.find_first_of("\r\n") != std::string::npos) {
    throw UsageError{Joined(Printable(file), ": there is a line break in ", Quoted(text))};
  }
  return bytes;
}

}  // namespace

InstrumentMemory::InstrumentMemory(std::string file) : file_{std::move(file)} {
  if (file_.empty()) {
    return;
  }
  // Before it is read: opening a pipe could wait.
  if (const auto reason = ReasonFileIsInaccessible(file_, FileUse::ReadAndWrite)) {
    throw UsageError{Joined(Quoted(file_), " ", *reason)};
  }
  claim_ = ClaimFile(file_);
  disk_ = OpenExchangedFile(file_);
  Load();
}

InstrumentMemory::~InstrumentMemory() {
  if (outdated_ > 0 && isKept_) {
    Rewrite();
  }
}

void InstrumentMemory::Load() {
  auto content = disk_->Read();
  if (content.Is == FileContent::State::Missing) {
    return;
  }
  if (content.Is == FileContent::State::Unreadable) {
    throw UsageError{Joined(Quoted(file_), " cannot be read")};
  }
  const auto document = ParseJson(content.Bytes, file_);
  if (!document.is_object()) {
    throw UsageError{Printable(file_) + ": an instrument's memory is a JSON object of keys and their values"};
  }
  for (const auto& [key, value] : document.items()) {
    if (!value.is_string()) {
      throw UsageError{Joined(Printable(file_), ": the value of ", Quoted(key), " is not a text")};
    }
    kept_.emplace(OneLineOf(file_, key), OneLineOf(file_, value.get_ref<const std::string&>()));
  }
  values_ = kept_;
  isKept_ = true;
  document_ = std::move(content.Bytes);
}

bool InstrumentMemory::CreateFile() {
  return !disk_ || isKept_ || Rewrite();
}

void InstrumentMemory::Set(std::string_view key, std::string_view value) {
  values_.insert_or_assign(std::string{key}, std::string{value});
  unsaved_.emplace(key);
}

const std::string* InstrumentMemory::Find(std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? nullptr : &found->second;
}

bool InstrumentMemory::Save() {
  std::erase_if(unsaved_, [this](const auto& key) {
    const auto kept = kept_.find(key);
    return kept != kept_.end() && kept->second == values_.at(key);
  });
  if (unsaved_.empty() && isKept_) {
    return true;
  }
  // Outdated members never make up more than half of the document, so that tidying it costs no more than what
  // was appended since the last time.
  const bool canAppend = isKept_ && isOurLayout_ && !kept_.empty() && outdated_ <= document_.size() / 2;
  isKept_ = canAppend && Append();
  for (const auto& key : unsaved_) {
    kept_.insert_or_assign(key, values_.at(key));
  }
  unsaved_.clear();
  return !disk_ || isKept_ || Rewrite();
}

void InstrumentMemory::Restart() {
  values_ = kept_;
  unsaved_.clear();
}

// If two members have the same key, the later one counts.
bool InstrumentMemory::Append() {
  std::string members;
  for (const auto& key : unsaved_) {
    AppendMember(members, key, values_.at(key));
    if (const auto kept = kept_.find(key); kept != kept_.end()) {
      outdated_ += MemberText(key, kept->second).size();
    }
  }
  return Write({.Offset = document_.size() - documentEnd.size(), .Removed = 0, .Inserted = "," + members}) ==
         WriteOutcome::Done;
}

bool InstrumentMemory::Rewrite() {
  constexpr int mostAttempts = 10;  // against another program that writes the file at the same time
  std::string members;
  for (const auto& [key, value] : kept_) {
    AppendMember(members, key, value);
  }
  const auto document = members.empty() ? std::string{emptyDocument} : Joined("{", members, documentEnd);
  auto outcome = WriteOutcome::Changed;
  for (int attempt = 0; attempt < mostAttempts && outcome == WriteOutcome::Changed; ++attempt) {
    if (!disk_->IsCurrent()) {
      document_ = disk_->Read().Bytes;
    }
    outcome = Write({.Offset = 0, .Removed = document_.size(), .Inserted = document});
  }
  isKept_ = isOurLayout_ = outcome == WriteOutcome::Done;
  outdated_ = isKept_ ? 0 : outdated_;
  return isKept_;
}

WriteOutcome InstrumentMemory::Write(const Splice& change) {
  if (document_.size() + change.Inserted.size() > largestSettingsFile) {
    return WriteOutcome::Failed;  // it could not be loaded again
  }
  constexpr std::chrono::seconds longestWait{2};  // a reply is due
  const Waiting how;
  Wait wait{how, longestWait};
  auto outcome = disk_->Write(document_, change);
  while ((outcome == WriteOutcome::InUse || outcome == WriteOutcome::Locked) && wait.GoesOn()) {
    outcome = disk_->Write(document_, change);
  }
  if (outcome == WriteOutcome::Done) {
    document_.replace(change.Offset, change.Removed, change.Inserted);
  }
  return outcome;
}

}  // namespace zolvane
