#include <openssl/evp.h>

#include <array>
#include <memory>

#include "custody/disk/sha256.h"

namespace zolvane {

std::string Sha256Hex(std::string_view bytes) {
  // To look the method up anew for each text would take longer than most texts.
  static const std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)> method{
      EVP_MD_fetch(nullptr, "SHA256", nullptr), &EVP_MD_free};
  std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
  unsigned int size = 0;
  if (!method || EVP_Digest(bytes.data(), bytes.size(), hash.data(), &size, method.get(), nullptr) != 1) {
    return {};
  }
  return HexOf(std::string{hash.begin(), hash.begin() + size});
}

}  // namespace zolvane
