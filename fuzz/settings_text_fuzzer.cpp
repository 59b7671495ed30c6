// Any bytes as a settings file: a value that was written is read back.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "bench/settings/sectioned_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zolvane::SectionedText;
  const std::string bytes{data, data + size};
  SectionedText text{bytes};
  const auto edit = text.PlanValue("HeadType", "Installed", "12");
  if (!edit) {
    return 0;  // a file of 16-bit units
  }
  text.Apply(*edit);
  const SectionedText again{text.Bytes()};
  if (text.Find("HeadType", "Installed") != "12" || again.Find("HEADTYPE", "installed") != "12") {
    std::abort();
  }
  return 0;
}
