#include "custody/disk/witness.h"

#include <random>

namespace zolvane {

Witness::Time SystemWitness::Now() {
  return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

std::string SystemWitness::RandomBytes(std::size_t count) {
  std::random_device chance;
  std::string bytes;
  while (bytes.size() < count) {
    bytes += static_cast<char>(chance() & 0xFFU);
  }
  return bytes;
}

}  // namespace zolvane
