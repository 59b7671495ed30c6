// Any bytes as kept values: what is believed of them is what they say, to the letter.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "custody/values/values_json.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes{reinterpret_cast<const char*>(data), size};
  if (const auto values = zolvane::ValuesIn(bytes)) {
    Require(zolvane::ValuesText(*values) == bytes);
    Require(zolvane::Compare(*values, *values).Different == 0);
  }
  const auto half = size / 2;
  const auto left = bytes.substr(0, half);
  const auto right = bytes.substr(half);
  Require(zolvane::SameText(left, right) == zolvane::SameText(right, left));
  Require(zolvane::SameText(left, left));
  return 0;
}
