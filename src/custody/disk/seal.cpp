#include "custody/disk/seal.h"

#include <algorithm>
#include <cstddef>

#include "custody/disk/sha256.h"
#include "text/joined.h"

namespace zolvane {
namespace {

std::size_t SizeOf(const SealForm& form) {
  return form.Before.size() + sha256HexLength + form.Behind.size();
}

std::string_view SealIn(std::string_view sealed, const SealForm& form) {
  const auto seal = sealed.substr(sealed.size() - std::min(sealed.size(), SizeOf(form)));
  return seal.starts_with(form.Before) && seal.ends_with(form.Behind) ? seal : std::string_view{};
}

}  // namespace

std::string SealOf(std::string_view bytes, const SealForm& form) {
  return Joined(form.Before, Sha256Hex(bytes), form.Behind);
}

SealState StateOfSeal(std::string_view sealed, const SealForm& form) {
  const auto seal = SealIn(sealed, form);
  if (seal.empty()) {
    return SealState::Missing;
  }
  return seal == SealOf(WithoutSeal(sealed, form), form) ? SealState::Whole : SealState::Broken;
}

std::string_view WithoutSeal(std::string_view sealed, const SealForm& form) {
  const auto size = SealIn(sealed, form).size();
  return size == 0 ? std::string_view{} : sealed.substr(0, sealed.size() - size);
}

}  // namespace zolvane
