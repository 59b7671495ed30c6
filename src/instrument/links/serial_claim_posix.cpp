#include <sys/file.h>

#include <cerrno>

#include "instrument/links/serial_claim.h"

namespace zolvane {

// A lock on the open file ends with it, however the program ends. The terminal's own exclusive mode would
// outlive a program that crashed.
std::error_code ClaimSerialPort(asio::serial_port& port) {
  const bool isOurs = ::flock(port.native_handle(), LOCK_EX | LOCK_NB) == 0;
  return isOurs || errno != EWOULDBLOCK ? std::error_code{}
                                        : std::make_error_code(std::errc::device_or_resource_busy);
}

}  // namespace zolvane
