// Each change is written as a complete new file beside the visible one, made durable, and moved into its
// place in one step. Between the last look at the visible file and that step another program's change could
// be lost; the system offers no exchange that would show it.
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "bench/settings/exchanged_file.h"

namespace zolvane {
namespace {

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_{handle} {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() { Close(); }

  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  void Close() {
    if (IsOpen()) {
      ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
    }
  }

 private:
  HANDLE handle_;
};

// What the system tells of a path without opening the file, which costs next to nothing. Two different ones are two
// states; two equal ones may still be two files, if somebody took care to give them the same times.
struct FileLook {
  bool Exists = false;
  bool IsFolder = false;
  std::uint64_t Size = 0;
  std::uint64_t Created = 0;
  std::uint64_t Modified = 0;

  friend bool operator==(const FileLook&, const FileLook&) = default;
};

// What the system tells of an open file. Two equal ones are the same state of the same file.
struct FileState {
  FileLook Look;
  DWORD Volume = 0;
  std::uint64_t Number = 0;

  friend bool operator==(const FileState&, const FileState&) = default;
};

constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::wstring WidePath(const std::string& path) {
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()), wide.data(), size);
  return wide;
}

constexpr std::uint64_t Number64(DWORD high, DWORD low) {
  return (static_cast<std::uint64_t>(high) << 32) | low;
}

constexpr std::uint64_t Number64(const FILETIME& time) {
  return Number64(time.dwHighDateTime, time.dwLowDateTime);
}

// The two descriptions of a file that the system has call these parts the same.
template <class Description>
FileLook LookOf(const Description& file) {
  return {.Exists = true,
          .IsFolder = (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
          .Size = Number64(file.nFileSizeHigh, file.nFileSizeLow),
          .Created = Number64(file.ftCreationTime),
          .Modified = Number64(file.ftLastWriteTime)};
}

// A link is told of by itself and not by its file, so that it never looks like what was read through it.
FileLook LookAt(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA file{};
  return ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &file) != 0 ? LookOf(file) : FileLook{};
}

FileState StateOf(const FileHandle& file) {
  BY_HANDLE_FILE_INFORMATION information{};
  if (!file.IsOpen() || ::GetFileInformationByHandle(file.Get(), &information) == 0) {
    return {};
  }
  return {.Look = LookOf(information),
          .Volume = information.dwVolumeSerialNumber,
          .Number = Number64(information.nFileIndexHigh, information.nFileIndexLow)};
}

FileState StateOfPath(const std::wstring& path) {
  const FileHandle file{::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, sharedWithAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)};
  return StateOf(file);
}

// A change so recent that another one could follow under the same time stamp cannot be told from it.
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

class WindowsExchangedFile final : public ExchangedFile {
 public:
  WindowsExchangedFile(const std::string& path, const ExchangedFileOptions& options)
      : path_{WidePath(path)}, newPath_{path_ + L".bench-copy"}, options_{options} {}

  // Asked with every reading, hundreds of times while a page loads; opening the file each time takes longer than
  // all else. Before a write the file itself is compared.
  bool IsCurrent() override { return isSettled_ && LookAt(path_) == known_.Look; }
  FileContent Read() override;
  WriteOutcome Write(std::string_view text, const Splice& change) override;
  Status Flush() override;

 private:
  bool WriteNewFile(const SplicedText& next);
  bool MoveIntoPlace() const;

  std::wstring path_;
  std::wstring newPath_;
  ExchangedFileOptions options_;
  FileState known_;
  bool isSettled_ = false;
  bool isDurable_ = true;
};

