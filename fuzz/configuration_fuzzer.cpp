// Any bytes as a configuration, and what stands behind their first NUL as a backup: both faces of either, their
// differences, and what `check` finds. Each finding stands on a line that is there.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "custody/findings/findings.h"
#include "custody/values/descriptions.h"
#include "custody/values/sides.h"
#include "require.h"

namespace {

void RequireLines(const std::vector<zolvane::Finding>& findings, const std::string& bytes) {
  // A line ends in "\r\n", "\n" or "\r".
  const auto lines = 1 + std::ranges::count(bytes, '\n') + std::ranges::count(bytes, '\r');
  for (const auto& finding : findings) {
    Require(finding.Line <= static_cast<std::size_t>(lines));
    Require(!finding.Code.empty() && !finding.Text.empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes{data, data + size};
  const auto configuration = bytes.substr(0, bytes.find('\0'));
  const auto backup = bytes.substr(std::min(bytes.size(), configuration.size() + 1));
  const auto face = zolvane::WireFaceOfFile(configuration);
  Require(face.Problem.empty() || face.Lines.InOrder().empty());
  const zolvane::Descriptions descriptions{face};
  const auto file = zolvane::FileFace(configuration);
  for (const auto* values : {&file, &face.Lines}) {
    Require(zolvane::Compare(*values, *values).Differences.empty());
    for (const auto& value : values->InOrder()) {
      static_cast<void>(descriptions.Measure(value.Name, value.Text.value_or("")));
    }
  }
  RequireLines(zolvane::CheckConfiguration(configuration, "Zolvane.ini"), configuration);
  RequireLines(zolvane::CheckBackup(backup, "Zolvane.bak", configuration), backup);
  const auto imported = zolvane::WireFaceOfBackup(configuration, backup);
  Require(imported.Problem.empty() || imported.Lines.InOrder().empty());
  return 0;
}
