// Any bytes as a number: reading never fails, and what is written reads back as the same text.
#include <cmath>
#include <cstdint>
#include <string>

#include "config/conversions.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text{data, data + size};
  const double value = zolvane::LeadingNumber(text);
  Require(std::isfinite(value));
  const auto general = zolvane::GeneralText(value);
  Require(zolvane::GeneralText(zolvane::LeadingNumber(general)) == general);
  const auto strict = zolvane::StrictNumber(text);
  Require(!strict || *strict == value);
  const auto picture = zolvane::PictureText(value, zolvane::NumberPicture::Hundredths);
  Require(zolvane::StrictNumber(picture).has_value());
  Require(!picture.starts_with("-0.00"));
  (void)zolvane::StrictBoolean(text);
  return 0;
}
