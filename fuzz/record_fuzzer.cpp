// Any bytes as a record and as the data in one: neither is believed unless it says again what it said.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "custody/record/record.h"
#include "custody/record/record_data.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes{reinterpret_cast<const char*>(data), size};
  const auto read = zolvane::ReadRecord(bytes);
  Require(read.Content.has_value() == read.Refusal.empty());
  Require(zolvane::BytesOfBase64(zolvane::Base64Of(bytes)) == bytes);
  if (const auto content = zolvane::ContentIn(bytes)) {
    const auto written = zolvane::DataOf(*content);
    const auto again = zolvane::ContentIn(written);
    Require(again && zolvane::DataOf(*again) == written);
  }
  return 0;
}
