// A program in a process of its own, with what it prints.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "win32/unique_handle.h"

namespace zolvane {

using Arguments = std::vector<std::string>;

// What a program is started from.
enum class StartedFrom {
  Program,   // which reads what it prints
  Explorer,  // neither streams nor a console of its own; its parent is the test, which may have one
};

class ChildProcess {
 public:
  ChildProcess(const std::filesystem::path& program, const Arguments& arguments,
               StartedFrom from = StartedFrom::Program);

  // Ends it when it still runs.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  DWORD Id() const { return id_; }
  bool IsRunning() const;

  // Its exit status. Fails the test and returns nullopt if it does not end.
  std::optional<int> Wait();

  // What it has printed until now.
  std::string Output() const;
  std::string Errors() const;

 private:
  std::filesystem::path output_;
  std::filesystem::path errors_;
  DWORD id_ = 0;
  UniqueHandle<HANDLE, CloseHandle> process_;
};

// The programs of this build.
std::filesystem::path HestrionBenchPath();
std::filesystem::path ZolvaneBenchPath();
std::filesystem::path ZolvaneSimPath();

struct ProgramResult {
  std::optional<int> Status;
  std::string Output;
  std::string Errors;
};

ProgramResult RunToItsEnd(const std::filesystem::path& program, const Arguments& arguments);

// Waits until the condition holds. False when it does not in a long time.
template <class Condition>
bool Eventually(Condition condition) {
  constexpr DWORD patience = 30000;
  constexpr DWORD pause = 5;
  for (const ULONGLONG start = GetTickCount64(); GetTickCount64() - start < patience; Sleep(pause)) {
    if (condition()) {
      return true;
    }
  }
  return condition();
}

}  // namespace zolvane
