#include <iostream>

#include "program/terminal.h"
#include "zolvane/zolvane_program.h"

// NOLINTNEXTLINE(bugprone-exception-escape): for lack of memory alone
int main(int count, char** arguments) {
  zolvane::KeepStandardStreams();
  std::ios::sync_with_stdio(false);
  const auto terminal = zolvane::OpenTerminal();
  return zolvane::RunZolvane(zolvane::ProgramArguments(count, arguments), std::cout, std::clog,
                             terminal.get());
}
