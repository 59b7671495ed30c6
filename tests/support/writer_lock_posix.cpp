#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

#include "support/writer_lock.h"

namespace zolvane {

LockOfAnotherWriter::LockOfAnotherWriter(const std::string& file)
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call is declared so
    : handle_{::open(std::filesystem::path{file}.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)},
      isHeld_{::flock(static_cast<int>(handle_), LOCK_EX | LOCK_NB) == 0} {}

LockOfAnotherWriter::~LockOfAnotherWriter() {
  ::close(static_cast<int>(handle_));
}

}  // namespace zolvane
