// The machine's registered classes, and changes to them that are made all together or not at all. Keys are
// named from the machine's "Software\Classes".
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "win32/unique_handle.h"

namespace zolvane {

// Remembers what stood where it writes, and restores it at its end unless the changes are kept.
class RegistryChanges {
 public:
  RegistryChanges() = default;
  ~RegistryChanges();
  RegistryChanges(const RegistryChanges&) = delete;
  RegistryChanges& operator=(const RegistryChanges&) = delete;

  // Sets a text value, creating the keys on the way. An empty name stands for the key's own value.
  HRESULT SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text);

  void Keep() { undo_.clear(); }

 private:
  std::vector<std::function<void()>> undo_;
};

// Whether the key is there for programs of this kind (0), or of 32 or 64 bits (KEY_WOW64_32KEY,
// KEY_WOW64_64KEY), even if the caller may not look into it.
bool ClassesKeyExists(const std::wstring& key, REGSAM view = 0);

// Succeeds if the caller may delete the key with everything in it, or if there is none.
HRESULT MayDeleteClassesKey(const std::wstring& key);

// Deletes the key with everything in it; succeeds if there is none.
HRESULT DeleteClassesKey(const std::wstring& key);

// Deletes the key unless something is in it; fails only if the system refuses.
HRESULT DeleteEmptyClassesKey(const std::wstring& key);

}  // namespace zolvane
