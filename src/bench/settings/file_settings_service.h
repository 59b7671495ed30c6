// The settings-file service over real files. Any number of files may be in use at once; each is held in
// memory from its first use until the service is destroyed, and is read again whenever it was changed by
// somebody else.
//
// Each write is in the file, whole, when it returns. Not for use from several threads; several services, in
// one or several processes, may use the same file.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/settings/exchanged_file.h"
#include "bench/settings/sectioned_text.h"
#include "host/ini_file_service.h"
#include "host/status.h"

namespace zolvane {

class FileSettingsService : public IniFileService {
 public:
  using FileOpener = std::function<std::unique_ptr<ExchangedFile>(const std::string& path)>;

  explicit FileSettingsService(FileOpener openFile = [](const std::string& path) {
    return OpenExchangedFile(path);
  });

  // Never fails: a file that cannot be read gives the fallback.
  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override;

  // Fails, and changes nothing, when the text cannot stand in such a file (see SectionedText::PlanValue),
  // when the file cannot be read, or when it cannot be written. A value that is there already is not written
  // again.
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override;

  // An empty delimiter separates nothing.
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override;

  // Appends CR LF to the file as it is, with the safety of any other write. A missing file is created.
  Status AppendBlankLine(std::string_view file);

  // Makes everything that was written survive a power cut. Fails when that cannot be said of one of the
  // files.
  Status Flush();

 private:
  struct HeldFile {
    std::unique_ptr<ExchangedFile> Disk;
    SectionedText Text;
    FileContent::State Is = FileContent::State::Unreadable;
  };
  using Plan = std::function<std::optional<SectionedText::Edit>(const SectionedText&)>;

  HeldFile& Current(std::string_view path);
  Status Change(std::string_view path, const Plan& plan);

  FileOpener openFile_;
  std::map<std::string, HeldFile, std::less<>> files_;
};

// Why the file cannot serve as a settings file, as the end of a sentence about it ("is a folder"). Nothing
// when it can. For reading and writing the file may be missing if its folder lets it be created.
std::optional<std::string> CheckUsable(const std::string& path, FileUse use = FileUse::ReadAndWrite);

}  // namespace zolvane
