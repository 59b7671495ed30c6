#include "instrument/links/serial_claim.h"

namespace zolvane {

// Windows opens a port for one program only.
std::error_code ClaimSerialPort(asio::serial_port& /*port*/) {
  return {};
}

}  // namespace zolvane
