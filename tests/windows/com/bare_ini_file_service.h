// The host's settings-file service, written from the numbers of its slots. It shares no code with the add-in,
// not even the interface that the module was built with.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "win32/windows_headers.h"

namespace zolvane {

// Offered to the add-in while this lives. Knows the first device only, and gives the default for all other values.
// A call of any but the three documented operations fails the test.
class BareIniFileService {
 public:
  struct Heard {
    long References = 0;
    std::map<int, int> Calls;  // by slot
    std::set<std::wstring> Keys;
    std::set<std::wstring> Files;
    std::set<std::wstring> Written;
    std::set<std::wstring> Split;
  };

  BareIniFileService();
  ~BareIniFileService();
  BareIniFileService(const BareIniFileService&) = delete;
  BareIniFileService& operator=(const BareIniFileService&) = delete;

  int Created() const;
  const Heard& Log() const;

 private:
  class Factory;

  std::unique_ptr<Factory> factory_;
  DWORD registration_ = 0;
};

}  // namespace zolvane
