#include <algorithm>
#include <system_error>

#include "custody/disk/disk.h"
#include "files/paths.h"
#include "win32/file.h"

namespace zolvane {
namespace {

UniqueKernelHandle OpenedForAppending(const std::string& path) {
  return OpenedFile(PathOf(path).native(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, FILE_SHARE_READ,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT);
}

bool IsLink(const UniqueKernelHandle& file) {
  BY_HANDLE_FILE_INFORMATION information{};
  return ::GetFileInformationByHandle(file.Get(), &information) == 0 ||
         (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool WriteBytes(const UniqueKernelHandle& file, std::string_view bytes) {
  constexpr std::size_t largestStep = std::size_t{1} << 20;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto step = static_cast<DWORD>(std::min(bytes.size(), largestStep));
    if (::WriteFile(file.Get(), bytes.data(), step, &written, nullptr) == 0 || written == 0) {
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

}  // namespace

Status SystemDisk::FailAsTheSystemSays(const std::string& path, std::string_view what) {
  const auto reason = static_cast<int>(::GetLastError());
  return Fail(path, std::string{what} + ": " + std::system_category().message(reason));
}

Status SystemDisk::Create(const std::string& path, std::string_view bytes) {
  {
    const auto file = OpenedFile(PathOf(path).native(), GENERIC_WRITE, 0, CREATE_NEW);
    if (!file) {
      return FailAsTheSystemSays(path, "cannot be made");
    }
    if (WriteBytes(file, bytes)) {
      return Status::Success();
    }
    PassOver(FailAsTheSystemSays(path, "cannot be written"));
  }
  ::DeleteFileW(PathOf(path).native().c_str());
  return Status::Failure();
}

Status SystemDisk::Append(const std::string& path, std::string_view bytes) {
  const auto file = OpenedForAppending(path);
  if (!file) {
    return FailAsTheSystemSays(path, "cannot be written");
  }
  if (IsLink(file)) {
    return Fail(path, "is not an ordinary file");
  }
  return WriteBytes(file, bytes) ? Status::Success() : FailAsTheSystemSays(path, "cannot be written");
}

Status SystemDisk::SyncFile(const std::string& path) {
  const auto file = OpenedForAppending(path);
  return file && ::FlushFileBuffers(file.Get()) != 0
             ? Status::Success()
             : FailAsTheSystemSays(path, "cannot be flushed to the disk");
}

// The system keeps a log of the changes of names, in their order, and writes it with each file that is
// flushed and each renaming that asks for it. Where a folder can be flushed as well, it is.
Status SystemDisk::SyncFolder(const std::string& path) {
  const auto folder = OpenedFile(PathOf(path).native(), GENERIC_WRITE, sharedWithAll, OPEN_EXISTING,
                                 FILE_FLAG_BACKUP_SEMANTICS);
  if (folder) {
    ::FlushFileBuffers(folder.Get());
  }
  return Status::Success();
}

Status SystemDisk::Rename(const std::string& from, const std::string& to) {
  return ::MoveFileExW(PathOf(from).native().c_str(), PathOf(to).native().c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0
             ? Status::Success()
             : FailAsTheSystemSays(from, "cannot be renamed");
}

}  // namespace zolvane
