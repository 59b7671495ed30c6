#include <iostream>

#include "bench/terminal.h"
#include "bench/windows/hestrion_program.h"

int main(int count, char** arguments) {
  zolvane::KeepStandardStreams();
  return zolvane::RunHestrionBench(zolvane::ProgramArguments(count, arguments), std::cout, std::clog);
}
