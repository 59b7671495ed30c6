#include "instrument/simulator/instrument_server.h"
#include "text/usage_error.h"

namespace zolvane {

std::string InstrumentServer::ServePseudoTerminal(asio::io_context& /*io*/) {
  throw UsageError{"this system has no pseudo-terminals; leave --pty out and use TCP"};
}

}  // namespace zolvane
