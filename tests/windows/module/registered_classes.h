// The registered classes of the machine, "Software\Classes", as tests look at them and tamper with them. Keys
// are named from there.
#pragma once

#include <set>
#include <string>

#include "win32/unique_handle.h"

namespace zolvane {

// One line for each key and for each value.
using RegistryLines = std::set<std::string>;

RegistryLines ClassesBelow(const std::wstring& key);

// Everything, for the machine and for the user alone.
RegistryLines AllClasses();

// What stands in the one and not in the other.
RegistryLines Without(const RegistryLines& lines, const RegistryLines& others);

// A security descriptor.
inline constexpr const wchar_t* everybodyMayAll = L"D:(A;;KA;;;WD)";

// A foreign key, which goes with everything in it when this ends. In a volatile one no other key can be made
// that is to last.
class ForeignKey {
 public:
  enum class Lifetime { Lasts, Volatile };

  explicit ForeignKey(std::wstring key, Lifetime lifetime = Lifetime::Lasts, REGSAM view = 0);
  ~ForeignKey();
  ForeignKey(const ForeignKey&) = delete;
  ForeignKey& operator=(const ForeignKey&) = delete;

  void SetText(const wchar_t* name, const std::wstring& text, DWORD type = REG_SZ);

  // What others, and this program too, may do with the key from now on. Ends with the key's end.
  void Allow(const wchar_t* descriptor);

 private:
  std::wstring key_;
  REGSAM view_;
  UniqueRegistryKey opened_;
};

void DeleteClasses(const std::wstring& key, REGSAM view = 0);

}  // namespace zolvane
