#include "instrument/links/open_failure.h"

#include <algorithm>
#include <array>
#include <asio.hpp>
#include <string_view>

namespace zolvane {
namespace {

struct Reason {
  std::error_code Code;
  std::string_view Text;
};

struct NamedCondition {
  std::errc Condition;
  std::string_view Text;
};

// Systems that open a port for one program only report that as a refused permission.
constexpr std::string_view noPermission =
    "there is no permission to open it, or it is busy with another program";

// Socket and look-up errors, whose codes differ from those of files on some systems.
std::array<Reason, 7> NetworkReasons() {
  return {{
      {asio::error::connection_refused, "the connection was refused; nobody listens there"},
      {asio::error::timed_out, "it timed out"},
      {asio::error::host_unreachable, "the host cannot be reached"},
      {asio::error::network_unreachable, "the network cannot be reached"},
      {asio::error::host_not_found, "unknown host"},
      {asio::error::host_not_found_try_again, "unknown host; no name server answers"},
      {asio::error::no_data, "unknown host"},
  }};
}

constexpr std::array<NamedCondition, 9> deviceReasons{{
    {std::errc::no_such_file_or_directory, "there is no such device"},
    {std::errc::no_such_device, "there is no such device"},
    {std::errc::no_such_device_or_address, "there is no such device"},
    {std::errc::device_or_resource_busy, "it is busy: another program has it open"},
    {std::errc::resource_unavailable_try_again, "it is busy: another program has it open"},
    {std::errc::permission_denied, noPermission},
    {std::errc::operation_not_permitted, noPermission},
    {std::errc::inappropriate_io_control_operation, "it is no serial port"},
    {std::errc::is_a_directory, "it is no serial port"},
}};

}  // namespace

std::string ReasonOf(const std::error_code& error) {
  const auto network = NetworkReasons();
  const auto* const known = std::ranges::find(network, error, &Reason::Code);
  if (known != network.end()) {
    return std::string{known->Text};
  }
  // Codes of Asio's own system category compare equal to no condition.
  const std::error_code number{error.value(), std::system_category()};
  const auto* const named =
      std::ranges::find_if(deviceReasons, [&number](const auto& row) { return number == row.Condition; });
  return named != deviceReasons.end() ? std::string{named->Text} : error.message();
}

}  // namespace zolvane
