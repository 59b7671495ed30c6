// A serial port serves one program at a time: two would get each other's replies.
#pragma once

#include <asio.hpp>
#include <system_error>

namespace zolvane {

// Keeps other programs that ask the same way off the port until it is closed. Fails
// if another has claimed it.
std::error_code ClaimSerialPort(asio::serial_port& port);

}  // namespace zolvane
