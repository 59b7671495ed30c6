#include "files/file_settings_service.h"

#include <mutex>
#include <set>
#include <utility>

namespace zolvane {
namespace {

// Another program would have to change the file again each time a change is about to be made.
constexpr int mostAttempts = 1000;

// The files in which this process has seen content, whichever object looked: a check of the files before a
// session starts knows what its service has to expect.
class SeenFiles {
 public:
  static void Add(const std::string& path) {
    const std::lock_guard guard{Instance().mutex_};
    Instance().paths_.insert(path);
  }
  static bool Has(const std::string& path) {
    const std::lock_guard guard{Instance().mutex_};
    return Instance().paths_.contains(path);
  }
  static void Forget() {
    const std::lock_guard guard{Instance().mutex_};
    Instance().paths_.clear();
  }

 private:
  static SeenFiles& Instance() {
    static SeenFiles files;
    return files;
  }

  std::mutex mutex_;
  std::set<std::string> paths_;
};

constexpr const char* utf16Text = "it is a UTF-16 text; it has to be saved as UTF-8 or Windows-1252";

// What a file's content lacks to be used; empty when it lacks nothing.
std::string DefectOf(const FileContent& content, bool hadContent) {
  switch (content.Is) {
    case FileContent::State::Unreadable:
      return "it cannot be read";
    case FileContent::State::Missing:
      return hadContent ? "it is missing, and had content before" : "";
    case FileContent::State::Present:
      break;
  }
  if (content.Bytes.empty() && hadContent) {
    return "it is empty, and had content before";
  }
  return IsUtf16(content.Bytes) ? utf16Text : "";
}

struct Look {
  std::string Bytes;
  std::string Defect;
  bool Exists = false;
};

// A program that is just writing or replacing the file is given the time to finish, as long as `mayLookAgain`
// says. What it has written so far is better than nothing, though.
Look LookPatiently(const std::string& path, ExchangedFile& disk, const std::function<bool()>& mayLookAgain) {
  const bool hadContent = SeenFiles::Has(path);
  FileContent content = disk.Read();
  std::string defect = DefectOf(content, hadContent);
  while ((content.IsBeingWritten || (hadContent && !defect.empty())) && mayLookAgain()) {
    content = disk.Read();
    defect = DefectOf(content, hadContent);
  }
  if (!content.Bytes.empty()) {
    SeenFiles::Add(path);
  }
  return {std::move(content.Bytes), std::move(defect), content.Is != FileContent::State::Missing};
}

}  // namespace

void ForgetSeenFiles() {
  SeenFiles::Forget();
}

FileSettingsService::FileSettingsService(FileOpener openFile, Waiting waiting)
    : openFile_{std::move(openFile)}, waiting_{std::move(waiting)} {}

std::optional<std::string> FileSettingsService::ReadValue(std::string_view section, std::string_view key,
                                                          std::string_view file, std::string_view fallback) {
  const HeldFile& held = Current(file);
  if (!held.Defect.empty()) {
    failureReason_ = held.Defect;
    return std::nullopt;
  }
  auto value = held.Text.Find(section, key);
  return value ? std::move(value) : std::string{fallback};
}

Status FileSettingsService::WriteValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view value) {
  return Change(file, [&](const SectionedText& text) { return text.PlanValue(section, key, value); });
}

std::optional<std::vector<std::string>> FileSettingsService::SplitText(std::string_view delimiter,
                                                                       std::string_view text) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const auto end = delimiter.empty() ? std::string_view::npos : text.find(delimiter);
    pieces.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + delimiter.size());
  }
  return pieces;
}

Status FileSettingsService::AppendBlankLine(std::string_view file) {
  return Change(file, [](const SectionedText& text) { return text.PlanBlankLine(); });
}

Status FileSettingsService::Flush() {
  Status result = Status::Success();
  for (auto& [path, file] : files_) {
    file.MayWaitForContent = true;
    file.MayWaitToWrite = true;
    if (const Status flushed = file.Disk->Flush(); !flushed.Ok()) {
      result = flushed;
    }
  }
  return result;
}

std::vector<std::string> FileSettingsService::TakeRescued() {
  std::vector<std::string> all;
  for (auto& [path, file] : files_) {
    for (auto& rescued : file.Disk->TakeRescued()) {
      all.push_back(std::move(rescued));
    }
  }
  return all;
}

