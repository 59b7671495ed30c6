#include "bench/host/dry_run.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "config/configuration.h"
#include "config/text.h"
#include "files/exchanged_file.h"
#include "files/sectioned_text.h"
#include "operations/download.h"
#include "operations/file_copy.h"
#include "operations/hardware_detection.h"
#include "operations/upload.h"
#include "page/page_controls.h"

namespace zolvane {
namespace {

class DryProcess final : public HostProcess {
 public:
  DryProcess(std::string folder, std::shared_ptr<IniFileService> settings)
      : folder_{std::move(folder)}, settings_{std::move(settings)} {}

  std::string ProgramFolder() override { return folder_; }
  std::shared_ptr<IniFileService> CreateIniFileService() override { return settings_; }
  Status AppendBlankLine(const std::string&) override { return Status::Success(); }
  void RunMessageLoopOnce() override {}

 private:
  std::string folder_;
  std::shared_ptr<IniFileService> settings_;
};

class ConsentingUser final : public SystemDialogues {
 public:
  std::optional<std::int32_t> ShowMessageBox(const MessageBoxRequest&) override { return message_answer::ok; }
  std::optional<std::string> ShowFileDialogue(FileDialogueKind, const FileDialogue&) override {
    return std::nullopt;
  }
};

// Knows no key, so that nothing is stored.
class CountingLink final : public InstrumentLink {
 public:
  std::size_t Count = 0;

  std::optional<bool> Stop() override { return false; }
  Status SetStop(bool) override { return Status::Success(); }
  Status SetHold(bool) override { return Status::Success(); }

  std::optional<bool> SendCommand(std::string&, std::string& reply, std::int32_t) override {
    ++Count;
    reply = syntaxErrorReply;
    return true;
  }
};

class LinkOnlyObject final : public HostObject {
 public:
  explicit LinkOnlyObject(std::shared_ptr<InstrumentLink> link) : link_{std::move(link)} {}

  std::shared_ptr<InstrumentLink> Link() override { return link_; }
  Status WriteLogLine(const std::string&) override { return Status::Success(); }
  std::optional<bool> HostDialogAvailable() override { return false; }
  std::shared_ptr<HostDialog> MessageDialog() override { return nullptr; }

 private:
  std::shared_ptr<InstrumentLink> link_;
};

class AbsentPage final : public PagePort {
 public:
  Status EnableControls(bool) override { return Status::Success(); }
  int FindListIndex(std::string_view, ListControl) const override { return 0; }
  Status SelectEntry(ListControl, int) override { return Status::Success(); }
  Status ShowPumpModule(bool) override { return Status::Success(); }
  std::int16_t ShowMessage(const std::string&, std::int16_t, const std::string&) override { return 0; }
  void LoadDefaults() override {}
};

struct OperationRow {
  int Button;
  void (*Run)(const OperationContext& context);
};

// The operations that send commands.
constexpr std::array<OperationRow, 3> operationRows{{
    {queryButton, QueryHardware},
    {uploadButton, UploadCalibration},
    {downloadButton, DownloadCalibration},
}};

// Names are the same without regard to case.
std::string PlaceOf(std::string_view section, std::string_view key, std::string_view file) {
  return UpperCase(section).append(1, '\n').append(UpperCase(key)).append(1, '\n').append(file);
}

}  // namespace

std::optional<std::string> DrySettings::ReadValue(std::string_view section, std::string_view key,
                                                  std::string_view file, std::string_view fallback) {
  observe_(section, key, file, fallback);
  if (!writes_.empty()) {
    if (const auto kept = writes_.find(PlaceOf(section, key, file)); kept != writes_.end()) {
      return kept->second.Text;
    }
  }
  return ForwardingSettings::ReadValue(section, key, file, fallback);
}

Status DrySettings::WriteValue(std::string_view section, std::string_view key, std::string_view file,
                               std::string_view value) {
  writes_[PlaceOf(section, key, file)] = {std::string{section}, std::string{key}, std::string{file},
                                          std::string{value}};
  return Status::Success();
}

void RunDry(const std::string& programFolder, std::shared_ptr<IniFileService> settings,
            std::shared_ptr<InstrumentLink> link, const DryOperation& operation) {
  // NOLINTBEGIN(misc-const-correctness): the context refers to them, and the operation changes them
  DryProcess process{programFolder, std::move(settings)};
  ConsentingUser user;
  Configuration configuration{process};
  HostAttachment host{.ObjectParent = std::make_shared<LinkOnlyObject>(std::move(link)),
                      .FormParent = nullptr,
                      .Panel = nullptr};
  AbsentPage page;
  // NOLINTEND(misc-const-correctness)
  operation({process, user, host, configuration, page});
}

std::size_t CountCommands(const std::string& programFolder, int button,
                          const FileSettingsService::FileOpener& openFile) {
  const auto* const row = std::ranges::find(operationRows, button, &OperationRow::Button);
  if (row == operationRows.end()) {
    return 0;
  }
  const auto files = std::make_shared<FileSettingsService>(openFile);
  const auto link = std::make_shared<CountingLink>();
  RunDry(programFolder, std::make_shared<DrySettings>(files), link, row->Run);
  return link->Count;
}

// Copying the tables asks for the sections that count.
bool HoldsBackup(const std::string& programFolder, const std::string& file,
                 const FileSettingsService::FileOpener& openFile) {
  const SectionedText text{openFile(file)->Read().Bytes};
  bool holdsAny = false;
  const auto observe = [&](std::string_view section, auto, std::string_view asked, auto) {
    holdsAny = holdsAny || (asked == file && text.HasSection(section));
  };
  const auto files = std::make_shared<FileSettingsService>(openFile);
  RunDry(programFolder, std::make_shared<DrySettings>(files, observe), nullptr,
         [&](const OperationContext& context) {
           CopyAllTables(context, file, context.Config.Settings.ConfigFilePath(), false, "");
         });
  return holdsAny;
}

}  // namespace zolvane
