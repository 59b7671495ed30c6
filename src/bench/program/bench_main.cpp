#include <iostream>

#include "bench/program/bench_program.h"
#include "program/terminal.h"

int main(int count, char** arguments) {
  zolvane::KeepStandardStreams();
  std::ios::sync_with_stdio(false);
  return zolvane::RunBench(zolvane::ProgramArguments(count, arguments), std::cin, std::cout, std::clog);
}
