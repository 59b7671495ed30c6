// The settings-file service over real files. Any number of files may be in use at once; each is held
// in memory from its first use until the service is destroyed, and is read again whenever it was
// changed by somebody else.
//
// Each write is in the file, whole, when it returns. Not for use from several threads; several services, in
// one or several processes, may use the same file.
//
// A file in which this process has seen content does not become an empty one because it is missing, empty or
// unreadable at the moment: another program is about to replace it, or something is wrong. The service looks
// again for `longestAbsence`. If that does not help, reads and writes fail until a later look finds content;
// they wait no more until Flush has ended the operation.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/exchanged_file.h"
#include "files/sectioned_text.h"
#include "files/waiting.h"
#include "host/ini_file_service.h"
#include "host/status.h"

namespace zolvane {

inline constexpr std::chrono::seconds longestAbsence{2};  // of a file that had content
inline constexpr std::chrono::seconds longestUse{2};      // by a program that has the file open for writing
inline constexpr std::chrono::seconds longestLockedTime{10};  // by another writer of this kind

class FileSettingsService : public IniFileService {
 public:
  using FileOpener = std::function<std::unique_ptr<ExchangedFile>(const std::string& path)>;

  static std::unique_ptr<ExchangedFile> OpenFile(const std::string& path) { return OpenExchangedFile(path); }

  explicit FileSettingsService(FileOpener openFile = OpenFile, Waiting waiting = {});

  // A file that does not exist, or is empty, from the start gives the fallback. Fails
  // when the file cannot be read.
  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override;

  // Fails, and changes nothing, when the text cannot stand in such a file (see SectionedText::PlanValue),
  // when the file cannot be read, when other programs stand in the way for too long, or when it cannot be
  // written. Once a file was waited for in vain, no write into it waits again until one succeeds or Flush has
  // ended the operation. A value that is there already is not written again.
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override;

  // An empty delimiter separates nothing.
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override;

  // Appends CR LF to the file as it is, with the safety of any other write. A missing file is created.
  Status AppendBlankLine(std::string_view file);

  // Ends an operation: makes everything that was written survive a power cut. Fails when that cannot be
  // said of one of the files.
  Status Flush();

  // Why the last call that failed did, as a clause ("another program has it open for writing").
  const std::string& FailureReason() const { return failureReason_; }

  // How many characters were written as "?" since the last call, because the encoding of a file lacks them.
  std::size_t TakeLostCharacters() { return std::exchange(lostCharacters_, 0); }

  // See ExchangedFile::TakeRescued.
  std::vector<std::string> TakeRescued();

 private:
  struct HeldFile {
    std::unique_ptr<ExchangedFile> Disk;
    SectionedText Text;
    std::string Defect = "it was never read";  // why it cannot be used; empty when it can
    bool MayWaitForContent = true;             // once in an operation is enough
    bool MayWaitToWrite = true;                // the same
  };
  using Plan = std::function<std::optional<SectionedText::Edit>(const SectionedText&)>;

  HeldFile& Current(std::string_view path);
  HeldFile& Held(std::string_view path);
  void ReadAgain(const std::string& path, HeldFile& file);
  WriteOutcome WritePatiently(HeldFile& file, const Splice& change) const;
  Status Change(std::string_view path, const Plan& plan);
  Status Fail(std::string reason);
  std::string EndOfWait(std::string_view obstacle) const;

  FileOpener openFile_;
  Waiting waiting_;
  std::map<std::string, HeldFile, std::less<>> files_;
  std::string failureReason_;
  std::size_t lostCharacters_ = 0;
};

// In which files there was content is known to the whole process: a check before a session knows it for the
// session's service. Where a process plays one host after the other, the end of each forgets it.
void ForgetSeenFiles();

// Why the file cannot serve as a settings file, as the end of a sentence about it ("is a folder"). Nothing
// when it can. For reading and writing the file may be missing if its folder lets it be created.
std::optional<std::string> CheckUsable(const std::string& path, FileUse use = FileUse::ReadAndWrite);

}  // namespace zolvane
