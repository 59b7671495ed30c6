#include <pwd.h>
#include <unistd.h>

#include <array>
#include <ctime>

#include "custody/disk/witness.h"

namespace zolvane {

std::chrono::minutes SystemWitness::Offset() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  return std::chrono::floor<std::chrono::minutes>(std::chrono::seconds{local.tm_gmtoff});
}

std::string SystemWitness::Person() {
  std::array<char, 4096> texts{};
  ::passwd account{};
  ::passwd* found = nullptr;
  const int failure = ::getpwuid_r(::geteuid(), &account, texts.data(), texts.size(), &found);
  return failure == 0 && found != nullptr ? found->pw_name : std::string{};
}

std::string SystemWitness::Machine() {
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : std::string{};
}

}  // namespace zolvane
