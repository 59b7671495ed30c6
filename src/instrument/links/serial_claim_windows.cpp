#include "instrument/links/serial_claim.h"

namespace zolvane {

// A port is opened for one program alone here.
std::error_code ClaimSerialPort(asio::serial_port& /*port*/) {
  return {};
}

}  // namespace zolvane
