#include "bench/windows/com/add_in_class.h"

#include <add_in.h>

#include <stdexcept>

#include "win32/text.h"

namespace zolvane {
namespace {

template <class Function>
Function* EntryPoint(HMODULE module, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

AddInFile::AddInFile(const std::wstring& path)
    : module_{LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)} {
  if (module_ == nullptr) {
    throw std::runtime_error{Utf8(path) + " cannot be loaded"};
  }
}

AddInFile::~AddInFile() {
  FreeLibrary(module_);
}

HRESULT AddInFile::GetClassObject(REFCLSID classId, REFIID iid, void** object) const {
  auto* const entry =
      EntryPoint<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>(module_, "DllGetClassObject");
  return entry != nullptr ? entry(classId, iid, object) : E_NOTIMPL;
}

HRESULT AddInFile::CanUnloadNow() const {
  auto* const entry = EntryPoint<HRESULT STDAPICALLTYPE()>(module_, "DllCanUnloadNow");
  return entry != nullptr ? entry() : E_NOTIMPL;
}

ComPtr<IAddIn> AddInFile::Create() const {
  ComPtr<IClassFactory> factory;
  ComPtr<IAddIn> addIn;
  if (FAILED(GetClassObject(__uuidof(::Connect), IID_IClassFactory, factory.PutVoid())) ||
      FAILED(factory->CreateInstance(nullptr, __uuidof(IAddIn), addIn.PutVoid()))) {
    throw std::runtime_error{"the add-in's class cannot be created"};
  }
  return addIn;
}

ComPtr<IAddIn> CreateRegisteredAddIn() {
  CLSID identifier{};
  ComPtr<IAddIn> addIn;
  if (FAILED(CLSIDFromProgID(addInProgId, &identifier)) ||
      FAILED(
          CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IAddIn), addIn.PutVoid()))) {
    return {};
  }
  return addIn;
}

}  // namespace zolvane
