// Where the host gets the add-in's class from.
#pragma once

#include <string>

#include "win32/com_ptr.h"

struct IAddIn;

namespace zolvane {

inline constexpr const wchar_t* addInModuleName = L"HZOCalibrateDevice.dll";
inline constexpr const wchar_t* addInProgId = L"HZOCalibrateDevice.Connect";

// The module of an add-in in a file of its own, without any registration. Throws std::runtime_error when it
// is no such module. It stays loaded while this lives; the caller releases the add-in's objects first.
class AddInFile {
 public:
  explicit AddInFile(const std::wstring& path);
  ~AddInFile();
  AddInFile(const AddInFile&) = delete;
  AddInFile& operator=(const AddInFile&) = delete;

  HMODULE Module() const { return module_; }

  // What the module answers.
  HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) const;
  HRESULT CanUnloadNow() const;

  // A new object of the class Connect. Throws std::runtime_error.
  ComPtr<IAddIn> Create() const;

 private:
  HMODULE module_;
};

// The class by its registered name, from the registry or a manifest. Empty when it is not known there.
ComPtr<IAddIn> CreateRegisteredAddIn();

}  // namespace zolvane
