#include "bench/settings/file_settings_service.h"

#include <utility>

namespace zolvane {
namespace {

// Another program would have to change the file again each time a change is about to be made.
constexpr int mostAttempts = 1000;

}  // namespace

FileSettingsService::FileSettingsService(FileOpener openFile) : openFile_{std::move(openFile)} {}

std::optional<std::string> FileSettingsService::ReadValue(std::string_view section, std::string_view key,
                                                          std::string_view file, std::string_view fallback) {
  auto value = Current(file).Text.Find(section, key);
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
    if (const Status flushed = file.Disk->Flush(); !flushed.Ok()) {
      result = flushed;
    }
  }
  return result;
}

FileSettingsService::HeldFile& FileSettingsService::Current(std::string_view path) {
  auto found = files_.find(path);
  if (found == files_.end()) {
    const std::string ownPath{path};
    found = files_.try_emplace(ownPath, HeldFile{.Disk = openFile_(ownPath), .Text = SectionedText{}}).first;
  }
  HeldFile& file = found->second;
  if (!file.Disk->IsCurrent()) {
    FileContent content = file.Disk->Read();
    file.Is = content.Is;
    if (content.Bytes != file.Text.Bytes()) {
      file.Text = SectionedText{std::move(content.Bytes)};
    }
  }
  return file;
}

Status FileSettingsService::Change(std::string_view path, const Plan& plan) {
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    HeldFile& file = Current(path);
    const auto edit = plan(file.Text);
    if (!edit || file.Is == FileContent::State::Unreadable) {
      return Status::Failure();
    }
    if (edit->Change.ChangesNothing()) {
      return Status::Success();
    }
    const WriteOutcome outcome = file.Disk->Write(file.Text.Bytes(), edit->Change);
    if (outcome == WriteOutcome::Done) {
      file.Text.Apply(*edit);
      file.Is = FileContent::State::Present;
      return Status::Success();
    }
    if (outcome == WriteOutcome::Failed) {
      return Status::Failure();
    }
  }
  return Status::Failure();
}

std::optional<std::string> CheckUsable(const std::string& path, FileUse use) {
  if (auto reason = ReasonFileIsInaccessible(path, use)) {
    return reason;
  }
  return IsUtf16(OpenExchangedFile(path)->Read().Bytes)
             ? std::optional<std::string>{"is a UTF-16 text; it has to be saved as UTF-8 or Windows-1252"}
             : std::nullopt;
}

}  // namespace zolvane