FileSettingsService::HeldFile& FileSettingsService::Held(std::string_view path) {
  auto found = files_.find(path);
  if (found == files_.end()) {
    const std::string ownPath{path};
    found = files_.try_emplace(ownPath, HeldFile{.Disk = openFile_(ownPath), .Text = SectionedText{}}).first;
  }
  return found->second;
}

FileSettingsService::HeldFile& FileSettingsService::Current(std::string_view path) {
  HeldFile& file = Held(path);
  const bool mayHaveCome = !file.Defect.empty() && file.MayWaitForContent;
  if (mayHaveCome || !file.Disk->IsCurrent()) {
    ReadAgain(std::string{path}, file);
  }
  return file;
}

void FileSettingsService::ReadAgain(const std::string& path, HeldFile& file) {
  Wait wait{waiting_, longestAbsence};
  auto look = LookPatiently(
      path, *file.Disk, [&] { return file.MayWaitForContent && (file.MayWaitForContent = wait.GoesOn()); });
  file.MayWaitForContent = file.MayWaitForContent || look.Defect.empty();
  file.Defect = std::move(look.Defect);
  if (file.Defect.empty() && look.Bytes != file.Text.Bytes()) {
    file.Text = SectionedText{std::move(look.Bytes)};
  }
}

// Does not read the file meanwhile: where an open file cannot be replaced, a reader stands in the way of the
// writer that it waits for.
WriteOutcome FileSettingsService::WritePatiently(HeldFile& file, const Splice& change) const {
  Wait unused{waiting_, longestUse};
  Wait unlocked{waiting_, longestLockedTime};
  const auto goesOn = [&](WriteOutcome outcome) {
    const bool isInUse = outcome == WriteOutcome::InUse;
    return (isInUse || outcome == WriteOutcome::Locked) && file.MayWaitToWrite &&
           (file.MayWaitToWrite = (isInUse ? unused : unlocked).GoesOn());
  };
  auto outcome = file.Disk->Write(file.Text.Bytes(), change);
  while (goesOn(outcome)) {
    outcome = file.Disk->Write(file.Text.Bytes(), change);
  }
  return outcome;
}

Status FileSettingsService::Change(std::string_view path, const Plan& plan) {
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    HeldFile& file = Current(path);
    if (!file.Defect.empty()) {
      return Fail(file.Defect);
    }
    const auto edit = plan(file.Text);
    if (!edit) {
      return Fail("such a text cannot stand in a settings file");
    }
    if (edit->Change.ChangesNothing()) {
      lostCharacters_ += edit->LostCharacters;
      return Status::Success();
    }
    switch (WritePatiently(file, edit->Change)) {
      case WriteOutcome::Done:
        file.Text.Apply(*edit);
        lostCharacters_ += edit->LostCharacters;
        file.MayWaitToWrite = true;
        SeenFiles::Add(std::string{path});
        return Status::Success();
      case WriteOutcome::Changed:
        break;
      case WriteOutcome::InUse:
        return Fail(EndOfWait("another program has it open for writing"));
      case WriteOutcome::Locked:
        return Fail(EndOfWait("another program has been holding the lock of its folder for ten seconds"));
      case WriteOutcome::Failed:
        return Fail("the disk may be full, or the file or its folder not writable");
    }
  }
  return Fail("another program keeps changing it");
}

Status FileSettingsService::Fail(std::string reason) {
  failureReason_ = std::move(reason);
  return Status::Failure();
}

std::string FileSettingsService::EndOfWait(std::string_view obstacle) const {
  return waiting_.IsUnwanted() ? "the wait for another program was interrupted" : std::string{obstacle};
}

std::optional<std::string> CheckUsable(const std::string& path, FileUse use) {
  if (auto reason = ReasonFileIsInaccessible(path, use)) {
    return reason;
  }
  const Waiting waiting;
  Wait wait{waiting, longestAbsence};
  const Look look = LookPatiently(path, *OpenExchangedFile(path), [&wait] { return wait.GoesOn(); });
  if (!look.Exists && use == FileUse::ReadOnly) {
    return "does not exist";
  }
  return look.Defect.empty() ? std::nullopt : std::optional{"cannot be used: " + look.Defect};
}

}  // namespace zolvane
