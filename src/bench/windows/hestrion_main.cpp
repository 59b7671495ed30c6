#include <iostream>

#include "bench/windows/hestrion_program.h"
#include "program/terminal.h"

int main(int count, char** arguments) {
  zolvane::KeepStandardStreams();
  return zolvane::RunHestrionBench(zolvane::ProgramArguments(count, arguments), std::cout, std::clog);
}
