// Each change is written as a complete new file beside the visible one, made durable, and moved into its
// place in one step: ReplaceFile would keep the access list by itself, but takes two steps, and a crash
// between them leaves no file under the name. So the new file gets what the old one has.
//
// The system refuses to replace a file that a program has open, and refuses to open one for reading without
// sharing writes while a program writes. The first guards the file until the step is done; the second shows
// that somebody writes. Only a program that opens the file, writes and closes it between the last look and
// the step goes unnoticed; no exchange that the system offers would show it.
//
// Writers of this kind exclude each other by an empty file that only one of them can have open. It goes away
// with its handle, even if the program is killed.
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <utility>
#include <vector>

#include "files/exchanged_file.h"
#include "win32/file.h"
#include "win32/text.h"

namespace zolvane {
namespace {

// What the system says about a path without opening the file, which costs next to nothing. If two
// of these differ, so do the states of the file. Two equal ones may still be two files, if someone
// gave them the same times.
struct FileLook {
  bool Exists = false;
  bool IsFolder = false;
  std::uint64_t Size = 0;
  std::uint64_t Created = 0;
  std::uint64_t Modified = 0;

  friend bool operator==(const FileLook&, const FileLook&) = default;
};

// What the system says about an open file. Two equal ones are the same state of the same file.
struct FileState {
  FileLook Look;
  DWORD Volume = 0;
  std::uint64_t Number = 0;

  friend bool operator==(const FileState&, const FileState&) = default;
};

// No user's file is both hidden and the system's.
constexpr DWORD ourMark = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

constexpr std::uint64_t Number64(DWORD high, DWORD low) {
  return (static_cast<std::uint64_t>(high) << 32) | low;
}

constexpr std::uint64_t Number64(const FILETIME& time) {
  return Number64(time.dwHighDateTime, time.dwLowDateTime);
}

// The system's two descriptions of a file have the same names for these parts.
template <class Description>
FileLook LookOf(const Description& file) {
  return {.Exists = true,
          .IsFolder = (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
          .Size = Number64(file.nFileSizeHigh, file.nFileSizeLow),
          .Created = Number64(file.ftCreationTime),
          .Modified = Number64(file.ftLastWriteTime)};
}

// Describes a link itself, not its target, so that it never looks like what was read through it.
FileLook LookAt(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA file{};
  return ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &file) != 0 ? LookOf(file) : FileLook{};
}

FileState StateOf(const UniqueKernelHandle& file) {
  BY_HANDLE_FILE_INFORMATION information{};
  if (!file || ::GetFileInformationByHandle(file.Get(), &information) == 0) {
    return {};
  }
  return {.Look = LookOf(information),
          .Volume = information.dwVolumeSerialNumber,
          .Number = Number64(information.nFileIndexHigh, information.nFileIndexLow)};
}

FileState StateOfPath(const std::wstring& path) {
  const auto file =
      OpenedFile(path, FILE_READ_ATTRIBUTES, sharedWithAll, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  return StateOf(file);
}

// Another change right after a recent one could have the same time stamp.
bool IsOldEnough(const FileLook& look) {
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  constexpr std::uint64_t hundredMilliseconds = 1'000'000;
  return Number64(now) > look.Modified + hundredMilliseconds;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
  constexpr std::size_t largestStep = std::size_t{1} << 20;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto step = static_cast<DWORD>(std::min(bytes.size(), largestStep));
    if (::WriteFile(file, bytes.data(), step, &written, nullptr) == 0 || written == 0) {
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

std::optional<std::string> ReadAll(HANDLE file) {
  std::string bytes;
  constexpr DWORD step = DWORD{1} << 16;
  while (bytes.size() <= largestSettingsFile) {
    const std::size_t size = bytes.size();
    bytes.resize(size + step);
    DWORD count = 0;
    if (::ReadFile(file, bytes.data() + size, step, &count, nullptr) == 0) {
      return std::nullopt;
    }
    bytes.resize(size + count);
    if (count == 0) {
      return bytes;
    }
  }
  return std::nullopt;
}

bool IsMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

bool IsMarkedAsOurs(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & ourMark) == ourMark;
}

// The system refuses a reader that does not share writing while a program writes.
bool IsOpenForWriting(const std::wstring& path) {
  const auto file = OpenedFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING);
  return !file && ::GetLastError() == ERROR_SHARING_VIOLATION;
}

// Who may do what with the file, as the system describes it.
std::optional<std::vector<std::byte>> AccessListOf(const std::wstring& path) {
  DWORD size = 0;
  ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> list(size);
  const bool isRead =
      ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, list.data(), size, &size) != 0;
  return isRead ? std::optional{std::move(list)} : std::nullopt;
}

// Usually both inherit theirs from the folder. A file system without such lists does not let them be set.
bool GiveAccessList(const std::wstring& from, const std::wstring& to) {
  auto list = AccessListOf(from);
  return list && (AccessListOf(to) == list ||
                  ::SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, list->data()) != 0);
}

// Held by one writer at a time, from its construction until its end.
class WriterLock {
 public:
  explicit WriterLock(const std::wstring& path)
      : file_{Open(path, CREATE_NEW, ourMark | FILE_FLAG_DELETE_ON_CLOSE)} {
    if (file_) {
      return;
    }
    const DWORD error = ::GetLastError();
    // A file that is just being removed is refused in the same way as one in a folder
    // where nothing may be made.
    isThere_ = error == ERROR_FILE_EXISTS || (error == ERROR_ACCESS_DENIED &&
                                              ::GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES &&
                                              !IsMissing(::GetLastError()));
    if (isThere_) {
      // Left behind by a power cut, or a user's own: it then serves as it is, and stays.
      file_ = Open(path, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    }
  }

  bool IsHeld() const { return static_cast<bool>(file_); }

  bool IsHeldElsewhere() const { return isThere_; }

 private:
  static UniqueKernelHandle Open(const std::wstring& path, DWORD disposition, DWORD flags) {
    return OpenedFile(path, GENERIC_READ | DELETE, 0, disposition, flags);
  }

  UniqueKernelHandle file_;
  bool isThere_ = false;
};

class WindowsExchangedFile final : public ExchangedFile {
 public:
  WindowsExchangedFile(const std::string& path, const ExchangedFileOptions& options)
      : path_{Wide(path)}, options_{options} {}

