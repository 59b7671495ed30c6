// Another writer of settings files at work: it holds the lock that belongs to one file.
#pragma once

#include <cstdint>
#include <string>

namespace zolvane {

class LockOfAnotherWriter {
 public:
  explicit LockOfAnotherWriter(const std::string& file);
  LockOfAnotherWriter(const LockOfAnotherWriter&) = delete;
  LockOfAnotherWriter& operator=(const LockOfAnotherWriter&) = delete;
  ~LockOfAnotherWriter();

  bool IsHeld() const { return isHeld_; }

 private:
  std::intptr_t handle_;  // as the system has it
  bool isHeld_;
};

}  // namespace zolvane
