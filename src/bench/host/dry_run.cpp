#include "bench/host/dry_run.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <utility>

#include "config/configuration.h"
#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "files/sectioned_text.h"
#include "host/forwarding.h"
#include "host/instrument_link.h"
#include "operations/download.h"
#include "operations/file_copy.h"
#include "operations/hardware_detection.h"
#include "operations/operation_context.h"
#include "operations/upload.h"
#include "page/page_controls.h"

namespace zolvane {
namespace {

using ReadObserver = std::function<void(std::string_view section, std::string_view file)>;

class ReadOnlySettings final : public ForwardingSettings {
 public:
  explicit ReadOnlySettings(ReadObserver observe)
      : ForwardingSettings{std::make_shared<FileSettingsService>()}, observe_{std::move(observe)} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    observe_(section, file);
    return ForwardingSettings::ReadValue(section, key, file, fallback);
  }

  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return Status::Success();
  }

 private:
  ReadObserver observe_;
};

class ReadingProcess final : public HostProcess {
 public:
  explicit ReadingProcess(
      std::string folder, ReadObserver observe = [](auto, auto) {})
      : folder_{std::move(folder)}, observe_{std::move(observe)} {}

  std::string ProgramFolder() override { return folder_; }
  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return std::make_shared<ReadOnlySettings>(observe_);
  }
  Status AppendBlankLine(const std::string&) override { return Status::Success(); }
  void RunMessageLoopOnce() override {}

 private:
  std::string folder_;
  ReadObserver observe_;
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

}  // namespace

std::size_t CountCommands(const std::string& programFolder, int button) {
  const auto* const row = std::ranges::find(operationRows, button, &OperationRow::Button);
  if (row == operationRows.end()) {
    return 0;
  }
  const auto link = std::make_shared<CountingLink>();
  // NOLINTBEGIN(misc-const-correctness): the context refers to them, and the operation changes them
  ReadingProcess process{programFolder};
  ConsentingUser user;
  Configuration configuration{process};
  HostAttachment host{
      .ObjectParent = std::make_shared<LinkOnlyObject>(link), .FormParent = nullptr, .Panel = nullptr};
  AbsentPage page;
  // NOLINTEND(misc-const-correctness)
  const OperationContext context{process, user, host, configuration, page};
  row->Run(context);
  return link->Count;
}

// Copying the tables asks for the sections that count.
bool HoldsBackup(const std::string& programFolder, const std::string& file) {
  const SectionedText text{OpenExchangedFile(file)->Read().Bytes};
  bool holdsAny = false;
  ReadingProcess process{programFolder, [&](std::string_view section, std::string_view asked) {
                           holdsAny = holdsAny || (asked == file && text.HasSection(section));
                         }};
  ConsentingUser user;
  Configuration configuration{process};
  HostAttachment host{};
  AbsentPage page;
  CopyAllTables({process, user, host, configuration, page}, file, configuration.Settings.ConfigFilePath(),
                false, "");
  return holdsAny;
}

}  // namespace zolvane
