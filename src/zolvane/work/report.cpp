#include "zolvane/work/report.h"

#include <algorithm>

namespace zolvane {

// NOLINTBEGIN(misc-use-anonymous-namespace): found by argument-dependent lookup
static Json JsonOf(const Checkpoint& checkpoint) {
  return LinesOf(checkpoint);
}

static constexpr auto MembersOf(const Report*) {
  return std::tuple{Member{"command", &Report::Command, Presence::Always},
                    Member{"exit_status", &Report::ExitStatus, Presence::Always},
                    Member{"outcome", &Report::Outcome},
                    Member{"problem", &Report::Problem},
                    Member{"counts", &Report::Counts},
                    Member{"values", &Report::Values},
                    Member{"boxes", &Report::Boxes},
                    Member{"round_trip", &Report::RoundTrip},
                    Member{"objections", &Report::Objections},
                    Member{"findings", &Report::Findings},
                    Member{"checkpoint", &Report::Checkpoint}};
}
// NOLINTEND(misc-use-anonymous-namespace)

void Report::Worsen(int status) {
  ExitStatus = std::max(ExitStatus, status);
}

Json ReportJson(const Report& report) {
  Json json;
  json["schema"] = "zolvane/1";
  json.update(JsonOf(report));
  json.update(report.More);
  return json;
}

}  // namespace zolvane
