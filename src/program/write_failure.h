// Why a write to a stream failed. The stream itself does not keep the system's reason.
#pragma once

#include <cerrno>
#include <system_error>

namespace zolvane {

// Call it right after the write; errno was 0 before it.
inline std::error_code LastWriteFailure() {
  return errno != 0 ? std::error_code{errno, std::generic_category()}
                    : std::make_error_code(std::errc::io_error);
}

// The reader has seen enough, as "head" does after ten lines, and left: nothing went wrong.
inline bool ReaderHasLeft(std::error_code failure) {
  return failure == std::errc::broken_pipe;
}

}  // namespace zolvane
