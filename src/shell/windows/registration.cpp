#include "shell/windows/registration.h"

#include <add_in.h>

#include <array>
#include <string>

#include "shell/windows/registry_changes.h"
#include "win32/module_instance.h"

namespace zolvane {
namespace {

constexpr const wchar_t* programId = L"HZOCalibrateDevice.Connect";
constexpr const wchar_t* libraryName = L"HZOCalibrateDevice";
constexpr const wchar_t* version = L"1.0";

// The class of the system's marshaler for interfaces that a type library describes.
constexpr const wchar_t* typeLibraryMarshaler = L"{00020424-0000-0000-C000-000000000046}";

constexpr bool isFor64Bits = sizeof(void*) == 8;
constexpr REGSAM otherView = isFor64Bits ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

std::wstring TextOf(const GUID& identifier) {
  constexpr int length = 39;
  std::array<wchar_t, length> text{};
  StringFromGUID2(identifier, text.data(), length);
  return text.data();
}

// The keys, each with everything in it. Program and library are the same for programs of both kinds.
struct Keys {
  std::wstring Class = L"CLSID\\" + TextOf(__uuidof(::Connect));
  std::wstring Interface = L"Interface\\" + TextOf(__uuidof(_Connect));
  std::wstring Program = programId;
  std::wstring Library = L"TypeLib\\" + TextOf(LIBID_HZOCalibrateDevice);
  std::wstring LibraryVersion = Library + L"\\" + version;  // beside others, of other components
  std::wstring LibraryFile = LibraryVersion + L"\\0\\" + (isFor64Bits ? L"win64" : L"win32");
};

struct Entry {
  std::wstring Key;
  std::wstring Name;
  std::wstring Text;
};

std::array<Entry, 16> Entries() {
  const Keys keys;
  const std::wstring path = ModulePath();
  const std::wstring classId = TextOf(__uuidof(::Connect));
  const std::wstring libraryId = TextOf(LIBID_HZOCalibrateDevice);
  return {{
      {keys.Class, L"", programId},
      {keys.Class + L"\\InprocServer32", L"", path},
      {keys.Class + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {keys.Class + L"\\ProgID", L"", programId},
      {keys.Class + L"\\TypeLib", L"", libraryId},
      {keys.Class + L"\\Version", L"", version},
      {keys.Program, L"", programId},
      {keys.Program + L"\\CLSID", L"", classId},
      {keys.LibraryVersion, L"", libraryName},
      {keys.LibraryVersion + L"\\FLAGS", L"", L"0"},
      {keys.LibraryVersion + L"\\HELPDIR", L"", path.substr(0, path.find_last_of(L'\\'))},
      {keys.LibraryFile, L"", path},
      {keys.Interface, L"", L"_Connect"},
      {keys.Interface + L"\\ProxyStubClsid32", L"", typeLibraryMarshaler},
      {keys.Interface + L"\\TypeLib", L"", libraryId},
      {keys.Interface + L"\\TypeLib", L"Version", version},
  }};
}

// The first failure of a call for each key, or success.
template <class Call>
HRESULT ForEach(std::initializer_list<std::wstring> keys, Call call) {
  for (const auto& key : keys) {
    if (const HRESULT result = call(key); FAILED(result)) {
      return result;
    }
  }
  return S_OK;
}

}  // namespace

HRESULT RegisterComponent() {
  RegistryChanges changes;
  for (const auto& entry : Entries()) {
    if (const HRESULT set = changes.SetText(entry.Key, entry.Name, entry.Text); FAILED(set)) {
      return set;
    }
  }
  changes.Keep();
  return S_OK;
}

HRESULT UnregisterComponent() {
  const Keys keys;
  const HRESULT mayAll =
      ForEach({keys.Class, keys.Interface, keys.Program, keys.LibraryVersion}, MayDeleteClassesKey);
  if (FAILED(mayAll)) {
    return mayAll;
  }
  const HRESULT own = ForEach({keys.Class, keys.Interface, keys.LibraryFile}, DeleteClassesKey);
  if (FAILED(own) || ClassesKeyExists(keys.Class, otherView)) {
    return own;
  }
  const HRESULT common = ForEach({keys.Program, keys.LibraryVersion}, DeleteClassesKey);
  return SUCCEEDED(common) ? DeleteEmptyClassesKey(keys.Library) : common;
}

}  // namespace zolvane
