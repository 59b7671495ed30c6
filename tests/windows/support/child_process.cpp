#include "windows/support/child_process.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "win32/text.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

constexpr DWORD processPatience = 60000;

UniqueKernelHandle InheritedFile(const std::filesystem::path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
  return UniqueKernelHandle{CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
}

// No argument of these tests holds a quote or ends in a backslash.
std::wstring CommandLine(const std::filesystem::path& program, const Arguments& arguments) {
  std::wstring line = L"\"" + program.wstring() + L"\"";
  for (const auto& argument : arguments) {
    line += L" \"" + Wide(argument) + L"\"";
  }
  return line;
}

std::filesystem::path FileForStream(const char* name) {
  static int count = 0;
  return ProgramFolder::OfThisRun().Path().parent_path() /
         ("zolvane-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) + name);
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& program, const Arguments& arguments, StartedFrom from)
    : output_{FileForStream(".out")}, errors_{FileForStream(".err")} {
  const UniqueKernelHandle output = InheritedFile(output_);
  const UniqueKernelHandle errors = InheritedFile(errors_);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  if (from == StartedFrom::Program) {
    start.hStdOutput = output.Get();
    start.hStdError = errors.Get();
  }
  const DWORD flags = from == StartedFrom::Explorer ? DETACHED_PROCESS : 0;
  PROCESS_INFORMATION made{};
  auto line = CommandLine(program, arguments);
  if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start,
                      &made)) {
    throw std::runtime_error{program.string() + " cannot be started"};
  }
  CloseHandle(made.hThread);
  id_ = made.dwProcessId;
  process_ = UniqueHandle<HANDLE, CloseHandle>{made.hProcess};
}

ChildProcess::~ChildProcess() {
  if (IsRunning()) {
    TerminateProcess(process_.Get(), 99);
    WaitForSingleObject(process_.Get(), processPatience);
  }
  std::error_code ignored;
  std::filesystem::remove(output_, ignored);
  std::filesystem::remove(errors_, ignored);
}

bool ChildProcess::IsRunning() const {
  return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT;
}

std::optional<int> ChildProcess::Wait() {
  DWORD status = 0;
  if (WaitForSingleObject(process_.Get(), processPatience) != WAIT_OBJECT_0 ||
      !GetExitCodeProcess(process_.Get(), &status)) {
    ADD_FAILURE() << "the process does not end; it printed: " << Errors();
    return std::nullopt;
  }
  return static_cast<int>(status);
}

std::string ChildProcess::Output() const {
  return ContentOf(output_);
}

std::string ChildProcess::Errors() const {
  return ContentOf(errors_);
}

std::filesystem::path HestrionBenchPath() {
  return std::filesystem::absolute(ZOLVANE_HESTRION_PATH);
}

std::filesystem::path ZolvaneBenchPath() {
  return std::filesystem::absolute(ZOLVANE_BENCH_PATH);
}

std::filesystem::path ZolvaneSimPath() {
  return std::filesystem::absolute(ZOLVANE_SIM_PATH);
}

ProgramResult RunToItsEnd(const std::filesystem::path& program, const Arguments& arguments) {
  ChildProcess process{program, arguments};
  const auto status = process.Wait();
  return {.Status = status, .Output = process.Output(), .Errors = process.Errors()};
}

}  // namespace zolvane
