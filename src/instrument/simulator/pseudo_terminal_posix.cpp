#include <fcntl.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt and its companions
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

#include "instrument/simulator/instrument_server.h"
#include "instrument/simulator/stream_service.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using Descriptor = asio::posix::stream_descriptor;

[[noreturn]] void Refuse() {
  throw UsageError{"no pseudo-terminal: " + std::generic_category().message(errno)};
}

std::string OtherEndOf(Descriptor& terminal) {
  std::array<char, 256> path{};
  if (::grantpt(terminal.native_handle()) != 0 || ::unlockpt(terminal.native_handle()) != 0 ||
      ::ptsname_r(terminal.native_handle(), path.data(), path.size()) != 0) {
    Refuse();
  }
  return path.data();
}

void MakeRaw(Descriptor& terminal) {
  termios settings{};
  if (::tcgetattr(terminal.native_handle(), &settings) != 0) {
    Refuse();
  }
  ::cfmakeraw(&settings);
  if (::tcsetattr(terminal.native_handle(), TCSANOW, &settings) != 0) {
    Refuse();
  }
}

Descriptor Opened(asio::io_context& io, int descriptor) {
  if (descriptor < 0) {
    Refuse();
  }
  return Descriptor{io, descriptor};
}

// Both ends: keeping the other end open too keeps the line alive between two clients.
struct PseudoTerminal {
  explicit PseudoTerminal(asio::io_context& io)
      : Master{Opened(io, ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))},
        Path{OtherEndOf(Master)},
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system call has no other form
        Other{Opened(io, ::open(Path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))} {
    MakeRaw(Other);
  }

  Descriptor Master;
  std::string Path;
  Descriptor Other;
};

}  // namespace

std::string InstrumentServer::ServePseudoTerminal(asio::io_context& io) {
  auto terminal = std::make_shared<PseudoTerminal>(io);
  // What it works with are parameters, which live as long as it does.
  const auto serve = [](InstrumentServer& server,
                        std::shared_ptr<PseudoTerminal> line) -> asio::awaitable<void> {
    for (;;) {
      try {
        ClientWatch nobodyElseWaits;
        co_await server.ServeStream(line->Master, nobodyElseWaits);
      } catch (const std::system_error&) {
        continue;  // the line cannot be closed for one client only; the next command starts afresh
      }
    }
  };
  asio::co_spawn(io, serve(*this, terminal), asio::detached);
  return terminal->Path;
}

}  // namespace zolvane
