// Any bytes as a settings file, and the first two lines of them as a section and a key: what is found is what
// the plain rules find, and a value that was written is read back.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "files/reference_settings.h"
#include "files/sectioned_text.h"
#include "require.h"

namespace {

using zolvane::ReferenceSettings;
using zolvane::SectionedText;

std::string_view TakeLine(std::string_view& bytes) {
  const std::string_view line = bytes.substr(0, bytes.find('\n'));
  bytes.remove_prefix(line.size() == bytes.size() ? line.size() : line.size() + 1);
  return line;
}

void WriteAndReadBack(SectionedText& text, std::string_view section, std::string_view key) {
  if (const auto edit = text.PlanValue(section, key, "12")) {
    text.Apply(*edit);
    Require(text.Find(section, key) == "12" && SectionedText{text.Bytes()}.Find(section, key) == "12");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes{data, data + size};
  std::string_view rest{bytes};
  const std::string_view section = TakeLine(rest);
  const std::string_view key = TakeLine(rest);
  SectionedText text{std::string{rest}};
  Require(text.Find(section, key) == ReferenceSettings{std::string{rest}}.Read(section, key));
  WriteAndReadBack(text, section, key);
  WriteAndReadBack(text, "HeadType", "Installed");
  return 0;
}
