// The machine's registered classes, "Software\Classes" of the machine, and changes to them that are made all
// together or not at all. Keys are named from there.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "win32/unique_handle.h"

namespace zolvane {

// Remembers what stood where it writes, and puts that back at its end unless the changes are kept.
class RegistryChanges {
 public:
  RegistryChanges() = default;
  ~RegistryChanges();
  RegistryChanges(const RegistryChanges&) = delete;
  RegistryChanges& operator=(const RegistryChanges&) = delete;

  // Sets a text value, making the keys on the way. An empty name is the key's own value.
  HRESULT SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text);

  void Keep() { undo_.clear(); }

 private:
  std::vector<std::function<void()>> undo_;
};

// Whether the key is there for programs of this kind (0), or of 32 or 64 bits (KEY_WOW64_32KEY,
// KEY_WOW64_64KEY); also when the caller may not look into it.
bool ClassesKeyExists(const std::wstring& key, REGSAM view = 0);

// Whether the caller may delete the key with all that is in it; also when there is none.
HRESULT MayDeleteClassesKey(const std::wstring& key);

// Deletes the key with all that is in it; succeeds when there is none.
HRESULT DeleteClassesKey(const std::wstring& key);

// Deletes the key unless there is something in it; succeeds in any case but a refusal.
HRESULT DeleteEmptyClassesKey(const std::wstring& key);

}  // namespace zolvane
