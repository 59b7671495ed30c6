// What an ordinary user may do, also where the tests run as one who may do everything.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace zolvane {

// As a user without privileges, in a process of its own. True when `check` is.
inline bool HoldsForOrdinaryUser(const std::function<bool()>& check) {
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr unsigned nobody = 65534;
    const bool isOrdinary = ::geteuid() != 0 || (::setgid(nobody) == 0 && ::setuid(nobody) == 0);
    ::_exit(isOrdinary && check() ? 0 : 1);
  }
  int result = -1;
  ::waitpid(child, &result, 0);
  return WIFEXITED(result) && WEXITSTATUS(result) == 0;
}

}  // namespace zolvane
