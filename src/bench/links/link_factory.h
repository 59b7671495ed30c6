// From the text behind --link to a link.
#pragma once

#include <memory>
#include <string>

#include "bench/links/bench_link.h"
#include "bench/links/interrupt_flag.h"

namespace zolvane {

// `text` is sim, sim:FILE, tcp:HOST:PORT, serial:DEVICE[,BAUD], script:FILE or none; `timeout` is how long a
// send waits for its reply, in seconds. Ports are opened by the first command, and no file is created before the
// link begins. Throws UsageError for any other text and for a file that cannot be used. The interrupt outlives
// the link.
std::shared_ptr<BenchLink> CreateLink(const std::string& text, double timeout,
                                      const InterruptFlag& interrupt);

}  // namespace zolvane