FileContent WindowsExchangedFile::Read() {
  known_ = {};
  isSettled_ = false;
  const FileHandle file{::CreateFileW(path_.c_str(), GENERIC_READ, sharedWithAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr)};
  if (!file.IsOpen()) {
    isSettled_ = IsMissing(::GetLastError());
    return {isSettled_ ? FileContent::State::Missing : FileContent::State::Unreadable, {}};
  }
  const FileState before = StateOf(file);
  auto bytes = ReadAll(file.Get());
  if (!bytes) {
    return {};
  }
  known_ = before;
  isSettled_ = StateOf(file) == before && IsOldEnough(before.Look);
  return {FileContent::State::Present, std::move(*bytes)};
}

WriteOutcome WindowsExchangedFile::Write(std::string_view text, const Splice& change) {
  const bool isWritten = WriteNewFile(SplicedText{text, change});
  const bool isUnchanged = StateOfPath(path_) == known_;
  if (isWritten && isUnchanged && MoveIntoPlace()) {
    known_ = StateOfPath(path_);
    isSettled_ = IsOldEnough(known_.Look);
    isDurable_ = options_.Survives == Durability::EachWrite;
    return WriteOutcome::Done;
  }
  ::DeleteFileW(newPath_.c_str());
  isSettled_ = isSettled_ && isUnchanged;
  return isUnchanged ? WriteOutcome::Failed : WriteOutcome::Changed;
}

Status WindowsExchangedFile::Flush() {
  if (isDurable_) {
    return Status::Success();
  }
  const FileHandle file{::CreateFileW(path_.c_str(), GENERIC_WRITE, sharedWithAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr)};
  isDurable_ = file.IsOpen() && ::FlushFileBuffers(file.Get()) != 0;
  return isDurable_ ? Status::Success() : Status::Failure();
}

bool WindowsExchangedFile::WriteNewFile(const SplicedText& next) {
  FileHandle file{::CreateFileW(newPath_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_HIDDEN, nullptr)};
  const bool isWritten = file.IsOpen() && next.VisitRange({0, next.Size()}, [&file](std::size_t, auto bytes) {
    return WriteAll(file.Get(), bytes);
  });
  return isWritten && (options_.Survives == Durability::OnFlush || ::FlushFileBuffers(file.Get()) != 0);
}

// The new file was hidden until now; in its place it gets the attributes of the file that it replaces.
bool WindowsExchangedFile::MoveIntoPlace() const {
  const DWORD attributes =
      known_.Look.Exists ? ::GetFileAttributesW(path_.c_str()) : DWORD{FILE_ATTRIBUTE_NORMAL};
  return attributes != INVALID_FILE_ATTRIBUTES && ::SetFileAttributesW(newPath_.c_str(), attributes) != 0 &&
         ::MoveFileExW(newPath_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
             0;
}

}  // namespace

std::unique_ptr<ExchangedFile> OpenExchangedFile(const std::string& path,
                                                 const ExchangedFileOptions& options) {
  return std::make_unique<WindowsExchangedFile>(path, options);
}

std::optional<std::string> ReasonFileIsInaccessible(const std::string& path, FileUse use) {
  const std::wstring widePath = WidePath(path);
  const FileLook look = StateOfPath(widePath).Look;
  if (!look.Exists) {
    const std::filesystem::path folder = std::filesystem::path{widePath}.parent_path();
    const bool mayBeMade =
        use == FileUse::ReadAndWrite && (folder.empty() || StateOfPath(folder.wstring()).Look.IsFolder);
    return mayBeMade ? std::nullopt : std::optional<std::string>{"does not exist"};
  }
  if (look.IsFolder) {
    return "is a folder";
  }
  if (look.Size > largestSettingsFile) {
    return "is too large for a settings file";
  }
  const auto opens = [&widePath](DWORD access) {
    return FileHandle{::CreateFileW(widePath.c_str(), access, sharedWithAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr)}
        .IsOpen();
  };
  if (!opens(GENERIC_READ)) {
    return "cannot be read";
  }
  return use == FileUse::ReadOnly || opens(GENERIC_WRITE) ? std::nullopt
                                                          : std::optional<std::string>{"cannot be written"};
}

}  // namespace zolvane
