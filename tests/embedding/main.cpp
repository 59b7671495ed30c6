// Compiles with a warning of ours that is no warning of this project's, and uses the library.
#include <iostream>
#include <string>

#include "config/text.h"

int main() {
  const int size = std::string{"-Wconversion would not have it"}.size();
  std::cout << zolvane::Replaced("a+b", "+", "-") << ' ' << size << '\n';
  return size == 30 ? 0 : 1;
}
