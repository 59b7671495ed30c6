// Where the host gets the add-in's class from.
#pragma once

#include <string>

#include "win32/com_ptr.h"

struct IAddIn;

namespace zolvane {

inline constexpr const wchar_t* addInModuleName = L"HZOCalibrateDevice.dll";
inline constexpr const wchar_t* addInProgId = L"HZOCalibrateDevice.Connect";

// An add-in's module, loaded from its file without any registration. Throws std::runtime_error if
// the file is no such module. The module stays loaded as long as this lives; the caller releases
// the add-in's objects first.
class AddInFile {
 public:
  explicit AddInFile(const std::wstring& path);
  ~AddInFile();
  AddInFile(const AddInFile&) = delete;
  AddInFile& operator=(const AddInFile&) = delete;

  HMODULE Module() const { return module_; }

  // What the module's entry points return.
  HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) const;
  HRESULT CanUnloadNow() const;

  // A new object of the class Connect. Throws std::runtime_error.
  ComPtr<IAddIn> Create() const;

 private:
  HMODULE module_;
};

// Creates the class by its name, which the registry or a manifest knows. Null if neither does.
ComPtr<IAddIn> CreateRegisteredAddIn();

}  // namespace zolvane
