// The machine's registered classes, "Software\Classes" of the machine, and changes to them that are made all
// together or not at all. Keys are named from there.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "shell/windows/unique_handle.h"

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

  void Keep() { done_.clear(); }

 private:
  struct Value {
    DWORD Type;
    std::vector<BYTE> Data;
  };
  struct Change {
    std::wstring Key;
    std::wstring Name;
    std::optional<Value> Before;         // nothing: there was no such value
    std::vector<std::wstring> KeysMade;  // the innermost last
  };

  static std::optional<Value> Read(HKEY key, const std::wstring& name);
  static void Undo(const Change& change);

  std::vector<Change> done_;
};

// Whether the key is there for programs of this kind (0), or of 32 or 64 bits (KEY_WOW64_32KEY,
// KEY_WOW64_64KEY).
bool ClassesKeyExists(const std::wstring& key, REGSAM view = 0);

// Whether the caller may delete the key with all that is in it; also when there is none.
HRESULT MayDeleteClassesKey(const std::wstring& key);

// Deletes the key with all that is in it; succeeds when there is none.
HRESULT DeleteClassesKey(const std::wstring& key);

}  // namespace zolvane
