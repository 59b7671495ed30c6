#include <array>

#include "custody/disk/witness.h"
#include "win32/text.h"

namespace zolvane {

std::chrono::minutes SystemWitness::Offset() {
  TIME_ZONE_INFORMATION zone{};
  const DWORD season = ::GetTimeZoneInformation(&zone);
  const LONG shift = season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias;
  const bool hasSeasons = season == TIME_ZONE_ID_DAYLIGHT || season == TIME_ZONE_ID_STANDARD;
  return std::chrono::minutes{-(zone.Bias + (hasSeasons ? shift : 0))};
}

std::string SystemWitness::Person() {
  std::array<wchar_t, 257> name{};
  auto size = static_cast<DWORD>(name.size());
  return ::GetUserNameW(name.data(), &size) != 0 ? Utf8(name.data()) : std::string{};
}

std::string SystemWitness::Machine() {
  std::array<wchar_t, 256> name{};
  auto size = static_cast<DWORD>(name.size());
  return ::GetComputerNameExW(ComputerNameDnsHostname, name.data(), &size) != 0 ? Utf8(name.data())
                                                                                : std::string{};
}

}  // namespace zolvane
