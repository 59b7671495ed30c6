// What a record says of the moment and the place it is made at: time, account, machine; and chance.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zolvane {

class Witness {
 public:
  using Time = std::chrono::sys_time<std::chrono::milliseconds>;

  Witness() = default;
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;
  virtual ~Witness() = default;

  virtual Time Now() = 0;
  virtual std::chrono::minutes Offset() = 0;  // of the local time now, from UTC
  virtual std::string Person() = 0;           // the account's name; empty if the system does not tell
  virtual std::string Machine() = 0;          // the same of the machine's
  virtual std::string RandomBytes(std::size_t count) = 0;  // that nobody can guess
};

class SystemWitness final : public Witness {
 public:
  Time Now() override;
  std::chrono::minutes Offset() override;
  std::string Person() override;
  std::string Machine() override;
  std::string RandomBytes(std::size_t count) override;
};

}  // namespace zolvane
