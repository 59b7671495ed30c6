#include "operations/instrument_keys.h"

#include "config/conversions.h"

namespace zolvane {
namespace {

std::optional<std::string> VolumeInKey(double volume) {
  if (volume == 12.5) {
    return "12";
  }
  for (const double known : {30.0, 125.0, 300.0, 1250.0}) {
    if (volume == known) {
      return GeneralText(volume);
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<TipEjectKeys> TipEjectKeysOf(const HeadTypeRecord& head) {
  const auto volume = VolumeInKey(head.TipVolume);
  if (!volume) {
    return std::nullopt;
  }
  const auto ending = WholeText(head.Channels) + "Ch_" + *volume + "_S";
  return TipEjectKeys{.TipEject = "TipEject_" + ending, .AspirateOrigin = "AspirateOrigin_" + ending};
}

}  // namespace zolvane
