// Any bytes as a number: reading never fails, and what is written reads back as the same text.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/conversions.h"

namespace {

void Check(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text{data, data + size};
  const double value = zolvane::LeadingNumber(text);
  Check(std::isfinite(value));
  const auto general = zolvane::GeneralText(value);
  Check(zolvane::GeneralText(zolvane::LeadingNumber(general)) == general);
  const auto strict = zolvane::StrictNumber(text);
  Check(!strict || *strict == value);
  const auto picture = zolvane::PictureText(value, zolvane::NumberPicture::Hundredths);
  Check(zolvane::StrictNumber(picture).has_value());
  Check(!picture.starts_with("-0.00"));
  (void)zolvane::StrictBoolean(text);
  return 0;
}