  // Asked before every read, hundreds of times while a page loads; opening the file each time would take
  // longer than everything else. Before a write the file itself is compared.
  bool IsCurrent() override { return isSettled_ && LookAt(path_) == known_.Look; }
  FileContent Read() override;
  WriteOutcome Write(std::string_view text, const Splice& change) override;
  Status Flush() override;

 private:
  bool IsNameable() const { return !path_.empty() && path_.find(L'\0') == std::wstring::npos; }
  bool Holds(std::string_view text) const;
  bool ChooseNewPath();
  bool MakeNewFile() const;
  bool WriteNewFile(const SplicedText& next) const;
  WriteOutcome MoveIntoPlace() const;
  bool GiveProperties() const;
  WriteOutcome Exchange(std::string_view text, const SplicedText& next);

  std::wstring path_;
  std::wstring newPath_;  // of the file that is to take the place
  ExchangedFileOptions options_;
  FileState known_;
  bool isSettled_ = false;
  bool isDurable_ = true;
};

FileContent WindowsExchangedFile::Read() {
  known_ = {};
  isSettled_ = false;
  if (path_.find(L'\0') != std::wstring::npos) {
    return {};
  }
  const auto file = OpenedFile(path_, GENERIC_READ, sharedWithAll, OPEN_EXISTING);
  if (!file) {
    const DWORD error = ::GetLastError();
    isSettled_ = IsMissing(error);
    return {.Is = isSettled_ ? FileContent::State::Missing : FileContent::State::Unreadable,
            .Bytes = {},
            .IsBeingWritten = error == ERROR_SHARING_VIOLATION};
  }
  const FileState before = StateOf(file);
  auto bytes = ReadAll(file.Get());
  if (!bytes) {
    return {};
  }
  const bool isBeingWritten = IsOpenForWriting(path_);
  known_ = before;
  isSettled_ = !isBeingWritten && StateOf(file) == before && IsOldEnough(before.Look);
  return {FileContent::State::Present, std::move(*bytes), isBeingWritten};
}

WriteOutcome WindowsExchangedFile::Write(std::string_view text, const Splice& change) {
  if (!IsNameable()) {
    return WriteOutcome::Failed;
  }
  const WriterLock lock{path_ + L".bench-lock"};
  if (!lock.IsHeld()) {
    return lock.IsHeldElsewhere() ? WriteOutcome::Locked : WriteOutcome::Failed;
  }
  const WriteOutcome outcome = Exchange(text, SplicedText{text, change});
  if (outcome == WriteOutcome::Done) {
    known_ = StateOfPath(path_);
    isSettled_ = IsOldEnough(known_.Look);
    isDurable_ = options_.Survives == Durability::EachWrite;
  } else if (outcome == WriteOutcome::Changed) {
    isSettled_ = false;
  }
  return outcome;
}

WriteOutcome WindowsExchangedFile::Exchange(std::string_view text, const SplicedText& next) {
  if (IsOpenForWriting(path_)) {
    return WriteOutcome::InUse;
  }
  if (StateOfPath(path_) != known_ || !Holds(text)) {
    return WriteOutcome::Changed;
  }
  if (!ChooseNewPath() || !MakeNewFile()) {
    return WriteOutcome::Failed;
  }
  WriteOutcome outcome = WriteNewFile(next) ? WriteOutcome::Done : WriteOutcome::Failed;
  if (StateOfPath(path_) != known_) {
    outcome = WriteOutcome::Changed;
  }
  if (outcome == WriteOutcome::Done) {
    outcome = MoveIntoPlace();
  }
  if (outcome != WriteOutcome::Done) {
    ::DeleteFileW(newPath_.c_str());
  }
  return outcome;
}

// A settled file that still looks the same also holds the same bytes.
bool WindowsExchangedFile::Holds(std::string_view text) const {
  if (isSettled_ || !known_.Look.Exists) {
    return true;
  }
  const auto file = OpenedFile(path_, GENERIC_READ, sharedWithAll, OPEN_EXISTING);
  return file && ReadAll(file.Get()) == text;
}

Status WindowsExchangedFile::Flush() {
  if (isDurable_) {
    return Status::Success();
  }
  const auto file = OpenedFile(path_, GENERIC_WRITE, sharedWithAll, OPEN_EXISTING);
  isDurable_ = file && ::FlushFileBuffers(file.Get()) != 0;
  return isDurable_ ? Status::Success() : Status::Failure();
}

// The first free name. What a killed program of this kind has left under one of them is removed.
bool WindowsExchangedFile::ChooseNewPath() {
  constexpr int mostNames = 100;
  for (int number = 1; number <= mostNames; ++number) {
    newPath_ = path_ + L".bench-copy" + (number == 1 ? L"" : std::to_wstring(number));
    if (IsMarkedAsOurs(newPath_)) {
      ::SetFileAttributesW(newPath_.c_str(), FILE_ATTRIBUTE_NORMAL);
      ::DeleteFileW(newPath_.c_str());
    }
    if (!LookAt(newPath_).Exists) {
      return true;
    }
  }
  return false;
}

// As a copy, with the file's named streams and attributes; its bytes are then written anew.
bool WindowsExchangedFile::MakeNewFile() const {
  constexpr BOOL failsIfThere = TRUE;
  const bool isMade = known_.Look.Exists
                          ? ::CopyFileW(path_.c_str(), newPath_.c_str(), failsIfThere) != 0
                          : static_cast<bool>(OpenedFile(newPath_, GENERIC_WRITE, 0, CREATE_NEW));
  return isMade && ::SetFileAttributesW(newPath_.c_str(), ourMark) != 0;
}

bool WindowsExchangedFile::WriteNewFile(const SplicedText& next) const {
  const auto file = OpenedFile(newPath_, GENERIC_WRITE, 0, OPEN_EXISTING);
  const bool isWritten = file && next.VisitRange({0, next.Size()}, [&file](std::size_t, auto bytes) {
    return WriteAll(file.Get(), bytes);
  });
  return isWritten && ::SetEndOfFile(file.Get()) != 0 &&
         (options_.Survives == Durability::OnFlush || ::FlushFileBuffers(file.Get()) != 0);
}

// The new file was marked until now; it gets the attributes of the file that it replaces.
bool WindowsExchangedFile::GiveProperties() const {
  const DWORD attributes =
      known_.Look.Exists ? ::GetFileAttributesW(path_.c_str()) : DWORD{FILE_ATTRIBUTE_NORMAL};
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0 &&
         (!known_.Look.Exists || GiveAccessList(path_, newPath_)) &&
         ::SetFileAttributesW(newPath_.c_str(), attributes) != 0;
}

WriteOutcome WindowsExchangedFile::MoveIntoPlace() const {
  if (!GiveProperties()) {
    return WriteOutcome::Failed;
  }
  const DWORD replacing = known_.Look.Exists ? MOVEFILE_REPLACE_EXISTING : 0;
  if (::MoveFileExW(newPath_.c_str(), path_.c_str(), replacing | MOVEFILE_WRITE_THROUGH) != 0) {
    return WriteOutcome::Done;
  }
  switch (::GetLastError()) {
    case ERROR_ACCESS_DENIED:  // so it says of a file that somebody has open, were it only to read it
    case ERROR_SHARING_VIOLATION:
      return WriteOutcome::InUse;
    case ERROR_ALREADY_EXISTS:
      return WriteOutcome::Changed;
    default:
      return WriteOutcome::Failed;
  }
}

std::optional<std::string> ReasonAgainstMaking(const std::wstring& path, FileUse use) {
  const std::filesystem::path folder = std::filesystem::path{path}.parent_path();
  const FileLook look =
      folder.empty() ? FileLook{.Exists = true, .IsFolder = true} : StateOfPath(folder.wstring()).Look;
  if (look.Exists && !look.IsFolder) {
    return "cannot be reached";
  }
  if (use == FileUse::ReadOnly) {
    return "does not exist";
  }
  return look.Exists ? std::nullopt : std::optional<std::string>{"is in a folder that does not exist"};
}

}  // namespace

std::unique_ptr<ExchangedFile> OpenExchangedFile(const std::string& path,
                                                 const ExchangedFileOptions& options) {
  return std::make_unique<WindowsExchangedFile>(path, options);
}

std::optional<std::string> ReasonFileIsInaccessible(const std::string& path, FileUse use) {
  const std::wstring widePath = Wide(path);
  const FileLook look = StateOfPath(widePath).Look;
  if (!look.Exists) {
    return ReasonAgainstMaking(widePath, use);
  }
  if (look.IsFolder) {
    return "is a folder";
  }
  if (look.Size > largestSettingsFile) {
    return "is too large for a settings file";
  }
  const auto opens = [&widePath](DWORD access) {
    return static_cast<bool>(OpenedFile(widePath, access, sharedWithAll, OPEN_EXISTING));
  };
  if (!opens(GENERIC_READ)) {
    return "cannot be read";
  }
  return use == FileUse::ReadOnly || opens(GENERIC_WRITE) ? std::nullopt
                                                          : std::optional<std::string>{"cannot be written"};
}

}  // namespace zolvane
