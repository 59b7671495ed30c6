#include <array>

#include "custody/disk/sha256.h"
#include "win32/unique_handle.h"

#include <bcrypt.h>

namespace zolvane {
namespace {

void CloseMethod(BCRYPT_ALG_HANDLE method) {
  ::BCryptCloseAlgorithmProvider(method, 0);
}

using UniqueMethod = UniqueHandle<BCRYPT_ALG_HANDLE, CloseMethod>;
using UniqueHash = UniqueHandle<BCRYPT_HASH_HANDLE, BCryptDestroyHash>;

UniqueMethod OpenedMethod() {
  UniqueMethod method;
  ::BCryptOpenAlgorithmProvider(method.Put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0);
  return method;
}

}  // namespace

std::string Sha256Hex(std::string_view bytes) {
  static const auto method = OpenedMethod();
  // The system's functions take what they only read as if they changed it.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast,cppcoreguidelines-pro-type-reinterpret-cast)
  auto* const data = const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(bytes.data()));
  std::array<unsigned char, 32> hash{};
  UniqueHash running;
  const bool isDone =
      BCRYPT_SUCCESS(::BCryptCreateHash(method.Get(), running.Put(), nullptr, 0, nullptr, 0, 0)) &&
      BCRYPT_SUCCESS(::BCryptHashData(running.Get(), data, static_cast<ULONG>(bytes.size()), 0)) &&
      BCRYPT_SUCCESS(::BCryptFinishHash(running.Get(), hash.data(), static_cast<ULONG>(hash.size()), 0));
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are characters of either kind
  return isDone ? HexOf({reinterpret_cast<const char*>(hash.data()), hash.size()}) : std::string{};
}

}  // namespace zolvane
