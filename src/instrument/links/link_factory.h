// Makes the link that --link names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "instrument/links/bench_link.h"
#include "instrument/links/interrupt_flag.h"
#include "instrument/simulator/faults.h"

namespace zolvane {

// A kind of link, as help shows it.
struct LinkKindHelp {
  std::string_view Usage;
  std::string_view Effect;
};
std::vector<LinkKindHelp> LinkKindsHelp();

// The absolute path of the file that a link of that text keeps its memory in, or reads its script from. Nothing if it has
// none.
std::optional<std::string> FileOfLink(std::string_view text);

// `text` is one of those usages; the path of a device ("/dev/...") means a serial link. `timeout` is how long
// a send waits for its reply, in seconds. Ports are opened by the first command, and no file is created
// before the link begins. Throws UsageError for any other text, for a file that cannot be used, and for
// faults of an instrument that is not simulated here. The interrupt outlives the link.
std::shared_ptr<BenchLink> CreateLink(const std::string& text, double timeout, const InterruptFlag& interrupt,
                                      const FaultPlan& faults = {});

}  // namespace zolvane
